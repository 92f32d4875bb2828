#include "state/LauncherSlot.hpp"

#include <OrvelGUIDialogs/AppLauncher.hpp>
#include <OrvelGUIDialogs/LibraryState.hpp>

#include "platform/FileHandle.hpp"
#include "platform/Task.hpp"

#include <algorithm>
#include <vector>

namespace OrvelDialogs::State {
namespace {

// Replaced launchers whose children were still running. Not constant-
// initialisable as a vector would need, so it lives behind a function.
std::vector<std::unique_ptr<AppLauncher>> &replacedLaunchers()
{
    static std::vector<std::unique_ptr<AppLauncher>> launchers;
    return launchers;
}

bool childFinished(AppLauncher &launcher)
{
    const auto &task = launcher.guiTask();
    return !task || !task->wasLaunched() || task->hasExited();
}

} // namespace

void closePipes(AppLauncher &launcher) noexcept
{
    for (const auto &handle : {launcher.inputHandle(), launcher.outputHandle()})
        if (handle)
            handle->closeFile();
}

void releaseFinishedLaunchers()
{
    auto &launchers = replacedLaunchers();
    std::erase_if(launchers, [](const std::unique_ptr<AppLauncher> &launcher) { return childFinished(*launcher); });
}

AppLauncher &installLauncher(std::unique_ptr<AppLauncher> launcher)
{
    releaseFinishedLaunchers();
    std::unique_ptr<AppLauncher> replaced = std::exchange(appLchr, std::move(launcher));
    if (replaced && !childFinished(*replaced)) {
        // Nothing can reach that child any more, so the host keeps none of
        // its descriptors: its input ends (a notice then closes itself), and
        // only a check without blocking at later calls remains, to reap it.
        closePipes(*replaced);
        replaced->guiTask()->releaseExitDescriptor();
        replacedLaunchers().push_back(std::move(replaced));
    }
    return *appLchr;
}

} // namespace OrvelDialogs::State
