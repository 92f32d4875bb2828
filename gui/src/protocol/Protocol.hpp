// The GUI application's side of the dialog protocol, kept apart from any front
// end: the command line ("-window" NAME, then option pairs, large values read
// from their files), the reply ("<Window> <result tokens> -log <Base64 of our
// log>") and the exit statuses, Base64, the reinsert-card commands that
// arrive on standard input, and the file filters.
#pragma once

#include "protocol/Base64.hpp"
#include "protocol/CommandLine.hpp"
#include "protocol/FileFilter.hpp"
#include "protocol/GuiLog.hpp"
#include "protocol/ReinsertCommands.hpp"
#include "protocol/Reply.hpp"
#include "protocol/Request.hpp"
