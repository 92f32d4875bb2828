#include "protocol/HostLanguage.hpp"

#include <cstdlib>
#include <string>

namespace OrvelGui {

std::optional<Language> languageFromHost(GuiLog &log)
{
    const char *value = std::getenv("ORVEL_GUI_LANGUAGE");
    if (value == nullptr || *value == '\0')
        return std::nullopt;
    const std::string code = value;
    if (code == "0")
        return Language::Czech;
    if (code == "1")
        return Language::Slovak;
    if (code == "2")
        return Language::English;
    log.add("Ignored ORVEL_GUI_LANGUAGE=" + code.substr(0, 40) + ": it takes 0, 1 or 2; the locale decides.");
    return std::nullopt;
}

} // namespace OrvelGui
