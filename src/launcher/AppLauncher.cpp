#include <OrvelGUIDialogs/AppLauncher.hpp>
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "launcher/GuiEnvironment.hpp"
#include "launcher/ReplyBuffer.hpp"
#include "launcher/ReplyTokens.hpp"
#include "launcher/ScriptedChild.hpp"
#include "launcher/ValueFiles.hpp"
#include "platform/Bundle.hpp"
#include "platform/FileHandle.hpp"
#include "platform/HostText.hpp"
#include "platform/PlatformException.hpp"
#include "platform/Task.hpp"
#include "state/Log.hpp"
#include "state/OutputLimit.hpp"
#include "util/Base64Alphabet.hpp"
#include "util/SecretMemory.hpp"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>

using OrvelDialogs::Platform::FileHandle;
using OrvelDialogs::Platform::PlatformException;
using OrvelDialogs::Platform::Task;

namespace {

// A larger pipe for the reply means fewer wake-ups while a big reply streams
// in. The kernel may refuse; the default size works too.
constexpr int kReplyPipeSize = 1 << 20;

void enlargePipe(int fd)
{
#ifdef F_SETPIPE_SZ
    fcntl(fd, F_SETPIPE_SZ, kReplyPipeSize);
#else
    (void)fd;
#endif
}

const OrvelDialogs::Launcher::ScriptedChild *currentScript = nullptr;

// The scripted child's output as a file the launcher reads like a pipe.
OrvelDialogs::Platform::UniqueFd fileHolding(const std::string &bytes)
{
    OrvelDialogs::Platform::UniqueFd fd(memfd_create("scripted-child-output", MFD_CLOEXEC));
    if (!fd.valid())
        OrvelDialogs::Platform::raiseSystemError("memfd_create", errno);
    size_t written = 0;
    while (written < bytes.size()) {
        const ssize_t n = ::write(fd.get(), bytes.data() + written, bytes.size() - written);
        if (n < 0 && errno != EINTR)
            OrvelDialogs::Platform::raiseSystemError("write", errno);
        written += static_cast<size_t>(std::max<ssize_t>(n, 0));
    }
    lseek(fd.get(), 0, SEEK_SET);
    return fd;
}

} // namespace

namespace OrvelDialogs::Launcher {

void setScriptedChild(const ScriptedChild *child)
{
    currentScript = child;
}

const ScriptedChild *scriptedChild()
{
    return currentScript;
}

} // namespace OrvelDialogs::Launcher

AppLauncher::AppLauncher() = default;
AppLauncher::~AppLauncher() = default;

const AppLauncher::FileHandlePtr &AppLauncher::inputHandle() const { return inputHandle_; }
void AppLauncher::setInputHandle(FileHandlePtr handle) { inputHandle_ = std::move(handle); }
const AppLauncher::FileHandlePtr &AppLauncher::outputHandle() const { return outputHandle_; }
void AppLauncher::setOutputHandle(FileHandlePtr handle) { outputHandle_ = std::move(handle); }
const AppLauncher::TaskPtr &AppLauncher::guiTask() const { return guiTask_; }
void AppLauncher::setGuiTask(TaskPtr task) { guiTask_ = std::move(task); }

void AppLauncher::Launch(const std::string &bundlePath, const std::vector<std::string> &arguments)
{
    auto task = std::make_shared<Task>();
    setGuiTask(task);

    if (currentScript != nullptr) {
        task->setArguments(arguments);
        task->adoptExitedChild(currentScript->status);
        setInputHandle(std::make_shared<FileHandle>(OrvelDialogs::Platform::makePipe().writeEnd));
        setOutputHandle(std::make_shared<FileHandle>(fileHolding(currentScript->output)));
        return;
    }

    const auto executable = OrvelDialogs::Platform::bundleExecutablePath(bundlePath);
    if (!executable)
        throw PlatformException("no application bundle with an executable at \"" + bundlePath + "\"");
    task->setLaunchPath(*executable);

    auto input = OrvelDialogs::Platform::makePipe();
    auto output = OrvelDialogs::Platform::makePipe();
    enlargePipe(output.writeEnd.get());
    task->setStandardInput(std::move(input.readEnd));
    task->setStandardOutput(std::move(output.writeEnd));
    setInputHandle(std::make_shared<FileHandle>(std::move(input.writeEnd)));
    setOutputHandle(std::make_shared<FileHandle>(std::move(output.readEnd)));
    OrvelDialogs::Launcher::giveArgumentsToTask(*task, arguments, OrvelDialogs::Launcher::settingsForGui());

    task->launch();
}

namespace {

void logLostStatus(const Task &task)
{
    if (task.statusLoss() == Task::StatusLoss::IgnoredByHost)
        logMsg("Návratový kód GUI aplikace se ztratil (hostitel ignoruje SIGCHLD), bere se jako 0.");
    else if (task.statusLoss() == Task::StatusLoss::TakenByHost)
        logMsg("Návratový kód GUI aplikace převzal jiný waitpid() hostitele (obsluha SIGCHLD v jiném vlákně?); "
               "výsledek je 7.");
}

} // namespace

