// Faults of the GUI application and of the host's process set-up, against real
// child processes: each ends in a result code and a log entry, and the host
// goes on with nothing left behind. Then AppLauncher on its own.
#include <OrvelGUIDialogs/AppLauncher.hpp>
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "support/DialogFixture.hpp"

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <fstream>
#include <functional>
#include <memory>
#include <thread>
#include <vector>

using OrvelTest::FakeGui;
using OrvelTest::replyWithLog;

namespace {

using OrvelTest::kAddressSanitizer;

const std::string kLostStatusEntry =
    "Návratový kód GUI aplikace se ztratil (hostitel ignoruje SIGCHLD), bere se jako 0.";

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
        // One dialog first, so that whatever the first one sets up for good is
        // not counted as left behind.
        gui.reply(replyWithLog("MessageBox"));
        EXPECT_EQ(ORV_MessageBox("m", nullptr, 0), 0);
        newLog();
        descriptors_ = OrvelTest::openDescriptorCount();
    }

    // The host goes on: the next dialog works, and no descriptor, child or
    // zombie stayed behind.
    void expectHostGoesOn(const std::string &what)
    {
        gui.clear().reply(replyWithLog("MessageBox"));
        EXPECT_EQ(ORV_MessageBox("m", nullptr, 0), 0) << what;
        newLog();
        EXPECT_EQ(OrvelTest::openDescriptorCount(), descriptors_) << what;
        EXPECT_EQ(OrvelTest::childProcessCount(), 0) << what;
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

    // Shows a notice scripted with `script` gated on a file, sends `switches`
    // commands, opens the gate and closes: the commands sent.
    std::string noticeAfterSwitches(const std::function<void(FakeGui &)> &script, size_t switches, long closed)
    {
        script(gui.clear().gate(scratch / "gate"));
        EXPECT_EQ(ORV_ReinsertCardShow("m"), 0);
        const std::string sent = sendSwitches(switches);
        OrvelTest::writeFile(scratch / "gate", "\n");
        EXPECT_EQ(ORV_ReinsertCardClose(), closed);
        unlink((scratch / "gate").c_str());
        return sent;
    }

    int descriptors_ = 0;
};

