// The controlling terminal (/dev/tty) in raw mode: keys in, screens out.
// Standard input and output belong to the library's pipes, so the user is
// reached through /dev/tty only. The terminal's mode is restored when the
// object goes away and also when a signal ends the process: SIGINT, SIGTERM,
// SIGHUP, SIGQUIT, a crash (SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL) and the
// other signals whose default is to end it. The handler runs on a stack of
// its own, writes with async-signal-safe calls only, and then lets the
// signal's default action end the process. A change of the window's size
// (SIGWINCH) arrives as a key of its own.
#pragma once

#include "protocol/GuiLog.hpp"

#include <poll.h>
#include <termios.h>

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
    Resized,   // the window changed its size: lay out again
    Watched,   // the descriptor given to readKey() is readable
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
    void write(std::string_view text);
    // Waits up to timeoutMs (-1: no limit) for one key, a change of size, or
    // input on `watchedFd` (-1: none). With readKeys false the keyboard is
    // left alone.
    Key readKey(int timeoutMs, int watchedFd = -1, bool readKeys = true);
    // The window's size; 24 by 80 when the terminal does not say.
    int rows() const;
    int columns() const;
    void showCursor(bool show);
    // With true, Ctrl-C and the other signal keys act as usual again: they
    // signal the whole foreground job (the host and us) instead of arriving
    // as keys.
    void passSignalKeys(bool pass);

private:
    Terminal(int fd, const struct termios &raw) : fd_(fd), raw_(raw) {}
    bool readByte(unsigned char &byte, int timeoutMs);
    Key escapeSequence();
    Key utf8Character(unsigned char lead);

    int fd_;
    struct termios raw_;
    std::string pending_;
    bool closed_ = false;
};

} // namespace OrvelGui
