// AppLauncher: one child process of the GUI application with its two pipes.
// Launch, wait, then read the exit status, the reply and the GUI's log.
#ifndef ORVEL_APP_LAUNCHER_HPP
#define ORVEL_APP_LAUNCHER_HPP

#include <OrvelGUIDialogs/OrvelExport.h>

#include <memory>
#include <string>
#include <vector>

namespace OrvelDialogs::Platform {
class FileHandle;
class Task;
} // namespace OrvelDialogs::Platform

class ORV_EXPORT AppLauncher {
public:
    using FileHandlePtr = std::shared_ptr<OrvelDialogs::Platform::FileHandle>;
    using TaskPtr = std::shared_ptr<OrvelDialogs::Platform::Task>;

    AppLauncher();
    ~AppLauncher();
    AppLauncher(const AppLauncher &) = delete;
    AppLauncher &operator=(const AppLauncher &) = delete;

    // Write end of the child's standard input.
    const FileHandlePtr &inputHandle() const;
    void setInputHandle(FileHandlePtr handle);
    // Read end of the child's standard output.
    const FileHandlePtr &outputHandle() const;
    void setOutputHandle(FileHandlePtr handle);
    const TaskPtr &guiTask() const;
    void setGuiTask(TaskPtr task);

    // Starts the executable of the bundle at `bundlePath` and returns at once.
    // Values too large for a command line go in sealed memory files
    // (docs/PROTOCOL.md). Throws the platform exception when it cannot be
    // started.
    void Launch(const std::string &bundlePath, const std::vector<std::string> &arguments);
    // Blocks until the child has exited, keeping its standard output drained
    // so that no reply size can block it.
    void WaitUntilExit();
    // The same for a child whose output nobody reads (the reinsert-card
    // notice): what it writes is drained and thrown away. Commands still kept
    // for its input go out as it takes them, then its input is closed;
    // commands it never read before exiting are dropped with a log entry.
    void WaitUntilExitDiscardingOutput();
    // 0 to 8 unchanged; anything else logs and gives 7. A child killed by a
    // signal reports 128 + the signal's number.
    int GetTerminationStatus();
    // out `response`: the whole output when it begins with `windowName`: 0;
    // else 7 (no output, or another beginning, logged), `response` unchanged.
    int GetStdoutResponse(const std::string &windowName, std::string &response);
    // Appends the GUI application's Base64 log, found after "-log" in
    // `response`, to the log: 0; 7 when there is no "-log" (logged). Throws
    // the platform exception when "-log" is the last token.
    int ProcessLogFromGUI(const std::string &response);

private:
    FileHandlePtr inputHandle_;
    FileHandlePtr outputHandle_;
    TaskPtr guiTask_;
    std::string collectedOutput_;
    bool outputCollected_ = false;
};

#endif