TEST_F(Faults, EveryFaultOfTheGuiApplicationGivesAResultAndALogEntry)
{
    EXPECT_EQ(ORV_SetOutputLimit(0), 1);
    const std::string hello = replyWithLog("YesNoDialog yes"), fake = FakeGui::bundlePath();
    const std::string cutEntry = "Log z GUI aplikace byl delší než 1000 bajtů";
    const std::string kept = "log z GUI aplikace: " + std::string(999, 'L') + " \n\n";
    const auto bundleWith = [&](const std::string &bundle, const std::string &file, const std::string &bytes) {
        OrvelTest::writeFile(scratch / bundle + "/" + file, bytes);
        return scratch / bundle;
    };
    std::string deep;
    for (int i = 0; i < 40; ++i)
        deep += "<array>";
    const auto none = [](FakeGui &) {};
    const std::string noBundle = "no application bundle with an executable", tooDeep = "nested deeper than 32 levels";
    const std::string unknown = "Unknown error code number occured:", helloEntry = "log z GUI aplikace: hello \n";
    const struct {
        const char *what;
        std::string bundle;
        std::function<void(FakeGui &)> script;
        long result;
        std::string entry;
        bool answer = false;
        unsigned long long limit = 256u << 20; // of the output and so of the log
    } cases[] = {
        {"missing", scratch / "Missing.app", none, 7, noBundle},
        {"not executable", bundleWith("Locked.app", "Locked", "#!/bin/sh\nexit 0\n"), none, 7, "Permission denied"},
        {"a plain file, not a bundle", OrvelTest::writeFile(scratch / "plain.app", "#!/bin/sh\n", 0755), none, 7, noBundle},
        {"a folder without an executable", bundleWith("Empty.app", "notes.txt", ""), none, 7, noBundle},
        // Refused unread: larger than 1 MiB, or nested deeper than 32 levels.
        {"a huge Info.plist", bundleWith("Huge.app", "Info.plist", "<plist>" + std::string(1u << 20, ' ')), none, 7,
         "Info.plist is refused: larger than 1048576 bytes"},
        {"a deep Info.plist", bundleWith("Deep.app", "Info.plist", deep), none, 7, tooDeep},
        {"a deep binary Info.plist",
         bundleWith("Binary.app", "Info.plist",
                    OrvelTest::readFile(ORVEL_SOURCE_DIR "/fuzz/corpus/info_plist/binary-nested-40")),
         none, 7, tooDeep},
        {"dies by a signal", fake, [&](FakeGui &g) { g.reply(hello).dieBySignal(SIGKILL); }, 7, unknown + "137\n"},
        {"exits with 9", fake, [&](FakeGui &g) { g.reply(hello).exitStatus(9); }, 7, unknown + "9\n"},
        {"exits with 255", fake, [&](FakeGui &g) { g.reply(hello).exitStatus(255); }, 7, unknown + "255\n"},
        {"writes invalid UTF-8", fake, [](FakeGui &g) { g.reply(replyWithLog("YesNoDialog yes \xC3\x28")); }, 7,
         "Chybná odpověď od YesNoDialog okna.\n"},
        {"writes past the 256 MiB output limit", fake, [&](FakeGui &g) { g.reply(hello + " ").fill(256u << 20); }, 7,
         "output limit of 268435456 bytes"},
        // The end of its output is not its exit: the status still counts.
        {"closes its stdout early and runs on", fake,
         [&](FakeGui &g) { g.reply(hello).closeStdoutEarly().sleepMs(500).exitStatus(3); }, 3, helloEntry},
        {"leaves a grandchild holding its stdout", fake,
         [&](FakeGui &g) { g.reply(hello).grandchildHoldingStdout(30000); }, 0, helloEntry, true},
        {"writes up to the limit", fake, [&](FakeGui &g) { g.reply(hello).fill(4000 - hello.size(), ' '); }, 0,
         helloEntry, true, 4000},
        {"writes one byte past the limit", fake, [&](FakeGui &g) { g.reply(hello).fill(4001 - hello.size(), ' '); }, 7,
         "output limit of 4000 bytes", false, 4000},
        // The child that goes on writing is killed, not waited for.
        {"writes on and on", fake, [&](FakeGui &g) { g.reply(hello + " ").fill(64u << 20).sleepMs(30000); }, 7,
         "output limit of 4000 bytes", false, 4000},
        {"logs 999 bytes", fake, [&](FakeGui &g) { g.reply(replyWithLog("YesNoDialog yes", std::string(999, 'L'))); }, 0,
         kept, true, 4000},
        {"logs more than 1000 bytes", fake,
         [&](FakeGui &g) { g.reply(replyWithLog("YesNoDialog yes", std::string(1500, 'L')) + "\n"); }, 0,
         kept + cutEntry, true, 4000},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        c.script(gui.clear());
        ASSERT_EQ(ORV_SetOutputLimit(c.limit), 0);
        bool answer = false;
        const auto start = std::chrono::steady_clock::now();
        EXPECT_EQ(withAppPath(c.bundle, [&] { return ORV_YesNoDialog("m", nullptr, 0, &answer); }), c.result);
        // Bounded, not a speed target: the dialog did not wait for the
        // grandchild's 30 s.
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(20));
        EXPECT_EQ(answer, c.answer);
        const std::string log = newLog();
        EXPECT_NE(log.find(c.entry), std::string::npos) << log.substr(0, 2000);
        EXPECT_EQ(log.find(cutEntry) != std::string::npos, c.entry.ends_with(cutEntry));
        expectHostGoesOn(c.what);
    }
}

TEST_F(Faults, ANoticeThatNeverReadsItsInputNeverBlocksTheHost)
{
    // A write that raised SIGPIPE would end the test with the default action.
    signal(SIGPIPE, SIG_DFL);
    const Watchdog watchdog(120);
    // 1 MiB of commands, far more than the pipe holds; not one switch waits.
    // The notice wakes up and exits a little later without reading: close waits
    // for it and drops what it never read.
    const std::string sent = noticeAfterSwitches(
        [](FakeGui &g) { g.reply("ReinsertCard").sleepMs(200).exitStatus(4); }, (1u << 20) / 19 + 1, 4);
    EXPECT_EQ(newLog(), "GUI aplikace skončila a nepřečetla " + std::to_string(sent.size() + 18) +
                            " bajtů příkazů; zahazují se.\n");
    expectHostGoesOn("after the notice");
}

