// A display that goes away under an open window (the X server killed, the
// Wayland compositor gone). Qt then ends the process itself, with status 1
// (X11) or 255 or 1 (Wayland), which the library would pass on as a bad
// argument or an unknown failure. Its warning that the connection broke is
// the last thing it does before that, so on that warning we end first: with
// status 6 (no user interface), the reply, and the reason in the log.
#pragma once

#include <QString>

namespace OrvelGui {

// Never returns when `qtMessage` is Qt's warning of a broken display
// connection; does nothing otherwise.
void endIfDisplayLost(const QString &qtMessage);

} // namespace OrvelGui
