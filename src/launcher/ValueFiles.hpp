// Values too large for the child's command line. Linux refuses one argument
// longer than 32 pages (128 KiB with its zero) and an argument vector plus
// environment above a quarter of the stack limit (at most 6 MiB). While the
// command line fits it is passed exactly as the dialog built it; otherwise
// the largest values, one at a time, move into sealed memory files until the
// rest fits.
//
// How a GUI application tells a reference from a value that merely looks
// like one: the reference "@fd:N" stands in the value's place (N the
// descriptor, 3 or above), and the child's environment variable
// ORVEL_GUI_VALUE_FILES announces every one of them as
// "<option>:<descriptor>:<bytes>", joined by ",". A value whose option is not
// announced there is a value, whatever it looks like; the library removes a
// variable of that name that the host's own environment holds.
#pragma once

#include "launcher/GuiEnvironment.hpp"

#include <string>
#include <vector>

namespace OrvelDialogs::Platform {
class Task;
}

namespace OrvelDialogs::Launcher {

inline constexpr const char *kValueFilesVariable = "ORVEL_GUI_VALUE_FILES";

// Gives `task` (its launch path set) `arguments`, each value that does not
// fit replaced by its reference, with its files, and the environment with
// `variables` and the announcement. Raises the platform exception when a
// file cannot be made.
void giveArgumentsToTask(Platform::Task &task, const std::vector<std::string> &arguments,
                         std::vector<GuiVariable> variables);

} // namespace OrvelDialogs::Launcher
