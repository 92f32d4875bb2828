#include "terminal/Terminal.hpp"

#include <fcntl.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <iterator>

namespace OrvelGui {
namespace {

// What the signal handler needs; only async-signal-safe calls use it.
volatile sig_atomic_t g_terminalFd = -1;
struct termios g_savedMode;
// Every signal whose default action ends the process, but SIGPIPE (ignored
// here) and SIGKILL and SIGSTOP (which cannot be caught): a crash gives the
// terminal back as a Ctrl-C does.
constexpr int kSignals[] = {SIGINT,  SIGTERM, SIGHUP,  SIGQUIT, SIGSEGV, SIGABRT, SIGBUS,    SIGFPE, SIGILL,
                            SIGTRAP, SIGSYS,  SIGXCPU, SIGXFSZ, SIGALRM, SIGUSR1, SIGUSR2, SIGPROF, SIGVTALRM};
struct sigaction g_previousActions[std::size(kSignals)];
bool g_handled[std::size(kSignals)];
// The handler runs here, so that a stack overflow (SIGSEGV with no stack
// left) still gets the terminal back.
alignas(16) char g_signalStack[64 * 1024];
stack_t g_previousSignalStack;
bool g_ownSignalStack = false;
// SIGWINCH writes a byte here so that a wait in poll() wakes up to redraw.
int g_resizePipe[2] = {-1, -1};
struct sigaction g_previousResizeAction;

// Leave the alternate screen, show the cursor, reset colours.
constexpr char kEnterScreen[] = "\x1b[?1049h\x1b[?25l";
constexpr char kLeaveScreen[] = "\x1b[0m\x1b[?25h\x1b[?1049l";

// A byte that may follow the escape key inside a sequence.
constexpr int kSequenceTimeoutMs = 50;

void restoreFromSignal(int signalNumber)
{
    const int fd = g_terminalFd;
    if (fd >= 0) {
        [[maybe_unused]] const ssize_t ignored = ::write(fd, kLeaveScreen, sizeof kLeaveScreen - 1);
        ::tcsetattr(fd, TCSANOW, &g_savedMode);
    }
    // SA_RESETHAND has put back the default action. The signal raised again
    // ends the process as soon as this handler returns; a fault that is not
    // raised but made (a bad address) comes back on its own when the
    // instruction runs again.
    ::raise(signalNumber);
}

void noteResize(int)
{
    const int savedErrno = errno;
    const char byte = 0;
    [[maybe_unused]] const ssize_t ignored = ::write(g_resizePipe[1], &byte, 1);
    errno = savedErrno;
}

void drainResizePipe()
{
    char buffer[64];
    while (::read(g_resizePipe[0], buffer, sizeof buffer) > 0) {
    }
}

void writeAll(int fd, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t n = ::write(fd, text.data(), text.size());
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return; // the terminal is gone; nothing left to show it to
        text.remove_prefix(static_cast<std::size_t>(n));
    }
}

} // namespace

int pollRetrying(pollfd *fds, nfds_t count, int timeoutMs)
{
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + std::chrono::milliseconds(timeoutMs < 0 ? 0 : timeoutMs);
    for (;;) {
        int wait = timeoutMs;
        if (timeoutMs > 0) {
            const auto left =
                std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
            wait = left > 0 ? static_cast<int>(left) : 0;
        }
        const int result = ::poll(fds, count, wait);
        if (result >= 0 || errno != EINTR)
            return result;
    }
}

