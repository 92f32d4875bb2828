// 10,000 dialogs in a row, every window and every kind of failure mixed: the
// host's open descriptors, child processes and resident memory (besides the
// log, which only grows) stay where they started.
#include <OrvelGUIDialogs/LibraryState.hpp>
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "support/DialogFixture.hpp"

#include <signal.h>
#include <unistd.h>

#include <fstream>
#include <functional>
#include <string>
#include <vector>

using OrvelTest::base64;
using OrvelTest::FakeGui;
using OrvelTest::replyWithLog;

namespace {

using OrvelTest::kAddressSanitizer;

// Anonymous resident memory of this process in bytes: the heap, not the mapped
// files whose pages come and go.
long long residentAnonymousBytes()
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.rfind("RssAnon:", 0) == 0)
            return std::stoll(line.substr(8)) * 1024;
    return -1;
}

class Soak : public OrvelTest::DialogTest {
protected:
    void SetUp() override
    {
        DialogTest::SetUp();
        ORV_SetOrvelSignVersion("2.1");
        // SIGPIPE at its default: a write to a dead notice must not end the
        // host.
        signal(SIGPIPE, SIG_DFL);
    }

    struct Step {
        const char *what;
        std::function<void(FakeGui &)> script;
        std::function<long()> call;
        long expected;
    };

    std::vector<Step> steps()
    {
        const auto replying = [](const std::string &reply) { return [reply](FakeGui &g) { g.reply(reply); }; };
        const auto message = [] { return ORV_MessageBox("m", nullptr, 0); };
        const auto yesNo = [] {
            bool answer = false;
            return ORV_YesNoDialog("m", nullptr, 0, &answer);
        };
        const std::string gate = scratch / "gate";
        return {
            {"message box", replying(replyWithLog("MessageBox")), [] { return ORV_MessageBox("m", "info", 1); }, 0},
            {"yes/no", replying(replyWithLog("YesNoDialog no")), yesNo, 0},
            {"file open", replying("FileOpen " + base64("/tmp/a.pdf") + " -log " + base64("x")),
             [this] { return ORV_FileOpenDialog("m", nullptr, path_, sizeof path_, "PDF (pdf)"); }, 0},
            {"file save, buffer too small", replying("FileSave " + base64(std::string(300, 'p')) + " -log " + base64("x")),
             [this] { return ORV_FileSaveDialog("m", "a.pdf", path_, sizeof path_, nullptr); }, 11},
            {"certificate display", replying(replyWithLog("DisplayCert")),
             [this] { return ORV_DisplayCertificate(reinterpret_cast<unsigned char *>(path_), sizeof path_); }, 0},
            {"certificate selection", replying(replyWithLog("CertificateSelect -selectedCert 2")),
             [this] { return ORV_SelectCertificate(records_.records.data(), 3, &selected_); }, 0},
            {"signature confirmation", replying(replyWithLog("SignatureConfirm -result 1 -selectedCert 0")),
             [this] {
                 return ORV_ConfirmSignature(records_.records.data(), 3, &selected_, "data", "{\\rtf1}", "SHA-256", "0A1B",
                                             &confirmed_);
             },
             0},
            {"PKCS#12", replying("SelectPKCS12 " + base64("/k.p12") + " " + base64("pw") + " -log x"),
             [this] { return ORV_SelectPKCS12(path_, sizeof path_, value_, sizeof value_); }, 0},
            {"own status 3", [](FakeGui &g) { g.reply(replyWithLog("MessageBox")).exitStatus(3); }, message, 3},
            {"unknown status", [](FakeGui &g) { g.reply(replyWithLog("YesNoDialog yes")).exitStatus(12); }, yesNo, 7},
            {"killed", [](FakeGui &g) { g.reply(replyWithLog("MessageBox")).dieBySignal(SIGTERM); }, message, 7},
            {"invalid UTF-8", replying("YesNoDialog yes \xF0\x28\x8C\xBC -log x"), yesNo, 7},
            {"no reply", [](FakeGui &) {}, yesNo, 7},
            {"no log section", replying("YesNoDialog yes"), yesNo, 0},
            {"reply ends in -log", replying("YesNoDialog yes -log"), yesNo, 7},
            {"missing bundle", [](FakeGui &) {}, [this, yesNo] { return withAppPath(scratch / "Missing.app", yesNo); }, 7},
            {"reinsert card", [](FakeGui &g) { g.readStdin().exitStatus(1); },
             [] {
                 const long result = ORV_ReinsertCardShow("m") + ORV_ReinsertCardSwitchText(0);
                 return result + ORV_ReinsertCardSwitchText(1) + ORV_ReinsertCardClose();
             },
             1},
            {"notice replaced by a modal dialog", replying(replyWithLog("MessageBox")),
             [] { return ORV_ReinsertCardShow("m") + ORV_MessageBox("m", nullptr, 0); }, 0},
            {"notice that never reads its commands",
             // It wakes up a little after close began, so that close finds it
             // running.
             [gate](FakeGui &g) { g.gate(gate).sleepMs(20).exitStatus(2); },
             [gate] {
                 long result = ORV_ReinsertCardShow("m");
                 for (int i = 0; i < 5000; ++i)
                     result += ORV_ReinsertCardSwitchText(i & 1);
                 OrvelTest::writeFile(gate, "\n");
                 result += ORV_ReinsertCardClose();
                 unlink(gate.c_str());
                 return result;
             },
             2},
        };
    }

