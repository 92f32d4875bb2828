// Reading the command line: "-window" NAME, then option pairs, values that
// did not fit on it read from their files (ValueFiles.hpp).
#pragma once

#include "protocol/GuiLog.hpp"
#include "protocol/Request.hpp"

#include <optional>
#include <string>
#include <vector>

namespace OrvelGui {

struct ParseResult {
    std::optional<Request> request; // absent: a bad command line
    std::string windowName;         // as given, for the reply; may be empty
};

// The language of the environment's locale, by the library's own rule for a
// host that set none (LC_ALL, LC_MESSAGES, LANG; cs Czech, sk Slovak, else
// English). Windows that get no "-lang" use it.
Language languageFromEnvironment();

// Reads argv[1..], and the values that ORVEL_GUI_VALUE_FILES announces from
// their files. Problems are written to the log; a bad command line gives no
// request.
ParseResult parseCommandLine(const std::vector<std::string> &arguments, GuiLog &log);

} // namespace OrvelGui
