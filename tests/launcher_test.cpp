// AppLauncher against real child processes (the scripted fake GUI).
#include <OrvelGUIDialogs/AppLauncher.hpp>

#include "support/FakeGui.hpp"
#include "support/Host.hpp"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>


using OrvelTest::FakeGui;
using OrvelTest::logText;
using OrvelTest::replyWithLog;

namespace {

struct Exchange {
    int status = -1, response = -1, log = -1; // log -1: reading it raised
    std::string reply;
};

// Launch, wait, then the three reading steps in their order.
Exchange runLauncher(const std::string &window, std::vector<std::string> arguments = {})
{
    if (arguments.empty())
        arguments = {"-window", window};
    AppLauncher launcher;
    launcher.Launch(FakeGui::bundlePath(), arguments);
    launcher.WaitUntilExit();
    Exchange exchange;
    exchange.status = launcher.GetTerminationStatus();
    exchange.response = launcher.GetStdoutResponse(window, exchange.reply);
    try {
        exchange.log = launcher.ProcessLogFromGUI(exchange.reply);
    } catch (const std::exception &) {
    }
    return exchange;
}

TEST(Launcher, ReadsTheReplyAndTheGuiLog)
{
    const std::string hello = OrvelTest::base64("hello"), helloEntry = "log z GUI aplikace: hello \n\n";
    const std::string noLog = "Odpověď z GUI neobsahovala log.\n\n", wrong = "Chybná odpověď od MessageBox okna.\n\n";
    const struct {
        std::string reply;
        int response, log; // log -1: it raised
        std::string entries;
    } cases[] = {
        {"MessageBox -log " + hello, 0, 0, helloEntry},
        // The beginning test is a test of the text's start, not of a token.
        {"MessageBoxes -log " + hello, 0, 0, helloEntry}, {"", 7, 7, noLog},
        {"YesNoDialog yes -log " + hello, 7, 7, wrong + noLog},
        {"MessageBox \xC3\x28 -log " + hello, 7, 7, wrong + noLog}, {"MessageBox", 0, 7, noLog},
        {"MessageBox -log", 0, -1, ""}, {"MessageBox -log  ", 0, 0, "log z GUI aplikace je prazdný\n"},
        // The line feed stays part of the last token: "-log\n" is no "-log".
        {"MessageBox -log\n", 0, 7, noLog}, {"MessageBox -log " + hello + "\n", 0, 0, helloEntry},
        {"MessageBox -log " + OrvelTest::base64(std::string("ab\0cd", 5)), 0, 0, "log z GUI aplikace: ab \n\n"},
        {"MessageBox -log " + hello + " -log " + OrvelTest::base64("second"), 0, 0, helloEntry},
        // A log that is not UTF-8 keeps its readable part.
        {"MessageBox -log " + OrvelTest::base64("a\xFF" "b"), 0, 0, "log z GUI aplikace: a\xEF\xBF\xBD" "b \n\n"},
    };
    FakeGui gui;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.reply);
        gui.reply(c.reply);
        const std::string before = logText();
        const Exchange exchange = runLauncher("MessageBox");
        EXPECT_EQ(exchange.status, 0);
        EXPECT_EQ(exchange.response, c.response);
        EXPECT_EQ(exchange.log, c.log);
        EXPECT_EQ(exchange.reply, c.response == 0 ? c.reply : std::string());
        EXPECT_EQ(logText().substr(before.size()), c.entries);
    }
}

TEST(Launcher, TheChildInheritsOnlyItsStandardDescriptorsAndDefaultSignals)
{
    // A descriptor the host left inheritable, an ignored and a blocked signal.
    const int leaked = open("/dev/null", O_RDONLY);
    ASSERT_GE(leaked, 3);
    signal(SIGUSR1, SIG_IGN);
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR2);
    pthread_sigmask(SIG_BLOCK, &blocked, nullptr);

    FakeGui gui;
    gui.reply(replyWithLog("MessageBox"));
    runLauncher("MessageBox", {"-window", "MessageBox", "-message", "with spaces and ümlauts", ""});
    EXPECT_EQ(gui.openDescriptors(), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(gui.signalState(), "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n");
    EXPECT_EQ(gui.arguments(), (std::vector<std::string>{"-window", "MessageBox", "-message", "with spaces and ümlauts", ""}));
    close(leaked);
}

TEST(Launcher, ManyLaunchesLeaveNoDescriptorOrChildBehind)
{
    FakeGui gui;
    gui.reply(replyWithLog("MessageBox"));
    runLauncher("MessageBox");
    const int descriptors = OrvelTest::openDescriptorCount();
    const int children = OrvelTest::childProcessCount();
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(runLauncher("MessageBox").response, 0);
    EXPECT_EQ(OrvelTest::openDescriptorCount(), descriptors);
    EXPECT_EQ(OrvelTest::childProcessCount(), children);
}

TEST(Launcher, WorksWhileTheHostIsInterruptedEveryMillisecond)
{
    OrvelTest::EveryMillisecondInterruptions interruptions;

    FakeGui gui;
    gui.reply("MessageBox -log ").fill(16u << 20, 'Q').sleepMs(20);
    for (int i = 0; i < 20; ++i) {
        const Exchange exchange = runLauncher("MessageBox");
        ASSERT_EQ(exchange.status, 0);
        ASSERT_EQ(exchange.response, 0);
        ASSERT_EQ(exchange.reply.size(), 16 + (16u << 20));
    }
    EXPECT_GT(interruptions.count(), 20);
}

} // namespace