void AppLauncher::WaitUntilExit()
{
    if (!guiTask_)
        throw PlatformException("WaitUntilExit: nothing was launched");
    // A modal dialog's input is neither written nor closed.
    collectedOutput_ = OrvelDialogs::Launcher::takeReplyBuffer();
    const std::uint64_t limit = OrvelDialogs::State::outputLimit();
    if (!guiTask_->waitUntilExit(nullptr, outputHandle_.get(), &collectedOutput_,
                                 static_cast<size_t>(std::min<std::uint64_t>(limit, SIZE_MAX)))) {
        if (OrvelDialogs::SecretMemory::inScope())
            OrvelDialogs::SecretMemory::wipe(collectedOutput_);
        std::string().swap(collectedOutput_);
        throw PlatformException("the GUI application wrote more than the output limit of " + std::to_string(limit) +
                                " bytes (ORV_SetOutputLimit); it was killed and its output dropped");
    }
    outputCollected_ = true;
    logLostStatus(*guiTask_);
}

void AppLauncher::WaitUntilExitDiscardingOutput()
{
    if (!guiTask_)
        throw PlatformException("WaitUntilExit: nothing was launched");
    FileHandle *input = inputHandle_.get();
    guiTask_->waitUntilExit(input, outputHandle_.get(), nullptr);
    if (input != nullptr && !input->isClosed()) {
        // The child exited (or closed its input) before it took every command.
        const size_t unread = input->discardUnread();
        input->closeFile();
        if (unread > 0)
            logMsg("GUI aplikace skončila a nepřečetla " + std::to_string(unread) +
                   " bajtů příkazů; zahazují se.");
    }
    logLostStatus(*guiTask_);
}

int AppLauncher::GetTerminationStatus()
{
    if (!guiTask_)
        throw PlatformException("GetTerminationStatus: nothing was launched");
    // No status to pass on: the exchange failed (logged at the wait).
    if (guiTask_->statusLoss() == Task::StatusLoss::TakenByHost)
        return 7;
    const int status = guiTask_->terminationStatus();
    if (static_cast<std::uint32_t>(status) < 9)
        return status;
    logMsg("Unknown error code number occured:" + std::to_string(status) + "\n");
    return 7;
}

int AppLauncher::GetStdoutResponse(const std::string &windowName, std::string &response)
{
    std::string bytes;
    if (outputCollected_) {
        bytes = std::move(collectedOutput_);
        collectedOutput_.clear();
        outputCollected_ = false;
    } else {
        if (!outputHandle_)
            throw PlatformException("GetStdoutResponse: nothing was launched");
        bytes = outputHandle_->readDataToEndOfFile();
    }
    if (bytes.empty())
        return 7;
    // Text that is not UTF-8 cannot begin with the window name.
    if (!OrvelDialogs::Platform::isValidUtf8(bytes) || !bytes.starts_with(windowName)) {
        OrvelDialogs::Launcher::keepReplyBuffer(std::move(bytes));
        logMsg("Chybná odpověď od " + windowName + " okna.\n");
        return 7;
    }
    // The reply changes places with what `response` held, whose room then
    // serves the next reply: a large reply is never copied.
    response.swap(bytes);
    OrvelDialogs::Launcher::keepReplyBuffer(std::move(bytes));
    return 0;
}

int AppLauncher::ProcessLogFromGUI(const std::string &response)
{
    const auto logIndex = OrvelDialogs::Launcher::findToken(response, "-log");
    if (!logIndex) {
        logMsg("Odpověď z GUI neobsahovala log.\n");
        return 7;
    }
    const std::string_view token = OrvelDialogs::Launcher::tokenAt(response, *logIndex + 1);
    if (token.empty()) {
        logMsg("log z GUI aplikace je prazdný");
        return 0;
    }
    // One GUI log adds at most the bound to the log: only as many whole
    // Base64 groups are decoded. It was longer when decoding did not stop by
    // itself before the cut and the token goes on with more of the alphabet.
    const std::uint64_t bound = OrvelDialogs::State::guiLogLimit();
    const size_t kept = static_cast<size_t>(std::min<std::uint64_t>(bound / 3 * 4, token.size()));
    bool cut = false;
    // Decoded straight into the log, into room made for it beforehand: a log
    // section of many MiB is not copied on its way there.
    constexpr std::string_view kPrefix = "log z GUI aplikace: ";
    const size_t expected = kPrefix.size() + kept / 4 * 3 + 2 + 2;
    OrvelDialogs::State::logEntryInPlace(expected, [&](std::string &log) {
        log.append(kPrefix);
        const size_t textStart = log.size();
        OrvelDialogs::Base64::appendUtilDecoded(token.substr(0, kept), log);
        cut = kept < token.size() && log.size() - textStart == kept / 4 * 3 &&
              OrvelDialogs::Base64::kValues[static_cast<unsigned char>(token[kept])] !=
                  OrvelDialogs::Base64::kNotInAlphabet;
        const auto zero = log.find('\0', textStart);
        if (zero != std::string::npos)
            log.resize(zero);
        // A log that is not valid UTF-8 is kept with U+FFFD in place of the
        // bad bytes: the rest of it is still worth reading.
        const std::string_view text(log.data() + textStart, log.size() - textStart);
        if (!OrvelDialogs::Platform::isValidUtf8(text)) {
            std::string readable = OrvelDialogs::Platform::textReplacingInvalidUtf8(text);
            log.resize(textStart);
            OrvelDialogs::State::makeLogRoom(log, readable.size() + 2);
            log += readable;
        }
        log.append(" \n");
    });
    if (cut)
        logMsg("Log z GUI aplikace byl delší než " + std::to_string(bound) +
               " bajtů (čtvrtina limitu výstupu, ORV_SetOutputLimit); zbytek se zahazuje.");
    return 0;
}
