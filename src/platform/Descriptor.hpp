// File descriptors: ownership and the retry on EINTR that every blocking call
// needs (the host may install handlers without SA_RESTART).
#pragma once

#include <cerrno>
#include <utility>

namespace OrvelDialogs::Platform {

// Calls `call` again while it fails with EINTR.
template <typename Call>
auto retryOnInterrupt(Call call)
{
    for (;;) {
        auto result = call();
        if (result != -1 || errno != EINTR)
            return result;
    }
}

// Owns one descriptor and closes it once.
class UniqueFd {
public:
    UniqueFd() = default;
    explicit UniqueFd(int fd) : fd_(fd) {}
    UniqueFd(UniqueFd &&other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    UniqueFd &operator=(UniqueFd &&other) noexcept
    {
        if (this != &other) {
            reset();
            fd_ = std::exchange(other.fd_, -1);
        }
        return *this;
    }
    UniqueFd(const UniqueFd &) = delete;
    UniqueFd &operator=(const UniqueFd &) = delete;
    ~UniqueFd() { reset(); }

    int get() const { return fd_; }
    bool valid() const { return fd_ >= 0; }
    // Closes the descriptor. close() is not retried on EINTR: on Linux the
    // descriptor is released even then, and a retry could close another one.
    void reset();

private:
    int fd_ = -1;
};

struct PipeEnds {
    UniqueFd readEnd;
    UniqueFd writeEnd;
};

// A pipe whose ends are close-on-exec and numbered 3 or above, so that they
// can never collide with the child's standard descriptors.
PipeEnds makePipe();

} // namespace OrvelDialogs::Platform
