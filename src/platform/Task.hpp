// One child process: program, argument vector, standard input and output.
// Started with posix_spawn; the child inherits only descriptors 0, 1 and 2
// (and the files it is given, from 3 on), the host's standard error and
// working directory, and starts with an empty signal mask and default signal
// dispositions. Its environment is the host's unless the task is given one.
#pragma once

#include "platform/Descriptor.hpp"

#include <sys/types.h>

#include <optional>
#include <string>
#include <vector>

namespace OrvelDialogs::Platform {

class FileHandle;

class Task {
public:
    Task() = default;
    ~Task();
    Task(const Task &) = delete;
    Task &operator=(const Task &) = delete;

    void setLaunchPath(std::string path) { launchPath_ = std::move(path); }
    const std::string &launchPath() const { return launchPath_; }
    void setArguments(std::vector<std::string> arguments) { arguments_ = std::move(arguments); }
    const std::vector<std::string> &arguments() const { return arguments_; }
    // "NAME=value" entries in place of the host's environment, which the
    // child gets as it is until this is called.
    void setEnvironment(std::vector<std::string> environment) { environment_ = std::move(environment); }
    // The child's ends of its pipes; the task closes them once it has started
    // the child (or failed to).
    void setStandardInput(UniqueFd childEnd) { childStdin_ = std::move(childEnd); }
    void setStandardOutput(UniqueFd childEnd) { childStdout_ = std::move(childEnd); }
    // Files the child gets as descriptors kFirstInheritedFile, + 1, ... in
    // this order; the task closes its copies once it has started the child
    // (or failed to).
    static constexpr int kFirstInheritedFile = 3;
    void setInheritedFiles(std::vector<UniqueFd> files) { inheritedFiles_ = std::move(files); }

    // Starts the child without waiting. Raises the platform exception when
    // the program cannot be started.
    void launch();

    // Takes the place of launch() for a child that never ran and counts as
    // exited with `status` (the launcher's scripted stand-in for fuzzing).
    void adoptExitedChild(int status);

    bool wasLaunched() const { return state_ != State::NotLaunched; }
    // Reaps the child if it has exited; never blocks.
    bool hasExited();
    // Blocks until the child has exited. Meanwhile `output` (if not null and
    // open) is read as data arrives, into `sink`, or thrown away when `sink`
    // is null; after the exit whatever the pipe still holds is read too.
    // What `input` (if not null and open) still keeps is written as the child
    // takes it, and the input is closed once all of it went out; if the
    // child exits or stops reading first, the rest stays kept in `input`.
    // Once `sink` holds more than `sinkLimit` bytes reading stops, a child
    // that still runs is killed, and the result is false (after the reaping).
    bool waitUntilExit(FileHandle *input, FileHandle *output, std::string *sink,
                       size_t sinkLimit = static_cast<size_t>(-1));

    // The exit status; 128 + the signal's number for a child ended by a
    // signal; 0 when the status was lost. Raises while the child runs.
    int terminationStatus() const;
    enum class StatusLoss {
        None,
        // The host ignores SIGCHLD: the kernel discarded the status.
        IgnoredByHost,
        // Another waitpid() in the host (a SIGCHLD handler on another
        // thread, say) reaped the child first.
        TakenByHost,
    };
    StatusLoss statusLoss() const { return statusLoss_; }
    pid_t processIdentifier() const { return pid_; }
    // Closes the descriptor that waiting uses, for a child nobody will wait
    // for any more; hasExited() still reaps it.
    void releaseExitDescriptor() { pidFd_.reset(); }

private:
    enum class State { NotLaunched, Running, Exited };

    void recordExit(int waitStatus);
    void blockUntilReaped();

    std::string launchPath_;
    std::vector<std::string> arguments_;
    std::optional<std::vector<std::string>> environment_;
    UniqueFd childStdin_;
    UniqueFd childStdout_;
    std::vector<UniqueFd> inheritedFiles_;
    UniqueFd pidFd_;
    pid_t pid_ = -1;
    State state_ = State::NotLaunched;
    int status_ = 0;
    StatusLoss statusLoss_ = StatusLoss::None;
};

} // namespace OrvelDialogs::Platform
