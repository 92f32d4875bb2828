// For a process that must end at once from wherever it is, such as when the
// display connection breaks under an open window and the toolkit is about to
// end the process itself: the reply still goes out, with the reason in the
// log, and the exit status says what happened.
#pragma once

#include "protocol/GuiLog.hpp"

#include <string>
#include <string_view>

namespace OrvelGui {

// The window name of the reply and the log it carries, once the command line
// has been read.
void prepareImmediateExit(const std::string &windowName, GuiLog &log);

// Adds `entry` to the log, writes the reply (window name and log) and ends
// the process with `status`, running no destructors and no exit handlers:
// they belong to a toolkit that may be half gone. Only the first caller gets
// through; one on another thread at the same time waits for the end.
[[noreturn]] void exitImmediately(int status, std::string_view entry);

} // namespace OrvelGui
