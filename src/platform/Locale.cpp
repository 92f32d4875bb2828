#include "platform/Locale.hpp"

#include <cstdlib>

namespace OrvelDialogs::Platform {

std::string currentLocaleIdentifier()
{
    std::string identifier;
    for (const char *variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char *value = std::getenv(variable);
        if (value != nullptr && *value != '\0') {
            identifier = value;
            break;
        }
    }
    const auto cut = identifier.find_first_of(".@");
    if (cut != std::string::npos)
        identifier.erase(cut);
    if (identifier.empty() || identifier == "C" || identifier == "POSIX")
        return "en_US_POSIX";
    return identifier;
}

} // namespace OrvelDialogs::Platform
