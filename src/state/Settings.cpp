// The host's settings: GUI application path, language and version text.
#include <OrvelGUIDialogs/LibraryState.hpp>
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "platform/HostText.hpp"

namespace OrvelDialogs {

// A null pointer stores "no value", like text that is not valid UTF-8: with
// no path every dialog returns 9, with no version the signature confirmation
// fails with 7. Nothing is checked beyond that.
void SetAppPath(const char *path)
{
    g_appPath = Platform::textFromHost(path);
}

void SetLanguage(int language)
{
    g_appLanguage = language;
}

void SetOrvelSignVersion(const char *version)
{
    g_orvelSignVersion = Platform::textFromHost(version);
}

} // namespace OrvelDialogs

extern "C" {

long ORV_SetAppPath(const char *path)
{
    OrvelDialogs::SetAppPath(path);
    return 0;
}

long ORV_SetLanguage(int language)
{
    if (static_cast<unsigned int>(language) > 2)
        return 1;
    OrvelDialogs::SetLanguage(language);
    return 0;
}

long ORV_SetOrvelSignVersion(const char *version)
{
    OrvelDialogs::SetOrvelSignVersion(version);
    return 0;
}

} // extern "C"
