#include "dialogs/ReplyValues.hpp"

#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "certificate/CertificateBase64.hpp"
#include "platform/HostText.hpp"
#include "util/SecretMemory.hpp"

#include <cstring>

namespace OrvelDialogs::Dialogs {

bool decodeReplyValue(std::string_view token, const std::string &windowName, std::string &value)
{
    CertificateCodec::decodeInto(token, value);
    // A value that is not UTF-8 has no text to hand to the host; the dialog
    // then fails with 7 rather than copy bytes the host cannot trust.
    if (!Platform::isValidUtf8(value)) {
        SecretMemory::wipe(value);
        logMsg("Odpověď z okna " + windowName + " obsahovala hodnotu, která není platné UTF-8.");
        return false;
    }
    const auto zero = value.find('\0');
    if (zero != std::string::npos) {
        SecretMemory::wipe(value.data() + zero, value.size() - zero);
        value.resize(zero);
    }
    return true;
}

bool copyToHostBuffer(const std::string &value, char *buffer, unsigned int size)
{
    if (value.size() >= size)
        return false;
    std::memcpy(buffer, value.c_str(), value.size() + 1);
    return true;
}

} // namespace OrvelDialogs::Dialogs
