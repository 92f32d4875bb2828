#pragma once

#include <OrvelGUIDialogs/OrvelGUIDialogs.h>

#include <string>

namespace OrvelTest {

// The library's log as it stands, "" while nothing was logged.
inline std::string logText()
{
    const char *log = nullptr;
    ORV_GetLog(&log);
    return log ? log : "";
}

} // namespace OrvelTest
