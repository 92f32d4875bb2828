// The slot `appLchr` and the launchers it has let go of.
#pragma once

#include <memory>

class AppLauncher;

namespace OrvelDialogs::State {

// Puts `launcher` into appLchr and returns it. The launcher it replaces is
// released at once when its child has exited or never started; one whose
// child still runs (a reinsert-card notice) is left running, untouched, and
// released at a later call once its child has exited; the library's ends of
// that child's pipes are closed at once.
AppLauncher &installLauncher(std::unique_ptr<AppLauncher> launcher);

// Closes the library's ends of the launcher's pipes (a modal dialog's once it
// has read the reply).
void closePipes(AppLauncher &launcher) noexcept;

// Releases the replaced launchers whose children have exited; never blocks.
void releaseFinishedLaunchers();

} // namespace OrvelDialogs::State
