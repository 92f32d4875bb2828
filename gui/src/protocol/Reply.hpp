// The reply: "<Window> <result tokens> -log <Base64 of our log>" on standard
// output, and the exit status beside it.
#pragma once

#include "protocol/GuiLog.hpp"
#include "protocol/Request.hpp"

#include <string>

namespace OrvelGui {

// Exit statuses. 1, 3, 4 and 7 are left out on purpose: the library returns
// them for its own failures, so a host can tell ours apart from those.
enum ExitStatus : int {
    kAnswered = 0,
    kCancelled = 2,
    kBadCommandLine = 5,
    kNoUserInterface = 6,
    kInternalFailure = 8,
};

// The reply text, ending in a line feed. With answered false only the window
// name and the log section are written.
std::string formatReply(const std::string &windowName, const Request *request, bool answered,
                        const Answer &answer, const GuiLog &log);

// Writes the whole reply to standard output; false when that failed.
bool writeReply(const std::string &reply);

} // namespace OrvelGui
