// A stand-in for the GUI application, for the fuzzers: while one is set,
// Launch starts no process; the launcher sees a child that has already
// exited with `status` after writing `output`, and everything after the exit
// (status, reply, log, each dialog's reply handling) runs as usual.
#pragma once

#include <string>

namespace OrvelDialogs::Launcher {

struct ScriptedChild {
    int status = 0;
    std::string output;
};

// Not owned; null to start real processes again.
void setScriptedChild(const ScriptedChild *child);
const ScriptedChild *scriptedChild();

} // namespace OrvelDialogs::Launcher
