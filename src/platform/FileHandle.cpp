#include "platform/FileHandle.hpp"

#include "platform/PlatformException.hpp"
#include "util/LargeBuffer.hpp"
#include "util/SecretMemory.hpp"

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

constexpr size_t kScratchBytes = 64 * 1024;

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

void FileHandle::writeWithoutBlocking(std::string_view bytes)
{
    if (!fd_.valid())
        throw PlatformException("write: the file handle is closed");
    makeNonBlocking();
    pending_.append(bytes);
    if (flushPending() == FlushResult::ReaderGone) {
        // Nobody will ever read them.
        pending_.clear();
        pendingStart_ = 0;
        raiseSystemError("write", EPIPE);
    }
}

void FileHandle::keepForWriting(std::string_view bytes)
{
    if (!fd_.valid())
        throw PlatformException("write: the file handle is closed");
    pending_.append(bytes);
}

FileHandle::FlushResult FileHandle::flushPending()
{
    if (pendingBytes() == 0)
        return FlushResult::Done;
    if (!fd_.valid())
        return FlushResult::ReaderGone;
    makeNonBlocking();
    SigpipeGuard guard;
    while (pendingStart_ < pending_.size()) {
        const ssize_t n = retryOnInterrupt([&] {
            return ::write(fd_.get(), pending_.data() + pendingStart_, pending_.size() - pendingStart_);
        });
        if (n < 0) {
            const int error = errno;
            if (error == EAGAIN || error == EWOULDBLOCK) {
                // Keep the buffer from growing with bytes already sent.
                if (pendingStart_ > pending_.size() / 2) {
                    pending_.erase(0, pendingStart_);
                    pendingStart_ = 0;
                }
                return FlushResult::WouldBlock;
            }
            if (error == EPIPE) {
                guard.noteBrokenPipe();
                return FlushResult::ReaderGone;
            }
            raiseSystemError("write", error);
        }
        pendingStart_ += static_cast<size_t>(n);
    }
    pending_.clear();
    pendingStart_ = 0;
    return FlushResult::Done;
}

size_t FileHandle::discardUnread()
{
    size_t unread = pendingBytes();
    // FIONREAD answers on a pipe's write end too: what sits in the pipe.
    int queued = 0;
    if (fd_.valid() && ioctl(fd_.get(), FIONREAD, &queued) == 0 && queued > 0)
        unread += static_cast<size_t>(queued);
    std::string().swap(pending_);
    pendingStart_ = 0;
    return unread;
}

void FileHandle::closeFile()
{
    fd_.reset();
}

FileHandle::ReadResult FileHandle::readAvailable(std::string *sink)
{
    if (!fd_.valid())
        return ReadResult::EndOfFile;
    // Read exactly what the pipe holds, straight into the sink. Growing the
    // sink by a fixed slack on every call would zero-fill it and touch fresh
    // pages for nothing; a small reply then costs a few bytes, not 64 KiB.
    int queued = 0;
    if (ioctl(fd_.get(), FIONREAD, &queued) != 0 || queued < 0)
        queued = 0;

    ssize_t n;
    if (sink != nullptr && queued > 0) {
        const size_t oldSize = sink->size();
        const size_t wanted = static_cast<size_t>(queued);
        // A large reply's room comes in huge pages and is not zero-filled.
        char *room = LargeBuffer::extendUninitialized(*sink, oldSize + wanted);
        n = retryOnInterrupt([&] { return ::read(fd_.get(), room, wanted); });
        sink->resize(oldSize + static_cast<size_t>(std::max<ssize_t>(n, 0)));
    } else {
        // Nothing reported: the end of the stream, output to throw away, or
        // a descriptor that FIONREAD does not answer for.
        static thread_local char scratch[kScratchBytes];
        n = retryOnInterrupt([&] { return ::read(fd_.get(), scratch, sizeof scratch); });
        if (n > 0 && sink != nullptr) {
            // Grown the way the sink always grows, so that a secret's room is
            // wiped as it is given up; the scratch copy goes too.
            LargeBuffer::reserve(*sink, sink->size() + static_cast<size_t>(n));
            sink->append(scratch, static_cast<size_t>(n));
            if (SecretMemory::inScope())
                SecretMemory::wipe(scratch, static_cast<size_t>(n));
        }
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
    if (!fd_.valid() || nonBlocking_)
        return;
    const int flags = fcntl(fd_.get(), F_GETFL);
    if (flags < 0 || ((flags & O_NONBLOCK) == 0 && fcntl(fd_.get(), F_SETFL, flags | O_NONBLOCK) != 0))
        return;
    nonBlocking_ = true;
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
