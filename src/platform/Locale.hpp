// The user's locale identifier, as the language rule needs it.
#pragma once

#include <string>

namespace OrvelDialogs::Platform {

// Such as "cs_CZ" or "en_US": the first non-empty of LC_ALL, LC_MESSAGES and
// LANG without its codeset (".UTF-8") and modifier ("@euro"); "C", "POSIX"
// or nothing give "en_US_POSIX".
std::string currentLocaleIdentifier();

} // namespace OrvelDialogs::Platform
