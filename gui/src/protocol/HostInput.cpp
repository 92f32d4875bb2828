#include "protocol/HostInput.hpp"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

namespace OrvelGui {

HostInput::HostInput(int fd, GuiLog &log) : fd_(::isatty(fd) ? -1 : fd), log_(log) {}

bool HostInput::readAvailable()
{
    if (ended_ || fd_ < 0)
        return ended_;
    char buffer[4096];
    ssize_t n = 0;
    do {
        n = ::read(fd_, buffer, sizeof buffer);
    } while (n < 0 && errno == EINTR);
    if (n > 0 || (n < 0 && errno == EAGAIN))
        return false;
    ended_ = true;
    log_.add(n == 0 ? "End of input: the host is gone." : std::string("Reading the input failed: ") + std::strerror(errno));
    return true;
}

} // namespace OrvelGui