TEST_F(Faults, CommandsANoticeReadsLateReachItWholeAndInOrder)
{
    const Watchdog watchdog(120);
    const std::string sent = noticeAfterSwitches([](FakeGui &g) { g.readStdin().exitStatus(2); }, (1u << 20) / 19 + 1, 2);
    EXPECT_EQ(gui.stdinBytes(), sent + "ReinsertCard close");
    EXPECT_EQ(newLog(), "");
    expectHostGoesOn("after the notice");
}

TEST_F(Faults, DialogsWorkWhenTheHostIgnoresSigchld)
{
    // The kernel then reaps every child at once and keeps no exit status.
    signal(SIGCHLD, SIG_IGN);
    gui.reply(replyWithLog("YesNoDialog yes")).exitStatus(3);
    bool answer = false;
    EXPECT_EQ(ORV_YesNoDialog("m", nullptr, 0, &answer), 0);
    EXPECT_TRUE(answer);
    EXPECT_EQ(newLog(), kLostStatusEntry + "\nlog z GUI aplikace: hello \n\n");
    gui.clear().readStdin().exitStatus(5);
    ASSERT_EQ(ORV_ReinsertCardShow("m"), 0);
    EXPECT_EQ(ORV_ReinsertCardSwitchText(1), 0);
    EXPECT_EQ(ORV_ReinsertCardClose(), 0);
    EXPECT_EQ(gui.stdinBytes(), "ReinsertCard insertReinsertCard close");
    EXPECT_EQ(newLog(), kLostStatusEntry + "\n");
    EXPECT_EQ(OrvelTest::childProcessCount(), 0);
    signal(SIGCHLD, SIG_DFL);
    expectHostGoesOn("SIGCHLD back at its default");
}

TEST_F(Faults, ResultsStayRightWhileTheHostIsInterruptedEveryMillisecond)
{
    auto interruptions = std::make_unique<OrvelTest::EveryMillisecondInterruptions>();
    // The log section comes after 64 MiB: the whole reply must arrive.
    gui.reply("YesNoDialog yes ").fill(64u << 20, 'Q', " -log " + OrvelTest::base64("end")).sleepMs(50);
    bool answer = false;
    EXPECT_EQ(ORV_YesNoDialog("m", nullptr, 0, &answer), 0);
    EXPECT_TRUE(answer);
    EXPECT_EQ(newLog(), "log z GUI aplikace: end \n\n");
    // Commands kept while the notice does not read go out under the
    // interruptions too.
    const std::string sent =
        noticeAfterSwitches([](FakeGui &g) { g.readStdin().sleepMs(50).exitStatus(6); }, (256u << 10) / 19, 6);
    EXPECT_EQ(gui.stdinBytes(), sent + "ReinsertCard close");
    EXPECT_GT(interruptions->count(), 20);
    interruptions.reset();
    expectHostGoesOn("after the interruptions");
}

TEST_F(Faults, DialogsAndNoticesKeepNoDescriptorOrProcessOnceDone)
{
    signal(SIGPIPE, SIG_DFL);
    const Watchdog watchdog(60);
    const std::string gate = scratch / "gate";
    // The first of two notices ends once its input ends; close reaps a notice
    // that ended before it or during it and gives its status either way.
    const std::function<long(FakeGui &)> runs[] = {
        [](FakeGui &g) {
            g.reply(replyWithLog("MessageBox"));
            return ORV_MessageBox("m", nullptr, 0);
        },
        [](FakeGui &g) {
            g.readStdin();
            return ORV_ReinsertCardShow("a") + ORV_ReinsertCardShow("b") + ORV_ReinsertCardClose();
        },
        [](FakeGui &g) {
            g.exitStatus(2);
            EXPECT_EQ(ORV_ReinsertCardShow("m") + !OrvelTest::childrenHaveExited(), 0);
            return ORV_ReinsertCardClose() - 2;
        },
        [&](FakeGui &g) {
            g.gate(gate).sleepMs(5).exitStatus(2);
            EXPECT_EQ(ORV_ReinsertCardShow("m"), 0);
            OrvelTest::writeFile(gate, "\n");
            return ORV_ReinsertCardClose() - 2;
        },
    };
    for (size_t i = 0; i < std::size(runs); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(runs[i](gui.clear()), 0);
        // Right when the call returns, before any other call could tidy up.
        EXPECT_EQ(OrvelTest::openDescriptorCount(), descriptors_);
        unlink(gate.c_str());
        ASSERT_TRUE(OrvelTest::childrenHaveExited());
        expectHostGoesOn("after run " + std::to_string(i));
    }
}

