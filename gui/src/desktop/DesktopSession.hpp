// What the desktop module hands the application: a front end together with
// the Qt application object it needs. The module is loaded only when the
// desktop is chosen, so a terminal session never loads Qt.
#pragma once

#include "protocol/FrontEnd.hpp"

#include <string>

namespace OrvelGui {

class DesktopSession {
public:
    virtual ~DesktopSession() = default;
    virtual FrontEnd &frontEnd() = 0;
};

// The module's one entry point. Nothing (and `why` filled) when no display
// can be reached.
using OpenDesktopSession = DesktopSession *(*)(GuiLog *log, std::string *why);
inline constexpr const char *kOpenDesktopSession = "orvelGuiOpenDesktopSession";

} // namespace OrvelGui
