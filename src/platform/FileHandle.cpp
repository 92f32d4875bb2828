#include "platform/FileHandle.hpp"

#include "platform/PlatformException.hpp"

#include <fcntl.h>
#include <pthread.h>
#include <signal.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <ctime>

namespace OrvelDialogs::Platform {
namespace {

constexpr size_t kMinimumReadChunk = 64 * 1024;

// Blocks SIGPIPE on the calling thread for the lifetime of the guard. A
// SIGPIPE that a failed write raised is then pending on this thread; the guard
// consumes it before unblocking, unless one was already pending before.
class SigpipeGuard {
public:
    SigpipeGuard()
    {
        sigemptyset(&pipeSet_);
        sigaddset(&pipeSet_, SIGPIPE);
        sigset_t pending;
        sigemptyset(&pending);
        sigpending(&pending);
        wasPending_ = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &pipeSet_, &previousMask_);
    }
    ~SigpipeGuard()
    {
        if (raised_ && !wasPending_) {
            const timespec zero{};
            retryOnInterrupt([&] { return sigtimedwait(&pipeSet_, nullptr, &zero); });
        }
        pthread_sigmask(SIG_SETMASK, &previousMask_, nullptr);
    }
    SigpipeGuard(const SigpipeGuard &) = delete;
    SigpipeGuard &operator=(const SigpipeGuard &) = delete;

    void noteBrokenPipe() { raised_ = true; }

private:
    sigset_t pipeSet_;
    sigset_t previousMask_;
    bool wasPending_ = false;
    bool raised_ = false;
};

} // namespace

FileHandle::FileHandle(UniqueFd fd) : fd_(std::move(fd)) {}

void FileHandle::writeData(std::string_view bytes)
{
    if (!fd_.valid())
        throw PlatformException("writeData: the file handle is closed");
    SigpipeGuard guard;
    size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t n = retryOnInterrupt(
            [&] { return ::write(fd_.get(), bytes.data() + written, bytes.size() - written); });
        if (n < 0) {
            const int error = errno;
            if (error == EPIPE)
                guard.noteBrokenPipe();
            raiseSystemError("write", error);
        }
        written += static_cast<size_t>(n);
    }
}

void FileHandle::closeFile()
{
    fd_.reset();
}

FileHandle::ReadResult FileHandle::readAvailable(std::string *sink)
{
    if (!fd_.valid())
        return ReadResult::EndOfFile;
    // Size the read from what the pipe holds, so that a large reply is read
    // in few calls and the buffer grows in few steps.
    int queued = 0;
    if (ioctl(fd_.get(), FIONREAD, &queued) != 0 || queued < 0)
        queued = 0;
    const size_t chunk = std::max(kMinimumReadChunk, static_cast<size_t>(queued));

    static thread_local char discardBuffer[kMinimumReadChunk];
    ssize_t n;
    if (sink == nullptr) {
        n = retryOnInterrupt([&] { return ::read(fd_.get(), discardBuffer, sizeof discardBuffer); });
    } else {
        const size_t oldSize = sink->size();
        if (sink->capacity() < oldSize + chunk)
            sink->reserve(std::max(oldSize + chunk, sink->capacity() * 2));
        sink->resize(oldSize + chunk);
        n = retryOnInterrupt([&] { return ::read(fd_.get(), sink->data() + oldSize, chunk); });
        sink->resize(oldSize + static_cast<size_t>(std::max<ssize_t>(n, 0)));
    }
    if (n > 0)
        return ReadResult::Data;
    if (n == 0)
        return ReadResult::EndOfFile;
    if (errno == EAGAIN || errno == EWOULDBLOCK)
        return ReadResult::WouldBlock;
    raiseSystemError("read", errno);
}

void FileHandle::makeNonBlocking()
{
    if (!fd_.valid())
        return;
    const int flags = fcntl(fd_.get(), F_GETFL);
    if (flags >= 0 && (flags & O_NONBLOCK) == 0)
        fcntl(fd_.get(), F_SETFL, flags | O_NONBLOCK);
}

void FileHandle::drainWithoutBlocking(std::string *sink)
{
    makeNonBlocking();
    while (readAvailable(sink) == ReadResult::Data) {
    }
}

std::string FileHandle::readDataToEndOfFile()
{
    if (!fd_.valid())
        throw PlatformException("readDataToEndOfFile: the file handle is closed");
    std::string bytes;
    for (;;) {
        const ReadResult result = readAvailable(&bytes);
        if (result == ReadResult::EndOfFile)
            return bytes;
        if (result == ReadResult::WouldBlock) {
            // A non-blocking handle: wait until there is more.
            pollfd ready{fd_.get(), POLLIN, 0};
            retryOnInterrupt([&] { return ::poll(&ready, 1, -1); });
        }
    }
}

} // namespace OrvelDialogs::Platform
