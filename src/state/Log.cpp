// The diagnostic log: one text that only grows. Every entry is the message
// followed by one line feed.
#include <OrvelGUIDialogs/LibraryState.hpp>
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "state/Log.hpp"

void logMsg(const std::string &message)
{
    if (!g_logBuffer)
        g_logBuffer.emplace();
    g_logBuffer->append(message);
    g_logBuffer->push_back('\n');
}

namespace OrvelDialogs::State {

void logEntryInPlace(const std::function<void(std::string &)> &write)
{
    if (!g_logBuffer)
        g_logBuffer.emplace();
    std::string &log = *g_logBuffer;
    const size_t entryStart = log.size();
    try {
        write(log);
    } catch (...) {
        log.resize(entryStart);
        throw;
    }
    log.push_back('\n');
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
