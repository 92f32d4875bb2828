// A dialog test: the fake GUI scripted for this test, the library pointed at
// it, and the log as it grew during the test.
#pragma once

#include <OrvelGUIDialogs/OrvelGUIDialogs.h>

#include "support/FakeGui.hpp"
#include "support/LogReader.hpp"

#include <gtest/gtest.h>

namespace OrvelTest {

class DialogTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        ORV_SetAppPath(FakeGui::bundlePath().c_str());
        logStart_ = logText().size();
    }

    // What the log gained since the test started or since the last call.
    std::string newLog()
    {
        const std::string log = logText();
        const std::string added = log.substr(logStart_);
        logStart_ = log.size();
        return added;
    }

    FakeGui gui;

private:
    size_t logStart_ = 0;
};

// The start of the exception path's entry, with the reason line cut off.
inline bool isExceptionEntry(const std::string &log)
{
    return log.rfind("Exception occured:\n", 0) == 0 && log.size() > 20;
}

} // namespace OrvelTest
