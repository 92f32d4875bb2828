#include "launcher/ReplyBuffer.hpp"

#include "util/LargeBuffer.hpp"
#include "util/SecretMemory.hpp"

#include <utility>

namespace OrvelDialogs::Launcher {
namespace {

// A reply beyond this is rare enough that keeping its memory for good costs
// more than faulting it in again.
constexpr size_t kMaximumKeptRoom = 128u << 20;
// Large replies tend to come in runs (a host exporting its log, a tool
// answering in bulk). After this many dialogs in a row without one the kept
// room goes back to the system: a host that is done with them should not
// hold their memory for good.
constexpr unsigned kIdleDialogs = 8;

struct Kept {
    std::string room;
    unsigned dialogsSinceLargeReply = 0;
};

Kept &kept()
{
    static Kept state;
    return state;
}

} // namespace

std::string takeReplyBuffer()
{
    Kept &state = kept();
    if (++state.dialogsSinceLargeReply > kIdleDialogs)
        std::string().swap(state.room);
    return std::exchange(state.room, std::string());
}

void keepReplyBuffer(std::string &&buffer)
{
    Kept &state = kept();
    if (buffer.size() >= LargeBuffer::kLargeBytes)
        state.dialogsSinceLargeReply = 0;
    // A reply that held a secret leaves none behind, kept or freed.
    if (SecretMemory::inScope())
        SecretMemory::wipe(buffer);
    if (buffer.capacity() <= state.room.capacity() || buffer.capacity() > kMaximumKeptRoom)
        return;
    buffer.clear();
    state.room = std::move(buffer);
}

} // namespace OrvelDialogs::Launcher
