#include "platform/Task.hpp"

#include "platform/FileHandle.hpp"
#include "platform/PlatformException.hpp"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>

extern char **environ;

namespace OrvelDialogs::Platform {
namespace {

// Without a pidfd (old kernels) the wait polls the child at this interval.
constexpr int kExitPollMilliseconds = 5;

UniqueFd openPidFd(pid_t pid)
{
#ifdef SYS_pidfd_open
    const long fd = syscall(SYS_pidfd_open, pid, 0);
    if (fd >= 0)
        return UniqueFd(static_cast<int>(fd));
#else
    (void)pid;
#endif
    return UniqueFd();
}

class SpawnFileActions {
public:
    SpawnFileActions() { posix_spawn_file_actions_init(&actions_); }
    ~SpawnFileActions() { posix_spawn_file_actions_destroy(&actions_); }
    posix_spawn_file_actions_t *get() { return &actions_; }

private:
    posix_spawn_file_actions_t actions_;
};

class SpawnAttributes {
public:
    SpawnAttributes() { posix_spawnattr_init(&attributes_); }
    ~SpawnAttributes() { posix_spawnattr_destroy(&attributes_); }
    posix_spawnattr_t *get() { return &attributes_; }

private:
    posix_spawnattr_t attributes_;
};

// SIG_IGN or SA_NOCLDWAIT: the kernel reaps every child and keeps no status.
bool hostIgnoresChildren()
{
    struct sigaction action{};
    if (sigaction(SIGCHLD, nullptr, &action) != 0)
        return false;
    return action.sa_handler == SIG_IGN || (action.sa_flags & SA_NOCLDWAIT) != 0;
}

void check(int error, const char *call)
{
    if (error != 0)
        raiseSystemError(call, error);
}

// Hands `files` to the child as descriptors kFirstInheritedFile, + 1, ...
// The actions run in order, so a source among those numbers would be
// overwritten before its own turn: such a source is first moved above them.
void addInheritedFiles(posix_spawn_file_actions_t *actions, std::vector<UniqueFd> &files)
{
    const int firstFree = Task::kFirstInheritedFile + static_cast<int>(files.size());
    for (size_t i = 0; i < files.size(); ++i) {
        if (files[i].get() < firstFree) {
            UniqueFd lifted(::fcntl(files[i].get(), F_DUPFD_CLOEXEC, firstFree));
            if (!lifted.valid())
                raiseSystemError("fcntl(F_DUPFD_CLOEXEC)", errno);
            files[i] = std::move(lifted);
        }
        check(posix_spawn_file_actions_adddup2(actions, files[i].get(), Task::kFirstInheritedFile + static_cast<int>(i)),
              "posix_spawn_file_actions_adddup2");
    }
}

} // namespace

Task::~Task()
{
    // A child that still runs is left alone (its owner keeps the task until it
    // has exited); one that has exited is reaped here so that no zombie stays.
    if (state_ == State::Running)
        hasExited();
}

void Task::launch()
{
    if (state_ != State::NotLaunched)
        throw PlatformException("launch: the task was already launched");
    // The child's pipe ends are ours to close whatever happens below.
    UniqueFd childStdin = std::move(childStdin_);
    UniqueFd childStdout = std::move(childStdout_);
    std::vector<UniqueFd> inheritedFiles = std::move(inheritedFiles_);
    if (launchPath_.empty())
        throw PlatformException("launch: no launch path");

    SpawnFileActions actions;
    if (childStdin.valid())
        check(posix_spawn_file_actions_adddup2(actions.get(), childStdin.get(), STDIN_FILENO),
              "posix_spawn_file_actions_adddup2");
    if (childStdout.valid())
        check(posix_spawn_file_actions_adddup2(actions.get(), childStdout.get(), STDOUT_FILENO),
              "posix_spawn_file_actions_adddup2");
    addInheritedFiles(actions.get(), inheritedFiles);
#if defined(__APPLE__)
    // On macOS POSIX_SPAWN_CLOEXEC_DEFAULT (below) closes everything else.
#else
    check(posix_spawn_file_actions_addclosefrom_np(actions.get(),
                                                   kFirstInheritedFile + static_cast<int>(inheritedFiles.size())),
          "posix_spawn_file_actions_addclosefrom_np");
#endif

    SpawnAttributes attributes;
    sigset_t emptyMask;
    sigemptyset(&emptyMask);
    // Every bit set, so that the C library's own real-time signals, which
    // sigfillset leaves out, get their default disposition too.
    sigset_t allSignals;
    std::memset(&allSignals, 0xFF, sizeof allSignals);
    short flags = POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF;
#if defined(__APPLE__)
    flags |= POSIX_SPAWN_CLOEXEC_DEFAULT;
#endif
    check(posix_spawnattr_setsigmask(attributes.get(), &emptyMask), "posix_spawnattr_setsigmask");
    check(posix_spawnattr_setsigdefault(attributes.get(), &allSignals), "posix_spawnattr_setsigdefault");
    check(posix_spawnattr_setflags(attributes.get(), flags), "posix_spawnattr_setflags");

    std::vector<char *> argv;
    argv.reserve(arguments_.size() + 2);
    argv.push_back(launchPath_.data());
    for (auto &argument : arguments_)
        argv.push_back(argument.data());
    argv.push_back(nullptr);
    std::vector<char *> envp;
    if (environment_) {
        envp.reserve(environment_->size() + 1);
        for (auto &entry : *environment_)
            envp.push_back(entry.data());
        envp.push_back(nullptr);
    }

    pid_t pid = -1;
    const int error = posix_spawn(&pid, launchPath_.c_str(), actions.get(), attributes.get(), argv.data(),
                                  environment_ ? envp.data() : environ);
    if (error != 0)
        raiseSystemError("posix_spawn " + launchPath_, error);
    pid_ = pid;
    state_ = State::Running;
    pidFd_ = openPidFd(pid);
}

void Task::adoptExitedChild(int status)
{
    childStdin_.reset();
    childStdout_.reset();
    state_ = State::Exited;
    status_ = status;
}

void Task::recordExit(int waitStatus)
{
    state_ = State::Exited;
    pidFd_.reset();
    if (WIFEXITED(waitStatus))
        status_ = WEXITSTATUS(waitStatus);
    else if (WIFSIGNALED(waitStatus))
        status_ = 128 + WTERMSIG(waitStatus);
    else
        status_ = waitStatus;
}

bool Task::hasExited()
{
    if (state_ != State::Running)
        return state_ == State::Exited;
    int waitStatus = 0;
    const pid_t reaped = retryOnInterrupt([&] { return waitpid(pid_, &waitStatus, WNOHANG); });
    if (reaped == pid_) {
        recordExit(waitStatus);
        return true;
    }
    if (reaped < 0 && errno == ECHILD) {
        // Someone else reaped it: the kernel, when the host ignores SIGCHLD,
        // or another waitpid() of the host.
        state_ = State::Exited;
        pidFd_.reset();
        status_ = 0;
        statusLoss_ = hostIgnoresChildren() ? StatusLoss::IgnoredByHost : StatusLoss::TakenByHost;
        return true;
    }
    return false;
}

void Task::blockUntilReaped()
{
    while (!hasExited()) {
        if (pidFd_.valid()) {
            pollfd exited{pidFd_.get(), POLLIN, 0};
            if (retryOnInterrupt([&] { return ::poll(&exited, 1, -1); }) < 0)
                raiseSystemError("poll", errno);
        } else {
            ::poll(nullptr, 0, kExitPollMilliseconds);
        }
    }
}

bool Task::waitUntilExit(FileHandle *input, FileHandle *output, std::string *sink, size_t sinkLimit)
{
    auto overLimit = [&] { return sink != nullptr && sink->size() > sinkLimit; };
    if (state_ == State::NotLaunched)
        throw PlatformException("waitUntilExit: the task was not launched");
    bool inputOpen = input != nullptr && !input->isClosed();
    bool outputOpen = output != nullptr && !output->isClosed();
    // Once everything went out the child may read to the end of its input.
    auto closeInputWhenSent = [&] {
        if (inputOpen && input->pendingBytes() == 0) {
            input->closeFile();
            inputOpen = false;
        }
    };
    closeInputWhenSent();
    while ((outputOpen || inputOpen) && !hasExited()) {
        pollfd watched[3];
        nfds_t count = 0;
        int timeout = kExitPollMilliseconds;
        if (pidFd_.valid()) {
            watched[count++] = {pidFd_.get(), POLLIN, 0};
            timeout = -1;
        }
        const nfds_t outputIndex = count;
        if (outputOpen)
            watched[count++] = {output->descriptor(), POLLIN, 0};
        const nfds_t inputIndex = count;
        if (inputOpen)
            watched[count++] = {input->descriptor(), POLLOUT, 0};
        if (retryOnInterrupt([&] { return ::poll(watched, count, timeout); }) < 0)
            raiseSystemError("poll", errno);
        if (outputOpen && watched[outputIndex].revents != 0 &&
            output->readAvailable(sink) == FileHandle::ReadResult::EndOfFile)
            outputOpen = false;
        if (overLimit()) {
            // Checked first: until it is reaped the process identifier is
            // still this child's.
            if (!hasExited())
                ::kill(pid_, SIGKILL);
            blockUntilReaped();
            return false;
        }
        if (inputOpen && watched[inputIndex].revents != 0) {
            // A reader that has gone takes nothing more; what is left stays
            // kept for the caller to count.
            if (input->flushPending() == FileHandle::FlushResult::ReaderGone)
                inputOpen = false;
            closeInputWhenSent();
        }
    }
    blockUntilReaped();
    // Everything the child wrote is in the pipe by now. Read it without
    // waiting for the end of the stream, which a grandchild holding the pipe
    // could put off for ever.
    if (outputOpen)
        output->drainWithoutBlocking(sink);
    return !overLimit();
}

int Task::terminationStatus() const
{
    if (state_ != State::Exited)
        throw PlatformException("terminationStatus: the task has not exited");
    return status_;
}

} // namespace OrvelDialogs::Platform
