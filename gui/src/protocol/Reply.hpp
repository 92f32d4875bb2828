// The reply: "<Window> <result tokens> -log <Base64 of our log>" on standard
// output.
#pragma once

#include "protocol/GuiLog.hpp"
#include "protocol/Request.hpp"

#include <string>

namespace OrvelGui {

// The reply text, ending in a line feed. With answered false only the window
// name and the log section are written.
std::string formatReply(const std::string &windowName, const Request *request, bool answered,
                        const Answer &answer, const GuiLog &log);

// Writes the whole reply to standard output; false when that failed.
bool writeReply(const std::string &reply);

} // namespace OrvelGui
