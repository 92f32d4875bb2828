// The folder of the running executable, from which the GUI application finds
// its plug-ins and the host tool the reference GUI application.
#pragma once

#include <string>

namespace OrvelGui {

// Empty when the system does not say.
std::string executableFolder();

} // namespace OrvelGui