TEST_F(Faults, OutOfMemoryAndOutOfDescriptorsGiveSevenAndSayWhy)
{
    ASSERT_EQ(ORV_SetOutputLimit(4ull << 30), 0);
    rlim_t virtualPages = 0;
    std::ifstream("/proc/self/statm") >> virtualPages;
    const struct {
        int resource;
        rlim_t low;
        std::string entry;
    } cases[] = {
        {RLIMIT_AS, virtualPages * sysconf(_SC_PAGESIZE) + (384u << 20), "Exception occured:\nout of memory"},
        // The bundle is there: the entry says what failed, not that it is missing.
        {RLIMIT_NOFILE, static_cast<rlim_t>(descriptors_ + 8),
         "cannot start the application bundle at \"" + FakeGui::bundlePath() + "\": open " + FakeGui::bundlePath() +
             "/Contents/Info.plist failed: Too many open files"},
    };
    for (const auto &c : cases) {
        // Not under the sanitizers: AddressSanitizer reserves far more address
        // space than that, and the vptr check opens a pipe to read memory.
        if (kAddressSanitizer)
            continue;
        gui.clear().reply("YesNoDialog yes ").fill(1u << 30);
        rlimit previous{};
        getrlimit(c.resource, &previous);
        const rlimit low{c.low, previous.rlim_max};
        ASSERT_EQ(setrlimit(c.resource, &low), 0);
        std::vector<int> filler;
        for (int fd; c.resource == RLIMIT_NOFILE && (fd = open("/dev/null", O_RDONLY | O_CLOEXEC)) >= 0;)
            filler.push_back(fd);
        bool answer = false;
        const long result = ORV_YesNoDialog("m", nullptr, 0, &answer);
        for (const int fd : filler)
            close(fd);
        setrlimit(c.resource, &previous);
        EXPECT_EQ(result, 7);
        const std::string log = newLog();
        EXPECT_NE(log.find(c.entry), std::string::npos) << log;
        ASSERT_TRUE(OrvelTest::childrenHaveExited());
        expectHostGoesOn(c.entry);
    }
}

TEST_F(Faults, AHostsOwnSigchldReaperTakesNoStatusFromThisThread)
{
    // A server's handler that reaps whatever child has ended.
    struct sigaction reaper{};
    reaper.sa_handler = [](int) {
        const int saved = errno;
        while (waitpid(-1, nullptr, WNOHANG) > 0) {
        }
        errno = saved;
    };
    sigaction(SIGCHLD, &reaper, nullptr);
    bool answer = false;
    gui.reply(replyWithLog("YesNoDialog yes")).sleepMs(50).exitStatus(3);
    EXPECT_EQ(ORV_YesNoDialog("m", nullptr, 0, &answer), 3);
    gui.clear().readStdin().exitStatus(5);
    EXPECT_EQ(ORV_ReinsertCardShow("m") + ORV_ReinsertCardClose(), 5);
    signal(SIGCHLD, SIG_DFL);

    // A waitpid(-1) on another thread may win the race: then the log says so
    // and the result is 7, never a made-up status.
    std::atomic<pid_t> taken{0};
    std::atomic<bool> done{false};
    std::thread waiter([&] {
        for (pid_t pid; !done && taken == 0; std::this_thread::sleep_for(std::chrono::milliseconds(1)))
            if ((pid = waitpid(-1, nullptr, 0)) > 0)
                taken = pid;
    });
    gui.clear().reply(replyWithLog("YesNoDialog yes")).sleepMs(100).exitStatus(3);
    const long result = ORV_YesNoDialog("m", nullptr, 0, &answer);
    done = true;
    waiter.join();
    EXPECT_EQ(result, taken != 0 ? 7 : 3);
    EXPECT_EQ(newLog().find("převzal jiný waitpid() hostitele") != std::string::npos, taken != 0);
    expectHostGoesOn("after the reapers");
}

// AppLauncher itself: how it reads a reply, what its children inherit, and
// that it keeps nothing and minds no interruption.
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
        const std::string before = OrvelTest::logText();
        const Exchange exchange = runLauncher("MessageBox");
        EXPECT_EQ(exchange.status, 0);
        EXPECT_EQ(exchange.response, c.response);
        EXPECT_EQ(exchange.log, c.log);
        EXPECT_EQ(exchange.reply, c.response == 0 ? c.reply : std::string());
        EXPECT_EQ(OrvelTest::logText().substr(before.size()), c.entries);
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
