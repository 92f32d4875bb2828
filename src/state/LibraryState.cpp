// The five state objects. constinit keeps them out of the library's dynamic
// initialisation: they are in their initial state before any code runs.
#include <OrvelGUIDialogs/AppLauncher.hpp>
#include <OrvelGUIDialogs/LibraryState.hpp>

constinit std::optional<std::string> g_appPath;
constinit std::int32_t g_appLanguage = 0;
constinit std::optional<std::string> g_orvelSignVersion;
constinit std::optional<std::string> g_logBuffer;
constinit std::unique_ptr<AppLauncher> appLchr;
