// Text the tool prints that it did not write itself (the library's log, which
// holds the GUI application's log) must not steer the terminal; values in the
// JSON output must be valid JSON strings.
#pragma once

#include <string>
#include <string_view>

namespace OrvelTool {

// Control characters (C0 but tab and line feed, DEL, C1) and bytes that are not
// UTF-8 written as visible escapes: "\x1B", "\u009B", "\xFF".
std::string escapeForTerminal(std::string_view text);

// The text as a quoted JSON string.
std::string jsonString(std::string_view text);

} // namespace OrvelTool
