#include "desktop/SessionBus.hpp"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace OrvelGui {
namespace {

// A path as a D-Bus address value: bytes outside [-0-9A-Za-z_/.*] as %XX.
std::string addressEscaped(const std::string &path)
{
    std::string escaped;
    for (const unsigned char c : path) {
        const bool plain = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                           c == '-' || c == '_' || c == '/' || c == '.' || c == '*';
        if (plain) {
            escaped.push_back(static_cast<char>(c));
        } else {
            char hex[4];
            std::snprintf(hex, sizeof hex, "%%%02X", c);
            escaped += hex;
        }
    }
    return escaped;
}

} // namespace

void useOnlyARunningSessionBus(GuiLog &log)
{
    if (const char *address = std::getenv("DBUS_SESSION_BUS_ADDRESS"); address != nullptr && *address != '\0')
        return;
    // Where systemd and dbus-user-session put the user's bus; libdbus would
    // look there too, but would launch a new one when it is missing.
    if (const char *runtime = std::getenv("XDG_RUNTIME_DIR"); runtime != nullptr && *runtime == '/') {
        const std::string bus = std::string(runtime) + "/bus";
        struct stat info{};
        if (::stat(bus.c_str(), &info) == 0 && S_ISSOCK(info.st_mode) && info.st_uid == ::getuid()) {
            ::setenv("DBUS_SESSION_BUS_ADDRESS", ("unix:path=" + addressEscaped(bus)).c_str(), 1);
            return;
        }
    }
    // No transport of that name: every connection fails at once.
    ::setenv("DBUS_SESSION_BUS_ADDRESS", "disabled:", 1);
    log.add("No D-Bus session bus, and none is started: screen readers and desktop settings are not reached.");
}

} // namespace OrvelGui
