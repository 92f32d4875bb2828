// The library's diagnostic log as the tool shows it: escaped for the terminal,
// the GUI log's prefix in the tool's language; and the one line that says why
// a dialog failed. (The library itself masks the PKCS#12 password.)
#pragma once

#include "ToolTexts.hpp"

#include <optional>
#include <string>
#include <string_view>

namespace OrvelTool {

std::string logForDisplay(std::string_view log, const ToolTexts &texts);

// The cause of a failure in a displayed log: the message of the last
// exception entry, else the last line (the library's or the GUI's last word).
std::optional<std::string> failureCause(std::string_view displayedLog);

} // namespace OrvelTool
