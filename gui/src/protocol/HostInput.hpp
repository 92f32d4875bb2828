// Standard input as the sign that the host is still there. The library keeps
// the write end of a dialog's standard input open until the dialog returns,
// so its end means that the host is gone (it died, or was killed) and that no
// one waits for the answer any more. Every window watches it: a front end
// polls fd() in its event loop and calls readAvailable() when it is readable.
// The reinsert-card notice reads its commands from the same descriptor
// through ReinsertCommandReader instead.
#pragma once

#include "protocol/GuiLog.hpp"

namespace OrvelGui {

class HostInput {
public:
    HostInput(int fd, GuiLog &log);
    // -1 when there is nothing to watch: standard input is a terminal (the
    // application was started by hand; its keys belong to the user).
    int fd() const { return ended_ ? -1 : fd_; }
    // Reads and drops what arrived (the library sends nothing to a modal
    // window); true once the input has ended. The end is logged.
    bool readAvailable();
    bool ended() const { return ended_; }

private:
    int fd_;
    GuiLog &log_;
    bool ended_ = false;
};

} // namespace OrvelGui
