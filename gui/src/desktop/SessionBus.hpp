// With no D-Bus session bus named in the environment, libdbus (which Qt uses
// for accessibility and desktop settings) starts one itself on X11 with
// dbus-launch, and that dbus-daemon then outlives us until the X server
// ends. A dialog that comes and goes must leave nothing behind.
#pragma once

#include "protocol/GuiLog.hpp"

namespace OrvelGui {

// Before Qt starts: DBUS_SESSION_BUS_ADDRESS as it is when set; else the
// user's bus at $XDG_RUNTIME_DIR/bus where it runs; else an address that
// connects nowhere and launches nothing (logged).
void useOnlyARunningSessionBus(GuiLog &log);

} // namespace OrvelGui
