// The GUI application's command line: "-window", the window name, then the
// dialog's option pairs. A value that is absent (a null or invalid host text)
// cannot stand in it.
#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

namespace OrvelDialogs::Launcher {

using OptionalText = std::optional<std::string>;

// The strings in order; raises the platform exception for an absent one.
std::vector<std::string> argumentList(std::initializer_list<OptionalText> values);

} // namespace OrvelDialogs::Launcher