    // Runs whole rounds of the steps, at least `count` dialogs, so that the
    // slot ends holding the same kind of launcher as after one round.
    void runDialogs(const std::vector<Step> &all, size_t count)
    {
        const size_t rounded = (count + all.size() - 1) / all.size() * all.size();
        for (size_t i = 0; i < rounded; ++i) {
            const Step &step = all[i % all.size()];
            step.script(gui.clear());
            ASSERT_EQ(step.call(), step.expected) << step.what << ", dialog " << i;
        }
    }

    OrvelTest::Records records_{3};
    unsigned int selected_ = 0;
    bool confirmed_ = false;
    char path_[256] = {};
    char value_[64] = {};
};

TEST_F(Soak, TenThousandDialogsLeaveNothingBehind)
{
    const auto all = steps();
    // One round first: what the first dialogs set up for good is no growth.
    runDialogs(all, all.size());
    // Room for everything the log will gain, so that its growth is exactly the
    // bytes it gains: reallocations would leave freed copies behind in the heap
    // that look like a leak.
    g_logBuffer->reserve(g_logBuffer->size() + (256u << 20));

    const int descriptors = OrvelTest::openDescriptorCount();
    const int children = OrvelTest::childProcessCount();
    const long long resident = residentAnonymousBytes();
    const size_t logSize = g_logBuffer->size();

    runDialogs(all, 10000);

    EXPECT_EQ(OrvelTest::openDescriptorCount(), descriptors);
    EXPECT_EQ(OrvelTest::childProcessCount(), children);
    EXPECT_EQ(OrvelTest::zombieChildCount(), 0);
    const long long logGrowth = static_cast<long long>(g_logBuffer->size() - logSize);
    const long long growth = residentAnonymousBytes() - resident - logGrowth;
    RecordProperty("resident_growth_besides_log", std::to_string(growth));
    RecordProperty("log_growth", std::to_string(logGrowth));
    std::printf("resident memory besides the log grew by %lld bytes; the log by %lld bytes\n", growth, logGrowth);
    if (kAddressSanitizer) {
        // AddressSanitizer keeps freed memory in quarantine; its leak check at
        // exit stands in for this one.
        return;
    }
    // Allocator noise, not a leak: a leak of even 100 bytes per dialog would be
    // 1 MB here.
    EXPECT_LT(growth, 512 * 1024);
}

TEST_F(Soak, AThousandReplacedNoticesAndClosesAfterEndedNoticesLeaveNothingBehind)
{
    const int descriptors = OrvelTest::openDescriptorCount();
    // Each show replaces a notice that waits for its input; then each notice
    // ends by itself before close.
    gui.readStdin();
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(ORV_ReinsertCardShow("m"), 0) << "show " << i;
    ASSERT_EQ(ORV_ReinsertCardClose(), 0);
    gui.clear().exitStatus(2);
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(ORV_ReinsertCardShow("m"), 0) << "show " << i;
        while (OrvelTest::childProcessCount() != OrvelTest::zombieChildCount() || OrvelTest::zombieChildCount() == 0)
            usleep(200);
        ASSERT_EQ(ORV_ReinsertCardClose(), 2) << "close " << i;
    }
    EXPECT_EQ(OrvelTest::openDescriptorCount(), descriptors);
    EXPECT_EQ(OrvelTest::childProcessCount(), 0);
}

} // namespace
