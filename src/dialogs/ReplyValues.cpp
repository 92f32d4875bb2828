#include "dialogs/ReplyValues.hpp"

#include <OrvelGUIDialogs/Certificate.hpp>
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "platform/HostText.hpp"

#include <cstring>

namespace OrvelDialogs::Dialogs {

std::optional<std::string> decodeReplyValue(std::string_view token, const std::string &windowName)
{
    std::string bytes = Certificate::b64StringToData(std::string(token));
    // A value that is not UTF-8 has no text to hand to the host; the dialog
    // then fails with 7 rather than copy bytes the host cannot trust.
    if (!Platform::isValidUtf8(bytes)) {
        logMsg("Odpověď z okna " + windowName + " obsahovala hodnotu, která není platné UTF-8.");
        return std::nullopt;
    }
    const auto zero = bytes.find('\0');
    if (zero != std::string::npos)
        bytes.resize(zero);
    return bytes;
}

bool copyToHostBuffer(const std::string &value, char *buffer, unsigned int size)
{
    if (value.size() >= size)
        return false;
    std::memcpy(buffer, value.c_str(), value.size() + 1);
    return true;
}

} // namespace OrvelDialogs::Dialogs
