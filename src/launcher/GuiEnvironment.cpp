#include "launcher/GuiEnvironment.hpp"

#include <OrvelGUIDialogs/LibraryState.hpp>
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "state/ParentWindow.hpp"

#include <algorithm>

extern char **environ;

namespace OrvelDialogs::Launcher {

std::vector<GuiVariable> settingsForGui()
{
    std::vector<GuiVariable> variables;
    variables.push_back({"ORVEL_GUI_LANGUAGE", languageIsSet() ? std::optional(std::to_string(g_appLanguage))
                                                               : std::nullopt});
    variables.push_back({"ORVEL_GUI_PARENT_WINDOW", State::parentWindow()});
    return variables;
}

std::vector<std::string> childEnvironment(const std::vector<GuiVariable> &variables)
{
    const auto isSetHere = [&](std::string_view entry) {
        return std::any_of(variables.begin(), variables.end(), [&](const GuiVariable &variable) {
            return entry.size() > variable.name.size() && entry.starts_with(variable.name) &&
                   entry[variable.name.size()] == '=';
        });
    };
    std::vector<std::string> environment;
    for (char **entry = environ; entry != nullptr && *entry != nullptr; ++entry)
        if (!isSetHere(*entry))
            environment.emplace_back(*entry);
    for (const GuiVariable &variable : variables)
        if (variable.value)
            environment.push_back(std::string(variable.name) + '=' + *variable.value);
    return environment;
}

} // namespace OrvelDialogs::Launcher
