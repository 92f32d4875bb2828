// Checks a PKCS#12 file and its password before the GUI application answers,
// so that the user hears of a wrong file or password while they can still
// try again.
#pragma once

#include <string>

namespace OrvelGui {

enum class Pkcs12Check {
    Ok,
    CannotRead,    // no such file, or it cannot be opened
    NotPkcs12,     // the bytes are no PKCS#12 structure
    WrongPassword, // the password does not open it
};

Pkcs12Check checkPkcs12(const std::string &path, const std::string &password);

} // namespace OrvelGui
