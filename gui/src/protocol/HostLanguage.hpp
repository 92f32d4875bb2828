// The host's language for a window whose command line has no "-lang": the
// library puts its language code in ORVEL_GUI_LANGUAGE for every window it
// starts, so that the message box and the certificate display, which get no
// "-lang", speak the language of the other windows.
#pragma once

#include "protocol/GuiLog.hpp"
#include "protocol/Protocol.hpp"

#include <optional>

namespace OrvelGui {

// "0" Czech, "1" Slovak, "2" English; nothing when the variable is absent or
// empty, or (logged) holds anything else.
std::optional<Language> languageFromHost(GuiLog &log);

} // namespace OrvelGui
