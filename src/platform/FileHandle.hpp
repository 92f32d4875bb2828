// One end of a pipe: write bytes, read to the end of the stream, close.
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

    // Writes every byte. A closed handle or a reader that has gone raises the
    // platform exception; SIGPIPE never reaches the process.
    void writeData(std::string_view bytes);
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
};

} // namespace OrvelDialogs::Platform
