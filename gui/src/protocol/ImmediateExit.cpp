#include "protocol/ImmediateExit.hpp"

#include "protocol/Protocol.hpp"

#include <unistd.h>

#include <atomic>

namespace OrvelGui {
namespace {

const std::string *replyWindowName = nullptr;
GuiLog *replyLog = nullptr;
std::atomic_flag exiting = ATOMIC_FLAG_INIT;

} // namespace

void prepareImmediateExit(const std::string &windowName, GuiLog &log)
{
    replyWindowName = &windowName;
    replyLog = &log;
}

void exitImmediately(int status, std::string_view entry)
{
    if (exiting.test_and_set()) {
        for (;;)
            ::pause();
    }
    try {
        GuiLog fallback;
        GuiLog &log = replyLog ? *replyLog : fallback;
        log.add(entry);
        writeReply(formatReply(replyWindowName ? *replyWindowName : std::string(), nullptr, false, {}, log));
    } catch (...) {
        // Out of memory: the status alone has to tell.
    }
    ::_exit(status);
}

} // namespace OrvelGui
