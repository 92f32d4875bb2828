// The fuzzers' stand-in for the GUI application drives the same reply
// handling as a real child.
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "launcher/ScriptedChild.hpp"

#include "support/LogReader.hpp"

#include <gtest/gtest.h>

namespace {

TEST(ScriptedChild, StandsInForTheGuiApplication)
{
    const OrvelDialogs::Launcher::ScriptedChild child{0, "YesNoDialog no -log aGVsbG8="};
    OrvelDialogs::Launcher::setScriptedChild(&child);
    ORV_SetAppPath("/no/bundle/needed");
    bool answer = true;
    EXPECT_EQ(ORV_YesNoDialog("Q", nullptr, 0, &answer), 0);
    EXPECT_FALSE(answer);
    EXPECT_EQ(OrvelTest::logText(), "log z GUI aplikace: hello \n\n");
    const OrvelDialogs::Launcher::ScriptedChild failing{12, ""};
    OrvelDialogs::Launcher::setScriptedChild(&failing);
    EXPECT_EQ(ORV_YesNoDialog("Q", nullptr, 0, &answer), 7);
    OrvelDialogs::Launcher::setScriptedChild(nullptr);
}

} // namespace
