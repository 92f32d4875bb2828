// The library-wide state, visible to the host as data symbols. All five are
// constant-initialised: nothing runs when the library is loaded.
#ifndef ORVEL_LIBRARY_STATE_HPP
#define ORVEL_LIBRARY_STATE_HPP

#include <OrvelGUIDialogs/OrvelExport.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

class AppLauncher;

// Path of the GUI application's bundle; counts as set when not empty.
extern ORV_EXPORT std::optional<std::string> g_appPath;
// 0 Czech, 1 Slovak, 2 any other; outside 0..2 means "not set".
extern ORV_EXPORT std::int32_t g_appLanguage;
// Version text of the signing application, passed to the signature dialog.
extern ORV_EXPORT std::optional<std::string> g_orvelSignVersion;
// The diagnostic log; absent until the first entry.
extern ORV_EXPORT std::optional<std::string> g_logBuffer;
// Launcher of the most recent dialog.
extern ORV_EXPORT std::unique_ptr<AppLauncher> appLchr;

#endif
