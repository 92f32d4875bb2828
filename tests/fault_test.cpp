// Faults of the GUI application and of the host's process set-up, against real
// child processes: each ends in a result code and a log entry, and the host
// goes on with nothing left behind.
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "support/DialogFixture.hpp"
#include "support/Interruptions.hpp"
#include "support/ProcessCensus.hpp"
#include "support/TempDir.hpp"

#include <signal.h>
#include <sys/stat.h>
#include <sys/time.h>
#include <unistd.h>

#include <chrono>
#include <fstream>
#include <memory>
#include <functional>

using OrvelTest::FakeGui;
using OrvelTest::replyWithLog;

namespace {

const std::string kLostStatusEntry =
    "Návratový kód GUI aplikace se ztratil (hostitel ignoruje SIGCHLD), bere se jako 0.";

std::string droppedCommandsEntry(size_t bytes)
{
    return "GUI aplikace skončila a nepřečetla " + std::to_string(bytes) + " bajtů příkazů; zahazují se.";
}

// Ends the test process instead of letting a call that blocks hang the run.
class Watchdog {
public:
    explicit Watchdog(unsigned seconds) { alarm(seconds); }
    ~Watchdog() { alarm(0); }
};

class Faults : public OrvelTest::DialogTest {
protected:
    void SetUp() override
    {
        DialogTest::SetUp();
        scratch_ = OrvelTest::makeTempDir();
        // One dialog first, so that whatever the first one sets up for good
        // is not counted as left behind.
        expectNextDialogWorks("set-up");
        descriptors_ = OrvelTest::openDescriptorCount();
    }
    void TearDown() override { OrvelTest::removeTree(scratch_); }

    void expectNextDialogWorks(const std::string &what)
    {
        FakeGui healthy;
        healthy.reply(replyWithLog("MessageBox"));
        EXPECT_EQ(ORV_MessageBox("m", nullptr, 0), 0) << what;
        newLog();
    }

    // The host goes on: the next dialog works, and no descriptor, child or
    // zombie stayed behind.
    void expectHostGoesOn(const std::string &what)
    {
        expectNextDialogWorks(what);
        EXPECT_EQ(OrvelTest::openDescriptorCount(), descriptors_) << what;
        EXPECT_EQ(OrvelTest::childProcessCount(), 0) << what;
    }

    std::string makeFile(const std::string &name, const std::string &bytes, mode_t mode)
    {
        const std::string path = scratch_ + "/" + name;
        std::ofstream(path, std::ios::binary) << bytes;
        chmod(path.c_str(), mode);
        return path;
    }

    std::string makeDir(const std::string &name)
    {
        const std::string path = scratch_ + "/" + name;
        mkdir(path.c_str(), 0755);
        return path;
    }

    // `count` switches alternating in a fixed pattern, and the bytes they send.
    static std::string sendSwitches(size_t count)
    {
        std::string sent;
        for (size_t i = 0; i < count; ++i) {
            const int insert = i % 3 == 0 ? 1 : 0;
            EXPECT_EQ(ORV_ReinsertCardSwitchText(insert), 0) << "switch " << i;
            sent += insert ? "ReinsertCard insert" : "ReinsertCard remove";
        }
        return sent;
    }

