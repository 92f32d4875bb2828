#include "platform/Descriptor.hpp"

#include "platform/PlatformException.hpp"

#include <fcntl.h>
#include <unistd.h>

namespace OrvelDialogs::Platform {
namespace {

// A host that closed its own standard descriptors gets them back from pipe();
// move such an end above 2. The original closes when `fd` goes out of scope.
UniqueFd liftAboveStandardDescriptors(UniqueFd fd)
{
    if (fd.get() > 2)
        return fd;
    const int lifted = fcntl(fd.get(), F_DUPFD_CLOEXEC, 3);
    if (lifted < 0)
        raiseSystemError("fcntl(F_DUPFD_CLOEXEC)", errno);
    return UniqueFd(lifted);
}

} // namespace

void UniqueFd::reset()
{
    if (fd_ >= 0) {
        ::close(fd_);
        fd_ = -1;
    }
}

PipeEnds makePipe()
{
    int fds[2];
    if (pipe2(fds, O_CLOEXEC) != 0)
        raiseSystemError("pipe2", errno);
    UniqueFd readEnd(fds[0]);
    UniqueFd writeEnd(fds[1]);
    PipeEnds ends;
    ends.readEnd = liftAboveStandardDescriptors(std::move(readEnd));
    ends.writeEnd = liftAboveStandardDescriptors(std::move(writeEnd));
    return ends;
}

} // namespace OrvelDialogs::Platform
