// The reinsert-card commands that arrive on standard input.
#pragma once

#include "protocol/GuiLog.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace OrvelGui {

enum class ReinsertCommand { Insert, Remove, Close };

// Takes the reinsert-card commands apart. They arrive as one byte stream with
// no separators between them; anything that cannot begin a command is skipped.
class ReinsertCommandParser {
public:
    explicit ReinsertCommandParser(GuiLog &log) : log_(log) {}
    // Appends the complete commands found so far to `out`.
    void feed(std::string_view bytes, std::vector<ReinsertCommand> &out);

private:
    GuiLog &log_;
    std::string pending_;
    std::size_t skipped_ = 0;
};

// Reads the commands from a descriptor (standard input). A front end polls
// fd() for readability in its own event loop and then calls readAvailable().
class ReinsertCommandReader {
public:
    ReinsertCommandReader(int fd, GuiLog &log) : fd_(fd), log_(log), parser_(log) {}
    int fd() const { return fd_; }
    // One read; end of input or a read error counts as the close command.
    void readAvailable(std::vector<ReinsertCommand> &out);
    // Blocks until the next command (for when there is no user to show it to).
    ReinsertCommand waitForCommand();
    bool ended() const { return ended_; }

private:
    int fd_;
    GuiLog &log_;
    ReinsertCommandParser parser_;
    bool ended_ = false;
};

} // namespace OrvelGui
