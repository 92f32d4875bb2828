// The GUI application's environment: the host's own, plus the ORVEL_GUI_*
// variables that carry what the command line does not (the host's language
// for the windows without "-lang", the host's window). A variable of those
// names that the host itself carries is left out, so that no stale value
// reaches the child; every other entry passes unchanged.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace OrvelDialogs::Launcher {

struct GuiVariable {
    std::string_view name;
    std::optional<std::string> value; // none: the child gets no such variable
};

// ORVEL_GUI_LANGUAGE: the language code, none while it is not set (the GUI
// application then follows the locale, as the library would).
// ORVEL_GUI_PARENT_WINDOW: the host's window, none until it names one.
std::vector<GuiVariable> settingsForGui();

// The host's environment (environ) with `variables` in place of any entries
// of their names, as "NAME=value" strings.
std::vector<std::string> childEnvironment(const std::vector<GuiVariable> &variables);

} // namespace OrvelDialogs::Launcher
