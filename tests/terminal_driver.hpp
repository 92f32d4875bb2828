// Runs a program the way a user at a terminal would: in a new session whose
// controlling terminal is a pseudo-terminal that the test holds the other end
// of. The test sends keys, reads what was drawn, and takes the exit status.
// Every wait has a time limit; a process still running at the end is killed
// together with its process group.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace OrvelTest {

constexpr int kWaitMs = 20000;
constexpr const char *kKeyDown = "\x1b[B";
constexpr const char *kKeyUp = "\x1b[A";
constexpr const char *kKeyEnter = "\r";
constexpr const char *kKeyEscape = "\x1b";

struct ProcessOptions {
    std::vector<std::string> argv; // argv[0] is the program's path
    bool terminal = true;          // false: a new session with no terminal at all
    bool pipeStdin = false;        // else the terminal (or /dev/null)
    bool pipeStdout = false;       // else the terminal (or /dev/null)
    std::string workingDirectory;
    std::vector<std::string> environment; // "NAME=value", over the inherited ones
    int rows = 40;
    int columns = 120;
};

class DrivenProcess {
public:
    explicit DrivenProcess(const ProcessOptions &options)
    {
        ::signal(SIGPIPE, SIG_IGN); // a child that is gone must not end the test
        start(options);
    }
    ~DrivenProcess()
    {
        if (pid_ > 0) {
            ::kill(-pid_, SIGKILL);
            ::kill(pid_, SIGKILL);
            int status = 0;
            while (::waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
            }
        }
        for (int fd : {screenFd_, stdinFd_, stdoutFd_})
            if (fd >= 0)
                ::close(fd);
    }
    DrivenProcess(const DrivenProcess &) = delete;
    DrivenProcess &operator=(const DrivenProcess &) = delete;

    pid_t pid() const { return pid_; }
    int terminalFd() const { return screenFd_; }

    // Resizes the terminal; the kernel sends SIGWINCH to its foreground job.
    void resize(int rows, int columns)
    {
        winsize size{};
        size.ws_row = static_cast<unsigned short>(rows);
        size.ws_col = static_cast<unsigned short>(columns);
        ::ioctl(screenFd_, TIOCSWINSZ, &size);
    }

    // Waits until `text` has been drawn after the previous match.
    bool waitForScreen(std::string_view text, int timeoutMs = kWaitMs)
    {
        const auto deadline = now() + timeoutMs;
        for (;;) {
            const auto found = screen_.find(text, cursor_);
            if (found != std::string::npos) {
                cursor_ = found + text.size();
                return true;
            }
            if (now() >= deadline || !pump(50))
                return screen_.find(text, cursor_) != std::string::npos;
        }
    }

    void sendKeys(std::string_view keys) { writeAll(screenFd_, keys); }
    void writeStdin(std::string_view bytes) { writeAll(stdinFd_, bytes); }
    void closeStdin()
    {
        ::close(stdinFd_);
        stdinFd_ = -1;
    }

    // The exit status (128 + N after signal N), or -1 when the process did
    // not end in time (it is killed then).
    int waitExit(int timeoutMs = kWaitMs)
    {
        const auto deadline = now() + timeoutMs;
        for (;;) {
            int status = 0;
            pid_t done = 0;
            do {
                done = ::waitpid(pid_, &status, WNOHANG);
            } while (done < 0 && errno == EINTR);
            if (done == pid_) {
                pid_ = -1;
                while (pump(100)) {
                }
                return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
            }
            if (now() >= deadline) {
                ::kill(-pid_, SIGKILL);
                return -1;
            }
            pump(20);
        }
    }

    const std::string &screen() const { return screen_; }
    const std::string &standardOutput() const { return stdout_; }

private:
    static long long now()
    {
        return std::chrono::duration_cast<std::chrono::milliseconds>(
                   std::chrono::steady_clock::now().time_since_epoch())
            .count();
    }

    static void writeAll(int fd, std::string_view bytes)
    {
        while (!bytes.empty()) {
            const ssize_t n = ::write(fd, bytes.data(), bytes.size());
            if (n < 0 && errno == EINTR)
                continue;
            if (n <= 0)
                return;
            bytes.remove_prefix(static_cast<std::size_t>(n));
        }
    }

