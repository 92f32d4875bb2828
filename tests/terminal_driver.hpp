// Runs a program the way a user at a terminal would: in a new session whose
// controlling terminal is a pseudo-terminal the test holds the other end of.
// Every wait has a time limit; a process still running at the end is killed
// with its process group. A session is one row of a table: the arguments, then
// the steps a user takes and what each must show.
#pragma once

#include <OrvelGUIDialogs/Util.hpp>

#include "support/Host.hpp"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <chrono>
#include <clocale>
#include <cstdlib>
#include <cwchar>
#include <string>
#include <string_view>
#include <vector>

namespace OrvelTest {

// A step of a session is one string, its first character saying what it is:
//   ?text  text is drawn, after what the previous "?" found
//   !keys  the user types keys            <bytes  bytes go to standard input
//   .      standard input ends            #R,C    the terminal gets R rows, C columns
//   ~N     the program gets signal N      =N      it exits with status N (128 + signal)
//   >text  standard output is text        ^text   standard output starts with text
//   +text  text is in standard output or on the screen (or standard error)
//   -text  text is in neither             @text   the GUI's log (the Base64 after
//   %text  the GUI's log lacks text               "-log" in its reply) holds text
//   *raw   the terminal is in raw mode    *restored  as the user left it: cooked,
//                                                    the main screen
//   [text  the screen as last drawn shows text (its styles left out)
//   |      no row of the screen as last drawn is wider than the terminal
constexpr const char *kDown = "!\x1b[B";
constexpr const char *kEnter = "!\r";
constexpr const char *kEscape = "!\x1b";

struct Session {
    const char *name; // the test's name
    std::vector<std::string> arguments;
    std::vector<std::string> steps;
    bool terminal = true; // false: a new session with no terminal at all
    std::vector<std::string> environment = {}; // "NAME=value", over the inherited ones
    std::vector<std::pair<std::string, std::string>> files = {}; // name and bytes, in the working folder
    int rows = 40, columns = 120;
};
inline void PrintTo(const Session &session, std::ostream *out) { *out << session.name; }
inline std::string sessionName(const testing::TestParamInfo<Session> &info) { return info.param.name; }

inline std::string guiLog(const std::string &reply)
{
    const size_t at = reply.find(" -log ");
    return at == std::string::npos ? "(no log)" : OrvelDialogs::Util::Base64Decode(reply.substr(at + 6));
}

// No call here retries after EINTR: these test processes catch no signal.
class DrivenProcess {
public:
    // Standard output is a pipe, and so is standard input for `pipeStdin`; the
    // rest is the terminal, or /dev/null and a pipe for standard error.
    DrivenProcess(const std::vector<std::string> &argv, const Session &session, bool pipeStdin,
                  std::vector<std::string> environment, const std::string &directory)
    {
        ::signal(SIGPIPE, SIG_IGN); // a child that is gone must not end the test
        int inPipe[2] = {-1, -1}, outPipe[2], screenPipe[2] = {-1, -1};
        std::string terminal = "/dev/null";
        if (session.terminal) {
            screenFd_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
            if (screenFd_ < 0 || ::grantpt(screenFd_) != 0 || ::unlockpt(screenFd_) != 0)
                std::abort();
            terminal = ::ptsname(screenFd_);
            resize(session.rows, session.columns);
        }
        if ((!session.terminal && ::pipe2(screenPipe, O_CLOEXEC) != 0) || ::pipe2(outPipe, O_CLOEXEC) != 0 ||
            (pipeStdin && ::pipe2(inPipe, O_CLOEXEC) != 0))
            std::abort();
        std::vector<char *> arguments;
        for (const auto &argument : argv)
            arguments.push_back(const_cast<char *>(argument.c_str()));
        arguments.push_back(nullptr);
        // Always the terminal front end, also where a display is set.
        environment.push_back("ORVEL_GUI_FRONTEND=terminal");

        if ((pid_ = ::fork()) < 0)
            std::abort();
        if (pid_ == 0) {
            // This process has one thread, so the environment may change here.
            ::setsid();
            const int fd = ::open(terminal.c_str(), O_RDWR); // becomes the controlling terminal
            ::dup2(pipeStdin ? inPipe[0] : fd, STDIN_FILENO);
            ::dup2(outPipe[1], STDOUT_FILENO);
            ::dup2(session.terminal ? fd : screenPipe[1], STDERR_FILENO);
            for (auto &variable : environment)
                ::putenv(variable.data());
            if (::chdir(directory.c_str()) != 0)
                ::_exit(126);
            ::signal(SIGPIPE, SIG_DFL);
            ::execv(arguments[0], arguments.data());
            ::_exit(127);
        }
        for (const int childEnd : {inPipe[0], outPipe[1], screenPipe[1]})
            if (childEnd >= 0)
                ::close(childEnd);
        stdinFd_ = inPipe[1];
        stdoutFd_ = outPipe[0];
        screenFd_ = session.terminal ? screenFd_ : screenPipe[0];
    }
    ~DrivenProcess()
    {
        if (pid_ > 0) {
            ::kill(-pid_, SIGKILL);
            ::kill(pid_, SIGKILL);
            ::waitpid(pid_, nullptr, 0);
        }
        for (int fd : {screenFd_, stdinFd_, stdoutFd_})
            if (fd >= 0)
                ::close(fd);
    }
    DrivenProcess(const DrivenProcess &) = delete;
    DrivenProcess &operator=(const DrivenProcess &) = delete;

