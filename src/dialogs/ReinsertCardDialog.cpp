// The modeless "take the card out and put it back" notice: show starts the
// GUI application and returns; switch and close steer it through its stdin.
#include "dialogs/DialogExchange.hpp"

#include <OrvelGUIDialogs/AppLauncher.hpp>
#include <OrvelGUIDialogs/LibraryState.hpp>

#include "platform/ChildSignalBlock.hpp"
#include "platform/FileHandle.hpp"
#include "state/Language.hpp"
#include "state/LauncherSlot.hpp"

namespace OrvelDialogs {

using namespace Dialogs;

namespace {

constexpr std::string_view kInsertCommand = "ReinsertCard insert";
constexpr std::string_view kRemoveCommand = "ReinsertCard remove";
constexpr std::string_view kCloseCommand = "ReinsertCard close";

// The slot's launcher may be one that can no longer take commands: closed,
// replaced by a modal dialog whose child has exited, or never started. Its
// writes then fail as platform exceptions, which switch and close turn into
// 7 with the exception entry rather than letting them reach the host.
Platform::FileHandle &commandInput(AppLauncher &launcher)
{
    if (!launcher.inputHandle())
        throw Platform::PlatformException("the GUI application was never started: no input to write to");
    return *launcher.inputHandle();
}

} // namespace

long Dialog::displayReinsertCardDialog(const char *message)
{
    State::resolveLanguage();
    if (!appPathIsSet())
        return kPathNotSet;
    if (message == nullptr)
        return kBadArgument;

    const std::string language = languageCode();
    const OptionalText messageText = hostText(message);

    return withExceptionPath([&] {
        const auto arguments =
            argumentList({"-window", "ReinsertCard", "-lang", language, "-message", messageText});
        AppLauncher &launcher = State::installLauncher(std::make_unique<AppLauncher>());
        try {
            launcher.Launch(*g_appPath, arguments);
        } catch (...) {
            State::closePipes(launcher);
            throw;
        }
        return kSuccess;
    });
}

long Dialog::switchTextReinsertCardDialog(int insert)
{
    if (!appLchr)
        return kNoLauncher;
    if (static_cast<unsigned int>(insert) > 1)
        return kBadArgument;
    State::releaseFinishedLaunchers();
    return withExceptionPath([&] {
        // A notice that does not read now gets the command later; the host
        // never waits for it.
        commandInput(*appLchr).writeWithoutBlocking(insert == 1 ? kInsertCommand : kRemoveCommand);
        return kSuccess;
    });
}

long Dialog::closeReinsertCardDialog()
{
    if (!appLchr)
        return kNoLauncher;
    State::releaseFinishedLaunchers();
    return withExceptionPath([&] {
        AppLauncher &launcher = *appLchr;
        // The command is only kept here, never written at once: a notice that
        // has ended by itself (its window closed, or it crashed) cannot take
        // it, and that is no failure of close. Close always ends the input,
        // reaps the notice and releases its descriptors, and its result is
        // the notice's exit status whether the notice ended before close or
        // during it, so it never depends on timing; a command it never took
        // is logged with the wait. A launcher that can take no command at all
        // (closed, replaced by a modal dialog, never started) gives 7 with
        // the exception entry.
        commandInput(launcher).keepForWriting(kCloseCommand);
        const PipesClosedOnReturn pipesClosed{launcher};
        const Platform::ChildSignalBlock childSignalBlocked;
        // Sends what the notice has not taken yet, then ends its input.
        // Nobody reads its output; that is drained so that it cannot block in
        // a write and never exit.
        launcher.WaitUntilExitDiscardingOutput();
        return static_cast<long>(launcher.GetTerminationStatus());
    });
}

} // namespace OrvelDialogs

extern "C" {

long ORV_ReinsertCardShow(const char *message)
{
    return OrvelDialogs::Dialogs::callFromC([&] { return OrvelDialogs::Dialog::displayReinsertCardDialog(message); });
}

long ORV_ReinsertCardSwitchText(int insert)
{
    return OrvelDialogs::Dialogs::callFromC([&] { return OrvelDialogs::Dialog::switchTextReinsertCardDialog(insert); });
}

long ORV_ReinsertCardClose(void)
{
    return OrvelDialogs::Dialogs::callFromC([] { return OrvelDialogs::Dialog::closeReinsertCardDialog(); });
}

} // extern "C"
