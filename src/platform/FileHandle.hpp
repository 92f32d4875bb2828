// One end of a pipe: write bytes without blocking, read to the end of the
// stream, close.
#pragma once

#include "platform/Descriptor.hpp"

#include <string>
#include <string_view>

namespace OrvelDialogs::Platform {

class FileHandle {
public:
    explicit FileHandle(UniqueFd fd);

    int descriptor() const { return fd_.get(); }
    bool isClosed() const { return !fd_.valid(); }

    // Writes what the reader takes now and never blocks: the rest is kept, in
    // order behind anything kept before, and goes out with later writes or
    // flushPending(). A closed handle or a reader that has gone raises the
    // platform exception and drops what was kept; SIGPIPE never reaches the
    // process.
    void writeWithoutBlocking(std::string_view bytes);
    // Keeps `bytes` behind what is kept, without writing: they go out with
    // flushPending(). A closed handle raises the platform exception.
    void keepForWriting(std::string_view bytes);
    enum class FlushResult { Done, WouldBlock, ReaderGone };
    // Writes as much of what is kept as the reader takes now. Never raises
    // for a reader that has gone: that is ReaderGone, and the bytes stay kept.
    FlushResult flushPending();
    size_t pendingBytes() const { return pending_.size() - pendingStart_; }
    // Drops what is kept. The count of bytes the reader never got: those kept
    // plus those still unread in the pipe.
    size_t discardUnread();
    void closeFile();

    // Blocks until the end of the stream and returns every byte read.
    std::string readDataToEndOfFile();

    enum class ReadResult { Data, EndOfFile, WouldBlock };
    // One read of what the pipe holds now, appended to `sink`, or thrown away
    // when `sink` is null. Call it when poll() reports the handle readable,
    // or after makeNonBlocking().
    ReadResult readAvailable(std::string *sink);
    // Reads until the stream ends or holds nothing more right now.
    void drainWithoutBlocking(std::string *sink);
    void makeNonBlocking();

private:
    UniqueFd fd_;
    bool nonBlocking_ = false;
    // Bytes not yet taken by the reader, from pendingStart_ on.
    std::string pending_;
    size_t pendingStart_ = 0;
};

} // namespace OrvelDialogs::Platform