std::unique_ptr<Terminal> Terminal::open(GuiLog &log)
{
    int fd = -1;
    do {
        fd = ::open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
    } while (fd < 0 && errno == EINTR);
    if (fd < 0) {
        log.add(std::string("No terminal: ") + std::strerror(errno));
        return nullptr;
    }
    struct termios mode{};
    if (!::isatty(fd) || ::tcgetattr(fd, &mode) != 0) {
        log.add("No terminal: /dev/tty is no terminal.");
        ::close(fd);
        return nullptr;
    }
    g_savedMode = mode;
    g_terminalFd = fd;
    stack_t signalStack{};
    signalStack.ss_sp = g_signalStack;
    signalStack.ss_size = sizeof g_signalStack;
    g_ownSignalStack = ::sigaltstack(&signalStack, &g_previousSignalStack) == 0;
    for (std::size_t i = 0; i < std::size(kSignals); ++i) {
        // A signal the process ignores stays ignored.
        g_handled[i] = ::sigaction(kSignals[i], nullptr, &g_previousActions[i]) == 0 &&
                       g_previousActions[i].sa_handler != SIG_IGN;
        if (!g_handled[i])
            continue;
        struct sigaction action{};
        action.sa_handler = restoreFromSignal;
        action.sa_flags = SA_RESETHAND | (g_ownSignalStack ? SA_ONSTACK : 0);
        sigfillset(&action.sa_mask);
        ::sigaction(kSignals[i], &action, nullptr);
    }

    // Raw input: bytes as typed, no echo, Ctrl-C as a key (so that it does not
    // also hit the host, which shares our process group). Output processing
    // stays on.
    struct termios raw = mode;
    raw.c_iflag &= ~static_cast<tcflag_t>(BRKINT | ICRNL | INPCK | ISTRIP | IXON);
    raw.c_lflag &= ~static_cast<tcflag_t>(ECHO | ICANON | IEXTEN | ISIG);
    raw.c_cflag |= CS8;
    raw.c_cc[VMIN] = 1;
    raw.c_cc[VTIME] = 0;
    ::tcsetattr(fd, TCSANOW, &raw);
    if (g_resizePipe[0] < 0 && ::pipe2(g_resizePipe, O_CLOEXEC | O_NONBLOCK) != 0)
        g_resizePipe[0] = g_resizePipe[1] = -1; // then a new size shows at the next key
    if (g_resizePipe[0] >= 0) {
        struct sigaction action{};
        action.sa_handler = noteResize;
        action.sa_flags = SA_RESTART;
        sigemptyset(&action.sa_mask);
        ::sigaction(SIGWINCH, &action, &g_previousResizeAction);
    }
    std::unique_ptr<Terminal> terminal(new Terminal(fd, raw));
    terminal->write(kEnterScreen);
    return terminal;
}

Terminal::~Terminal()
{
    writeAll(fd_, kLeaveScreen);
    ::tcsetattr(fd_, TCSANOW, &g_savedMode);
    g_terminalFd = -1;
    for (std::size_t i = 0; i < std::size(kSignals); ++i)
        if (g_handled[i])
            ::sigaction(kSignals[i], &g_previousActions[i], nullptr);
    if (g_ownSignalStack)
        ::sigaltstack(&g_previousSignalStack, nullptr);
    g_ownSignalStack = false;
    if (g_resizePipe[0] >= 0) {
        ::sigaction(SIGWINCH, &g_previousResizeAction, nullptr);
        ::close(g_resizePipe[0]);
        ::close(g_resizePipe[1]);
        g_resizePipe[0] = g_resizePipe[1] = -1;
    }
    ::close(fd_);
}

void Terminal::passSignalKeys(bool pass)
{
    struct termios mode = raw_;
    if (pass)
        mode.c_lflag |= ISIG;
    ::tcsetattr(fd_, TCSANOW, &mode);
}

void Terminal::write(std::string_view text)
{
    writeAll(fd_, text);
}

void Terminal::showCursor(bool show)
{
    write(show ? "\x1b[?25h" : "\x1b[?25l");
}

int Terminal::rows() const
{
    struct winsize size{};
    if (::ioctl(fd_, TIOCGWINSZ, &size) == 0 && size.ws_row > 0)
        return size.ws_row;
    return 24;
}

int Terminal::columns() const
{
    struct winsize size{};
    if (::ioctl(fd_, TIOCGWINSZ, &size) == 0 && size.ws_col > 0)
        return size.ws_col;
    return 80;
}

bool Terminal::readByte(unsigned char &byte, int timeoutMs)
{
    if (!pending_.empty()) {
        byte = static_cast<unsigned char>(pending_.front());
        pending_.erase(0, 1);
        return true;
    }
    if (closed_)
        return false;
    pollfd fds{fd_, POLLIN, 0};
    if (pollRetrying(&fds, 1, timeoutMs) <= 0)
        return false;
    ssize_t n = 0;
    do {
        n = ::read(fd_, &byte, 1);
    } while (n < 0 && errno == EINTR);
    if (n != 1) {
        closed_ = true; // end of file or a hang-up
        return false;
    }
    return true;
}

