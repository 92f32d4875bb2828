// The modeless reinsert-card notice: show, switch and close against a fake GUI
// that records what it reads from its stdin.
#include <OrvelGUIDialogs/LibraryState.hpp>
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "support/DialogFixture.hpp"
#include "support/ProcessCensus.hpp"

#include <signal.h>

using OrvelTest::replyWithLog;

namespace {

class ReinsertCard : public OrvelTest::DialogTest {};

TEST_F(ReinsertCard, CommandsReachTheGuiAsOneStreamAndCloseGivesItsStatus)
{
    gui.readStdin().reply(replyWithLog("ReinsertCard")).exitStatus(5);
    ORV_SetLanguage(2);
    ASSERT_EQ(ORV_ReinsertCardShow("Vyjměte kartu"), 0);
    EXPECT_EQ(ORV_ReinsertCardSwitchText(1), 0);
    EXPECT_EQ(ORV_ReinsertCardSwitchText(0), 0);
    EXPECT_EQ(ORV_ReinsertCardSwitchText(2), 1);
    EXPECT_EQ(ORV_ReinsertCardSwitchText(-1), 1);
    EXPECT_EQ(ORV_ReinsertCardClose(), 5);
    // The fake read to the end of its input: the close command ended it.
    EXPECT_EQ(gui.stdinBytes(), "ReinsertCard insertReinsertCard removeReinsertCard close");
    // What the notice writes never reaches the log.
    EXPECT_EQ(newLog(), "");
    EXPECT_EQ(OrvelTest::childProcessCount(), 0);
}

TEST_F(ReinsertCard, CloseMapsUnknownStatusesAndDrainsOutputNobodyReads)
{
    // Far more output than a pipe holds: close must not wait for ever.
    gui.readStdin().fill(8u << 20).exitStatus(12);
    ASSERT_EQ(ORV_ReinsertCardShow("m"), 0);
    EXPECT_EQ(ORV_ReinsertCardClose(), 7);
    EXPECT_EQ(newLog(), "Unknown error code number occured:12\n\n");
}

TEST_F(ReinsertCard, ALauncherThatCannotTakeCommandsGivesSevenAndTheHostLives)
{
    // SIGPIPE at its default disposition would kill the test if it leaked.
    signal(SIGPIPE, SIG_DFL);
    struct Step {
        const char *what;
        void (*prepare)();
    };
    const Step steps[] = {
        {"the notice was closed", [] {
             ASSERT_EQ(ORV_ReinsertCardShow("m"), 0);
             ASSERT_EQ(ORV_ReinsertCardClose(), 0);
         }},
        {"a modal dialog took the slot", [] { ASSERT_EQ(ORV_MessageBox("m", nullptr, 0), 0); }},
        {"the launch failed", [] {
             ORV_SetAppPath("/nonexistent.app");
             ASSERT_EQ(ORV_ReinsertCardShow("m"), 7);
             ORV_SetAppPath(OrvelTest::FakeGui::bundlePath().c_str());
         }},
    };
    gui.reply(replyWithLog("MessageBox"));
    for (const auto &step : steps) {
        step.prepare();
        newLog();
        EXPECT_EQ(ORV_ReinsertCardSwitchText(1), 7) << step.what;
        EXPECT_TRUE(OrvelTest::isExceptionEntry(newLog())) << step.what;
        EXPECT_EQ(ORV_ReinsertCardClose(), 7) << step.what;
        EXPECT_TRUE(OrvelTest::isExceptionEntry(newLog())) << step.what;
    }
}

TEST_F(ReinsertCard, AReplacedNoticeKeepsRunningAndIsReapedOnceItExits)
{
    gui.reply(replyWithLog("MessageBox")).sleepMs(300);
    ASSERT_EQ(ORV_ReinsertCardShow("m"), 0);
    EXPECT_EQ(OrvelTest::childProcessCount(), 1);
    // The modal dialog replaces the slot; the notice is not stopped.
    gui.sleepMs(0);
    ASSERT_EQ(ORV_MessageBox("m", nullptr, 0), 0);
    EXPECT_EQ(OrvelTest::childProcessCount(), 1);
    ASSERT_TRUE(OrvelTest::childrenHaveExited());
    EXPECT_EQ(OrvelTest::zombieChildCount(), 1);
    // The next dialog call releases it.
    ASSERT_EQ(ORV_MessageBox("m", nullptr, 0), 0);
    EXPECT_EQ(OrvelTest::childProcessCount(), 0);
}

TEST_F(ReinsertCard, ShowingTwiceReachesOnlyTheSecond)
{
    gui.readStdin();
    ASSERT_EQ(ORV_ReinsertCardShow("first"), 0);
    OrvelTest::FakeGui second;
    second.readStdin().exitStatus(3);
    // The first notice keeps the first script: it is still waiting for input.
    ASSERT_EQ(ORV_ReinsertCardShow("second"), 0);
    EXPECT_EQ(ORV_ReinsertCardSwitchText(0), 0);
    EXPECT_EQ(ORV_ReinsertCardClose(), 3);
    EXPECT_EQ(second.stdinBytes(), "ReinsertCard removeReinsertCard close");
    // The first one's input was closed when it was replaced: it has ended.
    EXPECT_TRUE(OrvelTest::childrenHaveExited());
    EXPECT_EQ(gui.stdinBytes(), "");
}

} // namespace