    std::string scratch_;
    int descriptors_ = 0;
};

TEST_F(Faults, EveryFaultOfTheGuiApplicationGivesAResultAndALogEntry)
{
    const std::string hello = replyWithLog("YesNoDialog yes");
    struct Case {
        const char *what;
        // The bundle to start; the fake when it returns nothing.
        std::function<std::string()> bundle;
        std::function<void(FakeGui &)> script;
        long result;
        std::string entry;
        bool answer;
    };
    const auto fake = [] { return std::string(); };
    const Case cases[] = {
        {"missing", [&] { return scratch_ + "/Missing.app"; }, [](FakeGui &) {}, 7,
         "no application bundle with an executable", false},
        {"not executable",
         [&] {
             makeDir("Locked.app");
             makeFile("Locked.app/Locked", "#!/bin/sh\nexit 0\n", 0644);
             return scratch_ + "/Locked.app";
         },
         [](FakeGui &) {}, 7, "Permission denied", false},
        {"a plain file, not a bundle", [&] { return makeFile("plain.app", "#!/bin/sh\n", 0755); }, [](FakeGui &) {},
         7, "no application bundle with an executable", false},
        {"a folder without an executable", [&] { return makeDir("Empty.app"); }, [](FakeGui &) {}, 7,
         "no application bundle with an executable", false},
        {"dies by a signal", fake, [&](FakeGui &gui) { gui.reply(hello).dieBySignal(SIGKILL); }, 7,
         "Unknown error code number occured:137\n", false},
        {"exits with 9", fake, [&](FakeGui &gui) { gui.reply(hello).exitStatus(9); }, 7,
         "Unknown error code number occured:9\n", false},
        {"exits with 255", fake, [&](FakeGui &gui) { gui.reply(hello).exitStatus(255); }, 7,
         "Unknown error code number occured:255\n", false},
        {"writes invalid UTF-8", fake,
         [](FakeGui &gui) { gui.reply("YesNoDialog yes \xC3\x28 -log " + OrvelTest::base64("hello")); }, 7,
         "Chybná odpověď od YesNoDialog okna.\n", false},
        {"writes 256 MiB", fake, [&](FakeGui &gui) { gui.reply(hello + " ").fill(256u << 20); }, 0,
         "log z GUI aplikace: hello \n", true},
        // The end of its output is not its exit: the status still counts.
        {"closes its stdout early and runs on", fake,
         [&](FakeGui &gui) { gui.reply(hello).closeStdoutEarly().sleepMs(500).exitStatus(3); }, 3,
         "log z GUI aplikace: hello \n", false},
        {"leaves a grandchild holding its stdout", fake,
         [&](FakeGui &gui) { gui.reply(hello).grandchildHoldingStdout(30000); }, 0, "log z GUI aplikace: hello \n",
         true},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        {
            FakeGui script;
            c.script(script);
            const std::string bundle = c.bundle();
            ORV_SetAppPath((bundle.empty() ? FakeGui::bundlePath() : bundle).c_str());
            bool answer = false;
            const auto start = std::chrono::steady_clock::now();
            EXPECT_EQ(ORV_YesNoDialog("m", nullptr, 0, &answer), c.result);
            // Bounded, not a speed target: the dialog did not wait for the
            // grandchild's 30 s.
            EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
            EXPECT_EQ(answer, c.answer);
            const std::string log = newLog();
            EXPECT_NE(log.find(c.entry), std::string::npos) << log.substr(0, 2000);
        }
        ORV_SetAppPath(FakeGui::bundlePath().c_str());
        expectHostGoesOn(c.what);
    }
}

TEST_F(Faults, ANoticeThatNeverReadsItsInputNeverBlocksTheHost)
{
    // A write that raised SIGPIPE would end the test with the default action.
    signal(SIGPIPE, SIG_DFL);
    const Watchdog watchdog(120);
    const std::string gate = scratch_ + "/gate";
    FakeGui notice;
    notice.reply("ReinsertCard").gate(gate).sleepMs(200).exitStatus(4);
    ASSERT_EQ(ORV_ReinsertCardShow("m"), 0);
    // 1 MiB of commands, far more than the pipe holds; not one switch waits.
    const size_t switches = (1u << 20) / 19 + 1;
    const std::string sent = sendSwitches(switches);
    // The notice wakes up and exits a little later without reading: close
    // waits for it and drops what it never read.
    std::ofstream(gate).put('\n');
    EXPECT_EQ(ORV_ReinsertCardClose(), 4);
    EXPECT_EQ(newLog(), droppedCommandsEntry(sent.size() + 18) + "\n");
    expectHostGoesOn("after the notice");
}

TEST_F(Faults, CommandsANoticeReadsLateReachItWholeAndInOrder)
{
    const Watchdog watchdog(120);
    const std::string gate = scratch_ + "/gate";
    FakeGui notice;
    notice.gate(gate).readStdin().exitStatus(2);
    ASSERT_EQ(ORV_ReinsertCardShow("m"), 0);
    const std::string sent = sendSwitches((1u << 20) / 19 + 1);
    std::ofstream(gate).put('\n');
    EXPECT_EQ(ORV_ReinsertCardClose(), 2);
    EXPECT_EQ(notice.stdinBytes(), sent + "ReinsertCard close");
    EXPECT_EQ(newLog(), "");
    expectHostGoesOn("after the notice");
}

TEST_F(Faults, DialogsWorkWhenTheHostIgnoresSigchld)
{
    // The kernel then reaps every child at once and keeps no exit status.
    signal(SIGCHLD, SIG_IGN);
    {
        FakeGui dialog;
        dialog.reply(replyWithLog("YesNoDialog yes")).exitStatus(3);
        bool answer = false;
        EXPECT_EQ(ORV_YesNoDialog("m", nullptr, 0, &answer), 0);
        EXPECT_TRUE(answer);
        EXPECT_EQ(newLog(), kLostStatusEntry + "\nlog z GUI aplikace: hello \n\n");
    }
    {
        FakeGui notice;
        notice.readStdin().exitStatus(5);
        ASSERT_EQ(ORV_ReinsertCardShow("m"), 0);
        EXPECT_EQ(ORV_ReinsertCardSwitchText(1), 0);
        EXPECT_EQ(ORV_ReinsertCardClose(), 0);
        EXPECT_EQ(notice.stdinBytes(), "ReinsertCard insertReinsertCard close");
        EXPECT_EQ(newLog(), kLostStatusEntry + "\n");
    }
    EXPECT_EQ(OrvelTest::childProcessCount(), 0);
    signal(SIGCHLD, SIG_DFL);
    expectHostGoesOn("SIGCHLD back at its default");
}

TEST_F(Faults, ResultsStayRightWhileTheHostIsInterruptedEveryMillisecond)
{
    auto interruptions = std::make_unique<OrvelTest::EveryMillisecondInterruptions>();

    {
        // The log section comes after 64 MiB: the whole reply must arrive.
        FakeGui dialog;
        dialog.reply("YesNoDialog yes ").fill(64u << 20, 'Q', " -log " + OrvelTest::base64("end")).sleepMs(50);
        bool answer = false;
        EXPECT_EQ(ORV_YesNoDialog("m", nullptr, 0, &answer), 0);
        EXPECT_TRUE(answer);
        EXPECT_EQ(newLog(), "log z GUI aplikace: end \n\n");
    }
    {
        // Commands kept while the notice does not read go out under the
        // interruptions too.
        FakeGui notice;
        const std::string gate = scratch_ + "/gate";
        notice.gate(gate).readStdin().sleepMs(50).exitStatus(6);
        ASSERT_EQ(ORV_ReinsertCardShow("m"), 0);
        const std::string sent = sendSwitches((256u << 10) / 19);
        std::ofstream(gate).put('\n');
        EXPECT_EQ(ORV_ReinsertCardClose(), 6);
        EXPECT_EQ(notice.stdinBytes(), sent + "ReinsertCard close");
    }
    EXPECT_GT(interruptions->count(), 20);
    interruptions.reset();
    expectHostGoesOn("after the interruptions");
}

} // namespace