Key Terminal::escapeSequence()
{
    unsigned char byte = 0;
    if (!readByte(byte, kSequenceTimeoutMs))
        return {KeyType::Escape, {}};
    if (byte != '[' && byte != 'O') {
        pending_.insert(pending_.begin(), static_cast<char>(byte));
        return {KeyType::Escape, {}};
    }
    std::string parameters;
    for (int i = 0; i < 16; ++i) {
        if (!readByte(byte, kSequenceTimeoutMs))
            return {KeyType::Ignored, {}};
        if (byte >= 0x40 && byte <= 0x7E)
            break;
        parameters.push_back(static_cast<char>(byte));
    }
    switch (byte) {
    case 'A':
        return {KeyType::Up, {}};
    case 'B':
        return {KeyType::Down, {}};
    case 'C':
        return {KeyType::Right, {}};
    case 'D':
        return {KeyType::Left, {}};
    case 'H':
        return {KeyType::Home, {}};
    case 'F':
        return {KeyType::End, {}};
    case '~':
        if (parameters == "5")
            return {KeyType::PageUp, {}};
        if (parameters == "6")
            return {KeyType::PageDown, {}};
        if (parameters == "1" || parameters == "7")
            return {KeyType::Home, {}};
        if (parameters == "4" || parameters == "8")
            return {KeyType::End, {}};
        return {KeyType::Ignored, {}};
    default:
        return {KeyType::Ignored, {}};
    }
}

Key Terminal::utf8Character(unsigned char lead)
{
    int length = 0;
    if (lead >= 0xC2 && lead <= 0xDF)
        length = 2;
    else if (lead >= 0xE0 && lead <= 0xEF)
        length = 3;
    else if (lead >= 0xF0 && lead <= 0xF4)
        length = 4;
    else
        return {KeyType::Ignored, {}};
    std::string text(1, static_cast<char>(lead));
    for (int i = 1; i < length; ++i) {
        unsigned char byte = 0;
        if (!readByte(byte, kSequenceTimeoutMs))
            return {KeyType::Ignored, {}};
        if ((byte & 0xC0) != 0x80) {
            pending_.insert(pending_.begin(), static_cast<char>(byte));
            return {KeyType::Ignored, {}};
        }
        text.push_back(static_cast<char>(byte));
    }
    return {KeyType::Text, text};
}

Key Terminal::readKey(int timeoutMs, int watchedFd, bool readKeys)
{
    if (readKeys && closed_ && pending_.empty())
        return {KeyType::Closed, {}};
    if (!readKeys || pending_.empty()) {
        pollfd fds[3] = {{readKeys ? fd_ : -1, POLLIN, 0},
                         {g_resizePipe[0], POLLIN, 0},
                         {watchedFd, POLLIN, 0}};
        const int ready = pollRetrying(fds, 3, timeoutMs);
        if (ready <= 0)
            return {KeyType::Timeout, {}};
        if (fds[1].revents != 0) {
            drainResizePipe();
            return {KeyType::Resized, {}};
        }
        if (fds[2].revents != 0)
            return {KeyType::Watched, {}};
        if (fds[0].revents == 0)
            return {KeyType::Timeout, {}};
    }
    unsigned char byte = 0;
    if (!readByte(byte, 0))
        return {closed_ ? KeyType::Closed : KeyType::Timeout, {}};
    switch (byte) {
    case 0x1B:
        return escapeSequence();
    case '\r':
    case '\n':
        return {KeyType::Enter, {}};
    case 0x7F:
    case 0x08:
        return {KeyType::Backspace, {}};
    case '\t':
        return {KeyType::Tab, {}};
    case 0x03:
    case 0x04:
        return {KeyType::Interrupt, {}};
    case 0x15:
        return {KeyType::ClearLine, {}};
    default:
        break;
    }
    if (byte < 0x20)
        return {KeyType::Ignored, {}};
    if (byte >= 0x80)
        return utf8Character(byte);
    return {KeyType::Text, std::string(1, static_cast<char>(byte))};
}

} // namespace OrvelGui