    pid_t pid() const { return pid_; }
    int terminalFd() const { return screenFd_; }
    const std::string &screen() const { return screen_; }
    const std::string &standardOutput() const { return stdout_; }

    // Resizes the terminal; the kernel sends SIGWINCH to its foreground job.
    void resize(int rows, int columns)
    {
        const winsize size{static_cast<unsigned short>(rows), static_cast<unsigned short>(columns), 0, 0};
        ::ioctl(screenFd_, TIOCSWINSZ, &size);
    }

    // Waits until `text` has been drawn after the previous match.
    bool waitForScreen(std::string_view text)
    {
        for (const auto deadline = now() + kWaitMs;;) {
            const auto found = screen_.find(text, cursor_);
            if (found != std::string::npos) {
                cursor_ = found + text.size();
                return true;
            }
            if (now() >= deadline || !pump(50))
                return screen_.find(text, cursor_) != std::string::npos;
        }
    }

    // Waits until nothing more has been drawn for `quietMs` (a window may
    // draw twice in a row), for the screen as last drawn to be whole.
    void settle(int quietMs = 200)
    {
        if (screen_.size() == settledSize_)
            return;
        for (const auto deadline = now() + kWaitMs; now() < deadline;) {
            const std::size_t before = screen_.size();
            if (!pump(quietMs) || screen_.size() == before)
                break;
        }
        settledSize_ = screen_.size();
    }

    void sendKeys(std::string_view keys) { writeAll(screenFd_, keys); }
    void writeStdin(std::string_view bytes) { writeAll(stdinFd_, bytes); }
    void closeStdin()
    {
        ::close(stdinFd_);
        stdinFd_ = -1;
    }

    // The exit status (128 + N after signal N), or -1 when the process did not
    // end in time (it is killed then).
    int waitExit()
    {
        for (const auto deadline = now() + kWaitMs;; pump(20)) {
            int status = 0;
            if (::waitpid(pid_, &status, WNOHANG) == pid_) {
                pid_ = -1;
                while (pump(100)) {
                }
                return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
            }
            if (now() >= deadline) {
                ::kill(-pid_, SIGKILL);
                return -1;
            }
        }
    }

private:
    static constexpr int kWaitMs = 20000;

    static long long now()
    {
        using namespace std::chrono;
        return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
    }

    static void writeAll(int fd, std::string_view bytes)
    {
        for (ssize_t n; !bytes.empty() && (n = ::write(fd, bytes.data(), bytes.size())) > 0;)
            bytes.remove_prefix(static_cast<std::size_t>(n));
    }

    // Reads what is there within `timeoutMs`; false when nothing is left open.
    bool pump(int timeoutMs)
    {
        pollfd fds[2] = {{screenOpen_ ? screenFd_ : -1, POLLIN, 0}, {stdoutFd_, POLLIN, 0}};
        if (fds[0].fd < 0 && fds[1].fd < 0)
            return false;
        const int ready = ::poll(fds, 2, timeoutMs);
        if (ready <= 0)
            return ready == 0 && pid_ > 0;
        screenOpen_ = readInto(fds[0], screen_) && screenOpen_;
        if (!readInto(fds[1], stdout_)) {
            ::close(stdoutFd_);
            stdoutFd_ = -1;
        }
        return true;
    }

    // False at the end of the output (EIO once the terminal's last user left;
    // the terminal itself stays open so that its mode can still be read).
    static bool readInto(const pollfd &entry, std::string &out)
    {
        if (entry.fd < 0 || entry.revents == 0)
            return true;
        char buffer[4096];
        const ssize_t n = ::read(entry.fd, buffer, sizeof buffer);
        if (n > 0)
            out.append(buffer, static_cast<std::size_t>(n));
        return n > 0;
    }

