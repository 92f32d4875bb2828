// Message box and yes/no dialog through the C interface, against the fake GUI.
#include <OrvelGUIDialogs/LibraryState.hpp>
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "support/DialogFixture.hpp"

#include <cstdlib>

using OrvelTest::replyWithLog;
using Args = std::vector<std::string>;

namespace {

class MessageDialogs : public OrvelTest::DialogTest {};

TEST_F(MessageDialogs, RefusedCallsStartNothingAndLogNothing)
{
    bool answer = false;
    struct Case {
        const char *what;
        bool pathSet;
        long result;
        long (*call)(bool *);
    };
    const Case cases[] = {
        // The message box checks its arguments before the path...
        {"box: null message, no path", false, 1, [](bool *) { return ORV_MessageBox(nullptr, nullptr, 0); }},
        {"box: icon 3", true, 1, [](bool *) { return ORV_MessageBox("m", nullptr, 3); }},
        {"box: icon -1", true, 1, [](bool *) { return ORV_MessageBox("m", nullptr, -1); }},
        {"box: no path", false, 9, [](bool *) { return ORV_MessageBox("m", nullptr, 0); }},
        // ...the yes/no dialog tests the path first.
        {"yes/no: null message, no path", false, 9, [](bool *a) { return ORV_YesNoDialog(nullptr, nullptr, 0, a); }},
        {"yes/no: null message", true, 1, [](bool *a) { return ORV_YesNoDialog(nullptr, nullptr, 0, a); }},
        {"yes/no: button 2", true, 1, [](bool *a) { return ORV_YesNoDialog("m", nullptr, 2, a); }},
        {"yes/no: button -1", true, 1, [](bool *a) { return ORV_YesNoDialog("m", nullptr, -1, a); }},
        {"yes/no: null result", true, 1, [](bool *) { return ORV_YesNoDialog("m", nullptr, 0, nullptr); }},
    };
    for (const auto &c : cases) {
        ORV_SetAppPath(c.pathSet ? OrvelTest::FakeGui::bundlePath().c_str() : "");
        EXPECT_EQ(c.call(&answer), c.result) << c.what;
        EXPECT_FALSE(gui.ran()) << c.what;
        EXPECT_EQ(newLog(), "") << c.what;
        EXPECT_EQ(appLchr, nullptr) << c.what;
    }
}

TEST_F(MessageDialogs, PassExactlyTheirArgumentLists)
{
    gui.reply(replyWithLog("YesNoDialog yes"));
    bool answer = false;
    ORV_SetLanguage(1);
    struct Case {
        long (*call)(bool *);
        Args expected;
    };
    const Case cases[] = {
        {[](bool *) { return ORV_MessageBox("Hello", "World", 2); },
         {"-window", "MessageBox", "-message", "Hello", "-info", "World", "-icon", "2"}},
        {[](bool *) { return ORV_MessageBox("Hello", nullptr, 0); },
         {"-window", "MessageBox", "-message", "Hello", "-icon", "0"}},
        {[](bool *) { return ORV_MessageBox("", "", 1); }, {"-window", "MessageBox", "-message", "", "-icon", "1"}},
        // Info that is not UTF-8 counts as empty.
        {[](bool *) { return ORV_MessageBox("Příliš", "\xC3\x28", 1); },
         {"-window", "MessageBox", "-message", "Příliš", "-icon", "1"}},
        {[](bool *a) { return ORV_YesNoDialog("Q", nullptr, 0, a); },
         {"-window", "YesNoDialog", "-lang", "1", "-message", "Q", "-button", "0"}},
        {[](bool *a) { return ORV_YesNoDialog("Q", "", 1, a); },
         {"-window", "YesNoDialog", "-lang", "1", "-message", "Q", "-button", "1"}},
        {[](bool *a) { return ORV_YesNoDialog("Q", "I", 1, a); },
         {"-window", "YesNoDialog", "-lang", "1", "-message", "Q", "-info", "I", "-button", "1"}},
    };
    for (const auto &c : cases) {
        c.call(&answer);
        EXPECT_EQ(gui.arguments(), c.expected);
    }
}

TEST_F(MessageDialogs, YesNoInterpretsTheBeginningOfTheReply)
{
    struct Case {
        std::string reply;
        int exit;
        long result;
        int answer; // -1: left as it was
        std::string entry;
    };
    const Case cases[] = {
        {replyWithLog("YesNoDialog yes"), 0, 0, 1, ""},
        {replyWithLog("YesNoDialog no"), 0, 0, 0, ""},
        {replyWithLog("YesNoDialog nope"), 0, 0, 0, ""},
        {replyWithLog("YesNoDialog yesterday"), 0, 0, 1, ""},
        {replyWithLog("YesNoDialog  yes"), 0, 7, -1, "Wrong YesNoDialog response!\n"},
        {replyWithLog("YesNoDialog maybe"), 0, 7, -1, "Wrong YesNoDialog response!\n"},
        {"YesNoDialog yes", 0, 0, -1, "Odpověď z GUI neobsahovala log.\n\n"},
        {replyWithLog("YesNoDialog yes"), 2, 2, -1, ""},
        {replyWithLog("YesNoDialog yes"), 9, 7, -1, "Unknown error code number occured:9\n\n"},
        {replyWithLog("MessageBox yes"), 0, 7, -1, "Chybná odpověď od YesNoDialog okna.\n\n"},
    };
    for (const auto &c : cases) {
        gui.reply(c.reply).exitStatus(c.exit);
        for (bool initial : {false, true}) {
            bool answer = initial;
            EXPECT_EQ(ORV_YesNoDialog("Q", nullptr, 0, &answer), c.result) << c.reply;
            EXPECT_EQ(answer, c.answer == -1 ? initial : c.answer == 1) << c.reply;
            const std::string log = newLog();
            EXPECT_NE(log.find(c.entry), std::string::npos) << c.reply << "\n" << log;
        }
    }
}

TEST_F(MessageDialogs, MessageBoxReadsOnlyStatusAndReplyStart)
{
    struct Case {
        std::string reply;
        int exit;
        long result;
    };
    const Case cases[] = {
        {replyWithLog("MessageBox"), 0, 0}, {"MessageBox", 0, 0},     {"MessageBox anything", 0, 0},
        {replyWithLog("MessageBox"), 5, 5}, {"", 0, 7},               {replyWithLog("YesNoDialog"), 0, 7},
        {replyWithLog("MessageBox"), 200, 7},
    };
    for (const auto &c : cases) {
        gui.reply(c.reply).exitStatus(c.exit);
        EXPECT_EQ(ORV_MessageBox("m", nullptr, 0), c.result) << c.reply << " exit " << c.exit;
    }
}

TEST_F(MessageDialogs, FailuresInsideTheExchangeTakeTheExceptionPath)
{
    bool answer = false;
    // A message that is not UTF-8 cannot be placed in the argument list.
    EXPECT_EQ(ORV_MessageBox("\xFF", nullptr, 0), 7);
    EXPECT_EQ(ORV_YesNoDialog("\xC3\x28", nullptr, 0, &answer), 7);
    EXPECT_FALSE(gui.ran());
    std::string log = newLog();
    EXPECT_TRUE(OrvelTest::isExceptionEntry(log)) << log;
    EXPECT_NE(log.find("argument list"), std::string::npos) << log;

    // A directory that is no bundle, and a reply that ends in "-log".
    ORV_SetAppPath("/tmp");
    EXPECT_EQ(ORV_MessageBox("m", nullptr, 0), 7);
    EXPECT_TRUE(OrvelTest::isExceptionEntry(newLog()));
    ORV_SetAppPath(OrvelTest::FakeGui::bundlePath().c_str());
    gui.reply("YesNoDialog yes -log");
    answer = false;
    EXPECT_EQ(ORV_YesNoDialog("m", nullptr, 0, &answer), 7);
    EXPECT_FALSE(answer);
    log = newLog();
    EXPECT_TRUE(OrvelTest::isExceptionEntry(log)) << log;
    EXPECT_NE(log.find("index 3 beyond bounds [0 .. 2]"), std::string::npos) << log;
}

TEST_F(MessageDialogs, YesNoResolvesTheLanguageFirstEvenWhenRefused)
{
    setenv("LC_ALL", "sk_SK.UTF-8", 1);
    OrvelDialogs::SetLanguage(-1);
    ORV_SetAppPath(nullptr);
    bool answer = false;
    EXPECT_EQ(ORV_YesNoDialog("Q", nullptr, 0, &answer), 9);
    EXPECT_EQ(g_appLanguage, 1);
    // The message box neither reads nor resolves it.
    OrvelDialogs::SetLanguage(-1);
    EXPECT_EQ(ORV_MessageBox("Q", nullptr, 0), 9);
    EXPECT_EQ(g_appLanguage, -1);
}

} // namespace
