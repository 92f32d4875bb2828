#include "FrontEndChoice.hpp"

#include "desktop/DesktopSession.hpp"
#include "terminal/TerminalFrontEnd.hpp"

#include <dlfcn.h>
#include <limits.h>
#include <unistd.h>
#ifdef __APPLE__
#include <mach-o/dyld.h>
#endif

#include <cstdlib>
#include <cstring>
#include <string>

namespace OrvelGui {
namespace {

bool nonEmpty(const char *name)
{
    const char *value = std::getenv(name);
    return value && *value;
}

bool desktopWanted(GuiLog &log)
{
    if (const char *forced = std::getenv("ORVEL_GUI_FRONTEND"); forced && *forced) {
        if (std::strcmp(forced, "desktop") == 0)
            return true;
        if (std::strcmp(forced, "terminal") == 0)
            return false;
        log.add(std::string("Ignored ORVEL_GUI_FRONTEND=") + forced + ": it takes desktop or terminal.");
    }
#ifdef __APPLE__
    return true;
#else
    return nonEmpty("DISPLAY") || nonEmpty("WAYLAND_DISPLAY");
#endif
}

std::string executableFolder()
{
    char path[PATH_MAX + 1] = {};
#ifdef __APPLE__
    uint32_t size = PATH_MAX;
    if (_NSGetExecutablePath(path, &size) != 0)
        return {};
#else
    const ssize_t n = ::readlink("/proc/self/exe", path, PATH_MAX);
    if (n <= 0)
        return {};
    path[n] = '\0';
#endif
    std::string folder(path);
    return folder.substr(0, folder.rfind('/'));
}

} // namespace

struct FrontEndChoice::Impl {
    explicit Impl(GuiLog &log) : terminal(log) {}
    TerminalFrontEnd terminal;
    std::unique_ptr<DesktopSession> desktop;
};

FrontEndChoice::FrontEndChoice(GuiLog &log) : impl_(std::make_unique<Impl>(log))
{
    if (!desktopWanted(log))
        return;
    // The module sits in the bundle's PlugIns folder, beside MacOS.
    const std::string module = executableFolder() + "/../PlugIns/" ORVEL_GUI_DESKTOP_MODULE;
    // Never unloaded: Qt keeps threads and handlers that outlive its objects.
    void *handle = dlopen(module.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!handle) {
        const char *error = dlerror();
        log.add(std::string("Desktop front end unavailable (") + (error ? error : module) + "); using the terminal.");
        return;
    }
    const auto open = reinterpret_cast<OpenDesktopSession>(dlsym(handle, kOpenDesktopSession));
    std::string why;
    if (open)
        impl_->desktop.reset(open(&log, &why));
    else
        why = "the module has no entry point";
    if (!impl_->desktop)
        log.add("Desktop front end unavailable (" + why + "); using the terminal.");
}

FrontEndChoice::~FrontEndChoice() = default;

FrontEnd &FrontEndChoice::frontEnd()
{
    if (impl_->desktop)
        return impl_->desktop->frontEnd();
    return impl_->terminal;
}

} // namespace OrvelGui
