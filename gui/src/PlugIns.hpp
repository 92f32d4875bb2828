// The bundle's PlugIns folder (beside MacOS): code the application loads only
// when a window needs it, so that a plain message box does not pay for Qt or
// OpenSSL at start.
#pragma once

#include <string>

namespace OrvelGui {

// dlopen() of Contents/PlugIns/<fileName>; nothing, with the reason in
// `error`, when it cannot be loaded. Plug-ins are never unloaded.
void *openPlugIn(const char *fileName, std::string &error);

} // namespace OrvelGui
