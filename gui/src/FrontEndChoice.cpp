#include "FrontEndChoice.hpp"

#include "PlugIns.hpp"

#include "desktop/DesktopSession.hpp"
#include "terminal/TerminalFrontEnd.hpp"

#include <dlfcn.h>

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
    std::string error;
    void *handle = openPlugIn(ORVEL_GUI_DESKTOP_MODULE, error);
    if (!handle) {
        log.add("Desktop front end unavailable (" + error + "); using the terminal.");
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
