#include "state/ParentWindow.hpp"

#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "platform/HostText.hpp"
#include "state/CBoundary.hpp"

#include <algorithm>
#include <string_view>

namespace OrvelDialogs {
namespace {

constinit std::optional<std::string> hostWindow;

// Handles are short ("x11:0x3a00007", an xdg-foreign handle). A longer text
// or one with control characters is a mistake of the host, and in the
// environment an overlong one would make every child fail to start.
constexpr std::size_t kLongestHandle = 1024;

bool usableHandle(std::string_view handle)
{
    return handle.size() <= kLongestHandle && Platform::isValidUtf8(handle) &&
           std::none_of(handle.begin(), handle.end(),
                        [](char c) { return static_cast<unsigned char>(c) < 0x20 || c == 0x7F; });
}

} // namespace

// Like SetAppPath, text that cannot be used stores "no window".
void SetParentWindow(const char *handle)
{
    if (handle == nullptr || *handle == '\0' || !usableHandle(handle))
        hostWindow.reset();
    else
        hostWindow.emplace(handle);
}

namespace State {

const std::optional<std::string> &parentWindow()
{
    return hostWindow;
}

} // namespace State
} // namespace OrvelDialogs

extern "C" long ORV_SetParentWindow(const char *handle)
{
    return OrvelDialogs::State::callFromC([handle]() -> long {
        // Null or empty clears; a handle that cannot be used is refused and
        // the window named before stays.
        if (handle != nullptr && *handle != '\0' && !OrvelDialogs::usableHandle(handle))
            return 1;
        OrvelDialogs::SetParentWindow(handle);
        return 0;
    });
}
