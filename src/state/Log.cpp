// The diagnostic log: one text that only grows. Every entry is the message
// followed by one line feed.
#include <OrvelGUIDialogs/LibraryState.hpp>
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "state/Log.hpp"
#include "util/LargeBuffer.hpp"

namespace {

// The log only grows, and each growth copies all of it: its room grows
// fourfold, so that a long-lived host's log of many MiB is copied (and its
// copy faulted in) seldom. Room not yet written costs address space only.
constexpr size_t kLogGrowth = 4;

// Set once an entry held a secret; the log then never leaves a copy of
// itself behind when it grows.
bool logHoldsSecret = false;

// The log with room for `bytes` more, in huge pages once it is large.
std::string &logWithRoomFor(size_t bytes)
{
    if (!g_logBuffer)
        g_logBuffer.emplace();
    std::string &log = *g_logBuffer;
    OrvelDialogs::State::makeLogRoom(log, bytes);
    return log;
}

} // namespace

void logMsg(const std::string &message)
{
    std::string &log = logWithRoomFor(message.size() + 1);
    log.append(message);
    log.push_back('\n');
}

namespace OrvelDialogs::State {

void logEntryInPlace(size_t expectedBytes, const std::function<void(std::string &)> &write)
{
    std::string &log = logWithRoomFor(expectedBytes + 1);
    const size_t entryStart = log.size();
    try {
        write(log);
    } catch (...) {
        log.resize(entryStart);
        throw;
    }
    log.push_back('\n');
}

void makeLogRoom(std::string &log, size_t bytes)
{
    OrvelDialogs::LargeBuffer::reserve(log, log.size() + bytes, kLogGrowth, logHoldsSecret);
}

void logSecretEntry(const std::string &message)
{
    logHoldsSecret = true;
    logMsg(message);
}

} // namespace OrvelDialogs::State

namespace OrvelDialogs {

// The library's own buffer: no copy per read. Valid until the next entry.
const char *GetLogBuffer()
{
    return g_logBuffer ? g_logBuffer->c_str() : nullptr;
}

} // namespace OrvelDialogs

extern "C" long ORV_GetLog(const char **log)
{
    if (log == nullptr)
        return 1;
    *log = OrvelDialogs::GetLogBuffer();
    return 0;
}
