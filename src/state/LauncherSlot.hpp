// The slot `appLchr` and the launchers it has let go of.
#pragma once

#include <memory>

class AppLauncher;

namespace OrvelDialogs::State {

// Puts `launcher` into appLchr and returns it. The launcher it replaces is
// released at once when its child has exited or never started; one whose
// child still runs (a reinsert-card notice) is left running, untouched, and
// released at a later call once its child has exited.
AppLauncher &installLauncher(std::unique_ptr<AppLauncher> launcher);

// Releases the replaced launchers whose children have exited; never blocks.
void releaseFinishedLaunchers();

} // namespace OrvelDialogs::State
