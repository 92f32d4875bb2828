// The host's own window (ORV_SetParentWindow), which the GUI application's
// windows stay above. Only the GUI application's environment carries it.
#pragma once

#include <optional>
#include <string>

namespace OrvelDialogs::State {

// No value until the host names a window, and again once it clears it.
const std::optional<std::string> &parentWindow();

} // namespace OrvelDialogs::State
