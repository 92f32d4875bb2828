// Which front end talks to the user: the desktop one when a display is there
// (DISPLAY or WAYLAND_DISPLAY set, or macOS), else the terminal one.
// ORVEL_GUI_FRONTEND=desktop|terminal overrides the choice.
#pragma once

#include "protocol/FrontEnd.hpp"

#include <memory>

namespace OrvelGui {

class FrontEndChoice {
public:
    explicit FrontEndChoice(GuiLog &log);
    ~FrontEndChoice();
    FrontEndChoice(const FrontEndChoice &) = delete;
    FrontEndChoice &operator=(const FrontEndChoice &) = delete;

    // The chosen front end; a desktop that cannot be opened falls back to the
    // terminal, with the reason in the log.
    FrontEnd &frontEnd();

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace OrvelGui