    // Reads what is there within `timeoutMs`; false when nothing is left open.
    bool pump(int timeoutMs)
    {
        pollfd fds[2] = {{screenOpen_ ? screenFd_ : -1, POLLIN, 0}, {stdoutFd_, POLLIN, 0}};
        if (fds[0].fd < 0 && fds[1].fd < 0)
            return false;
        int ready = 0;
        do {
            ready = ::poll(fds, 2, timeoutMs);
        } while (ready < 0 && errno == EINTR);
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
        ssize_t n = 0;
        do {
            n = ::read(entry.fd, buffer, sizeof buffer);
        } while (n < 0 && errno == EINTR);
        if (n <= 0)
            return false;
        out.append(buffer, static_cast<std::size_t>(n));
        return true;
    }

    void start(const ProcessOptions &options)
    {
        int inPipe[2] = {-1, -1};
        int outPipe[2] = {-1, -1};
        int screenPipe[2] = {-1, -1};
        std::string slaveName;
        if (options.terminal) {
            screenFd_ = ::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
            if (screenFd_ < 0 || ::grantpt(screenFd_) != 0 || ::unlockpt(screenFd_) != 0)
                std::abort();
            slaveName = ::ptsname(screenFd_);
            winsize size{};
            size.ws_row = static_cast<unsigned short>(options.rows);
            size.ws_col = static_cast<unsigned short>(options.columns);
            ::ioctl(screenFd_, TIOCSWINSZ, &size);
        } else if (::pipe2(screenPipe, O_CLOEXEC) != 0) {
            std::abort();
        }
        if ((options.pipeStdin && ::pipe2(inPipe, O_CLOEXEC) != 0) ||
            (options.pipeStdout && ::pipe2(outPipe, O_CLOEXEC) != 0))
            std::abort();

        std::vector<char *> argv;
        for (const auto &argument : options.argv)
            argv.push_back(const_cast<char *>(argument.c_str()));
        argv.push_back(nullptr);
        // Always the terminal front end, also where a display is set.
        std::vector<std::string> environment = {"ORVEL_GUI_FRONTEND=terminal"};
        environment.insert(environment.end(), options.environment.begin(), options.environment.end());
        for (char **entry = environ; *entry; ++entry) {
            const std::string_view text(*entry);
            const auto overridden = [&](const std::string &e) {
                return text.substr(0, text.find('=') + 1) == std::string_view(e).substr(0, e.find('=') + 1);
            };
            if (std::none_of(environment.begin(), environment.end(), overridden))
                environment.emplace_back(text);
        }
        std::vector<char *> envp;
        for (auto &entry : environment)
            envp.push_back(entry.data());
        envp.push_back(nullptr);
        const char *directory = options.workingDirectory.empty() ? nullptr : options.workingDirectory.c_str();

        pid_ = ::fork();
        if (pid_ < 0)
            std::abort();
        if (pid_ == 0) {
            // Only async-signal-safe calls from here to exec.
            ::setsid();
            int terminal = -1;
            if (options.terminal) {
                terminal = ::open(slaveName.c_str(), O_RDWR); // becomes the controlling terminal
            } else {
                terminal = ::open("/dev/null", O_RDWR);
                ::dup2(screenPipe[1], STDERR_FILENO);
            }
            ::dup2(options.pipeStdin ? inPipe[0] : terminal, STDIN_FILENO);
            ::dup2(options.pipeStdout ? outPipe[1] : terminal, STDOUT_FILENO);
            if (options.terminal)
                ::dup2(terminal, STDERR_FILENO);
            if (directory && ::chdir(directory) != 0)
                ::_exit(126);
            ::signal(SIGPIPE, SIG_DFL);
            ::execve(argv[0], argv.data(), envp.data());
            ::_exit(127);
        }
        if (!options.terminal) {
            screenFd_ = screenPipe[0];
            ::close(screenPipe[1]);
        }
        if (options.pipeStdin) {
            stdinFd_ = inPipe[1];
            ::close(inPipe[0]);
        }
        if (options.pipeStdout) {
            stdoutFd_ = outPipe[0];
            ::close(outPipe[1]);
        }
    }

    pid_t pid_ = -1;
    int screenFd_ = -1;
    bool screenOpen_ = true;
    int stdinFd_ = -1;
    int stdoutFd_ = -1;
    std::string screen_;
    std::string stdout_;
    std::size_t cursor_ = 0;
};

} // namespace OrvelTest
