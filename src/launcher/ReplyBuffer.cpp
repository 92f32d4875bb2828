#include "launcher/ReplyBuffer.hpp"

#include <utility>

namespace OrvelDialogs::Launcher {
namespace {

// A reply beyond this is rare enough that keeping its memory for good costs
// more than faulting it in again.
constexpr size_t kMaximumKeptRoom = 128u << 20;

std::string &keptBuffer()
{
    static std::string kept;
    return kept;
}

} // namespace

std::string takeReplyBuffer()
{
    return std::exchange(keptBuffer(), std::string());
}

void keepReplyBuffer(std::string &&buffer)
{
    std::string &kept = keptBuffer();
    if (buffer.capacity() <= kept.capacity() || buffer.capacity() > kMaximumKeptRoom)
        return;
    buffer.clear();
    kept = std::move(buffer);
}

} // namespace OrvelDialogs::Launcher
