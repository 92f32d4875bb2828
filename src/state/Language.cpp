// The dialogs' language: 0 Czech, 1 Slovak, 2 any other, derived from the
// user's locale when the host has not set one.
#include <OrvelGUIDialogs/LibraryState.hpp>
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "platform/Locale.hpp"
#include "state/Language.hpp"

#include <cctype>

bool languageIsSet()
{
    return static_cast<std::uint32_t>(g_appLanguage) < 3;
}

void SetCurrentOSLanguage()
{
    g_appLanguage = OrvelDialogs::State::languageFromLocale(OrvelDialogs::Platform::currentLocaleIdentifier());
}

namespace OrvelDialogs::State {

int languageFromLocale(const std::string &localeIdentifier)
{
    std::string first = localeIdentifier.substr(0, localeIdentifier.find('_'));
    for (auto &c : first)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    if (first == "CS")
        return 0;
    if (first == "SK")
        return 1;
    return 2;
}

void resolveLanguage()
{
    if (!languageIsSet())
        SetCurrentOSLanguage();
}

} // namespace OrvelDialogs::State