    pid_t pid_ = -1;
    int screenFd_ = -1, stdinFd_ = -1, stdoutFd_ = -1;
    bool screenOpen_ = true;
    std::string screen_, stdout_;
    std::size_t cursor_ = 0;
    std::size_t settledSize_ = 0;
};

// The rows of the screen as last drawn, without their escape sequences.
inline std::vector<std::string> lastDrawnRows(const std::string &screen)
{
    const std::size_t start = screen.rfind("\x1b[2J");
    std::string frame = start == std::string::npos ? screen : screen.substr(start + 4);
    std::vector<std::string> rows(1);
    for (std::size_t i = 0; i < frame.size(); ++i) {
        if (frame[i] == '\x1b') {
            if (i + 1 < frame.size() && frame[i + 1] == '[')
                for (i += 2; i < frame.size() && !(frame[i] >= 0x40 && frame[i] <= 0x7E); ++i) {
                }
        } else if (frame[i] == '\n') {
            rows.emplace_back();
        } else if (frame[i] != '\r') {
            rows.back().push_back(frame[i]);
        }
    }
    return rows;
}

// The cells a row takes, by the C library's own widths.
inline int cellsOf(const std::string &row)
{
    std::setlocale(LC_CTYPE, "C.UTF-8");
    std::wstring wide(row.size() + 1, L'\0');
    const std::size_t count = std::mbstowcs(wide.data(), row.c_str(), wide.size());
    return count == static_cast<std::size_t>(-1) ? 1 << 20 : ::wcswidth(wide.c_str(), count);
}

// Runs `program` with the session's arguments in a new working folder of its
// own ("{dir}" in any text), takes the steps and checks what they must show.
// Standard input is a pipe for `pipeStdin` or where a step writes to it.
inline void play(const std::string &program, const Session &session, bool pipeStdin)
{
    const TempFolder folder;
    const auto expand = [&](std::string text) {
        for (size_t at; (at = text.find("{dir}")) != std::string::npos;)
            text.replace(at, 5, folder.path);
        return text;
    };
    for (const auto &[name, bytes] : session.files)
        writeFile(folder / name, bytes);
    std::vector<std::string> argv = {program}, environment;
    for (const auto &argument : session.arguments)
        argv.push_back(expand(argument));
    for (const auto &variable : session.environment)
        environment.push_back(expand(variable));
    for (const std::string &step : session.steps)
        pipeStdin = pipeStdin || step[0] == '<' || step[0] == '.';
    DrivenProcess p(argv, session, pipeStdin, environment, folder.path);
    for (const std::string &step : session.steps) {
        const std::string text = expand(step.substr(1)), &out = p.standardOutput();
        const int number = std::atoi(text.c_str());
        termios mode{};
        switch (step[0]) {
        case '?':
            if (!p.waitForScreen(text))
                FAIL() << "never drawn: " << text << "\nscreen:\n" << p.screen();
            break;
        case '!': p.sendKeys(text); break;
        case '<': p.writeStdin(text); break;
        case '.': p.closeStdin(); break;
        case '#': p.resize(number, std::atoi(text.substr(text.find(',') + 1).c_str())); break;
        case '~': ::kill(p.pid(), number); break;
        case '=': EXPECT_EQ(p.waitExit(), number) << out << p.screen(); break;
        case '>': EXPECT_EQ(out, text); break;
        case '^': EXPECT_EQ(out.rfind(text, 0), 0u) << out; break;
        case '+': EXPECT_NE((out + p.screen()).find(text), std::string::npos) << out << p.screen(); break;
        case '-': EXPECT_EQ((out + p.screen()).find(text), std::string::npos) << out << p.screen(); break;
        case '@': EXPECT_NE(guiLog(out).find(text), std::string::npos) << guiLog(out); break;
        case '[': {
            p.settle();
            std::string shown;
            for (const std::string &row : lastDrawnRows(p.screen()))
                shown += row + "\n";
            EXPECT_NE(shown.find(text), std::string::npos) << shown;
            break;
        }
        case '|':
            p.settle();
            for (const std::string &row : lastDrawnRows(p.screen()))
                EXPECT_LE(cellsOf(row), session.columns) << row;
            break;
        case '%': EXPECT_EQ(guiLog(out).find(text), std::string::npos) << guiLog(out); break;
        case '*':
            ASSERT_EQ(::tcgetattr(p.terminalFd(), &mode), 0);
            if (text == "raw") {
                EXPECT_EQ(mode.c_lflag & (ICANON | ECHO), 0u);
                break;
            }
            EXPECT_EQ(mode.c_lflag & (ICANON | ECHO | ISIG), static_cast<tcflag_t>(ICANON | ECHO | ISIG));
            EXPECT_NE(p.screen().find("\x1b[?1049l"), std::string::npos);
            break;
        default: FAIL() << "no such step: " << step;
        }
    }
}

} // namespace OrvelTest
