// The controlling terminal (/dev/tty) in raw mode: keys in, screens out.
// Standard input and output belong to the library's pipes, so the user is
// reached through /dev/tty only. The terminal's mode is restored when the
// object goes away and also when SIGINT, SIGTERM, SIGHUP or SIGQUIT ends the
// process (the handler restores, then re-raises the signal).
#pragma once

#include "protocol/GuiLog.hpp"

#include <poll.h>

#include <memory>
#include <string>
#include <string_view>

namespace OrvelGui {

enum class KeyType {
    Timeout,
    Ignored,
    Up,
    Down,
    Left,
    Right,
    Home,
    End,
    PageUp,
    PageDown,
    Enter,
    Escape,
    Backspace,
    ClearLine, // Ctrl-U
    Tab,
    Text,      // one UTF-8 character in Key::text
    Interrupt, // Ctrl-C, Ctrl-D
    Closed,    // the terminal went away
};

struct Key {
    KeyType type = KeyType::Ignored;
    std::string text;
};

// poll() that retries on EINTR until the timeout (milliseconds, -1 for none)
// has passed. Returns what poll returns.
int pollRetrying(pollfd *fds, nfds_t count, int timeoutMs);

class Terminal {
public:
    // Nothing when there is no controlling terminal.
    static std::unique_ptr<Terminal> open(GuiLog &log);
    ~Terminal();
    Terminal(const Terminal &) = delete;
    Terminal &operator=(const Terminal &) = delete;

    int fd() const { return fd_; }
    // True when bytes already read wait to be decoded (poll would not see them).
    bool hasPending() const { return !pending_.empty(); }
    void write(std::string_view text);
    // Waits up to timeoutMs (-1: no limit) for one key.
    Key readKey(int timeoutMs);
    // Rows of the window; 24 when the terminal does not say.
    int rows() const;
    void showCursor(bool show);

private:
    explicit Terminal(int fd) : fd_(fd) {}
    bool readByte(unsigned char &byte, int timeoutMs);
    Key escapeSequence();
    Key utf8Character(unsigned char lead);

    int fd_;
    std::string pending_;
    bool closed_ = false;
};

} // namespace OrvelGui
