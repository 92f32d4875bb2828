// Every dialog of the C interface against the fake GUI: what it refuses before
// anything starts, the argument list it passes, where it takes the exception
// path, and what it makes of the reply; the notice's commands; and the file
// filter's patterns.
#include <OrvelGUIDialogs/Certificate.hpp>
#include <OrvelGUIDialogs/LibraryState.hpp>
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "support/DialogFixture.hpp"

#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <functional>

using OrvelTest::base64;
using OrvelTest::HostBuffer;
using OrvelTest::Records;
using OrvelTest::replyWithLog;
using Args = std::vector<std::string>;

namespace {

class Dialogs : public OrvelTest::DialogTest {
protected:
    void SetUp() override
    {
        DialogTest::SetUp();
        ORV_SetOrvelSignVersion("2.1");
    }
    const std::string fake = OrvelTest::FakeGui::bundlePath();
};

TEST_F(Dialogs, RefusedCallsStartNothingAndLogNothing)
{
    HostBuffer buffer(8), value(8);
    char *b = buffer.bytes.get(), *v = value.bytes.get();
    bool answer = false;
    unsigned int selected = 0;
    unsigned char byte = 0x41;
    Records records(2);
    ORV_Certificate *list = records.records.data();
    const struct {
        const char *what, *path; // path: "" and null both count as none
        std::function<long()> call;
        long result;
    } cases[] = {
        // The message box checks its arguments before the path...
        {"box: null message, no path", "", [] { return ORV_MessageBox(nullptr, nullptr, 0); }, 1},
        {"box: icon 3", fake.c_str(), [] { return ORV_MessageBox("m", nullptr, 3); }, 1},
        {"box: icon -1", fake.c_str(), [] { return ORV_MessageBox("m", nullptr, -1); }, 1},
        {"box: no path", "", [] { return ORV_MessageBox("m", nullptr, 0); }, 9},
        // ...the yes/no dialog tests the path first.
        {"yes/no: null message, no path", "", [&] { return ORV_YesNoDialog(nullptr, nullptr, 0, &answer); }, 9},
        {"yes/no: null message", fake.c_str(), [&] { return ORV_YesNoDialog(nullptr, nullptr, 0, &answer); }, 1},
        {"yes/no: button 2", fake.c_str(), [&] { return ORV_YesNoDialog("m", nullptr, 2, &answer); }, 1},
        {"yes/no: button -1", fake.c_str(), [&] { return ORV_YesNoDialog("m", nullptr, -1, &answer); }, 1},
        {"yes/no: null result", fake.c_str(), [] { return ORV_YesNoDialog("m", nullptr, 0, nullptr); }, 1},
        // Missing certificate data is 4, before the path test.
        {"display: null data", nullptr, [] { return ORV_DisplayCertificate(nullptr, 10); }, 4},
        {"display: no bytes", nullptr, [&] { return ORV_DisplayCertificate(&byte, 0); }, 4},
        {"display: no path", nullptr, [&] { return ORV_DisplayCertificate(&byte, 1); }, 9},
        // The file dialogs check all before they touch a buffer.
        {"open: no path", nullptr, [] { return ORV_FileOpenDialog("m", nullptr, nullptr, 8, nullptr); }, 9},
        {"PKCS#12: no path", nullptr, [] { return ORV_SelectPKCS12(nullptr, 0, nullptr, 0); }, 9},
        {"open: no room", fake.c_str(), [&] { return ORV_FileOpenDialog("m", nullptr, b, 0, nullptr); }, 1},
        {"save: no buffer", fake.c_str(), [] { return ORV_FileSaveDialog("m", nullptr, nullptr, 8, nullptr); }, 1},
        {"PKCS#12: no room for the value", fake.c_str(), [&] { return ORV_SelectPKCS12(b, 8, v, 0); }, 1},
        {"PKCS#12: no room for the path", fake.c_str(), [&] { return ORV_SelectPKCS12(b, 0, v, 8); }, 1},
        {"PKCS#12: no value buffer", fake.c_str(), [&] { return ORV_SelectPKCS12(b, 8, nullptr, 8); }, 1},
        {"select: no records", fake.c_str(), [&] { return ORV_SelectCertificate(list, 0, &selected); }, 1},
        {"select: null records", fake.c_str(), [&] { return ORV_SelectCertificate(nullptr, 2, &selected); }, 1},
        {"select: null result", fake.c_str(), [&] { return ORV_SelectCertificate(list, 2, nullptr); }, 1},
        {"confirm: null result", fake.c_str(),
         [&] { return ORV_ConfirmSignature(list, 2, &selected, "d", nullptr, "a", "v", nullptr); }, 1},
        {"select: no path", nullptr, [] { return ORV_SelectCertificate(nullptr, 0, nullptr); }, 9},
        {"confirm: no path", nullptr,
         [] { return ORV_ConfirmSignature(nullptr, 0, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr); }, 9},
        {"notice: no path", nullptr, [] { return ORV_ReinsertCardShow(nullptr); }, 9},
        {"notice: null message", fake.c_str(), [] { return ORV_ReinsertCardShow(nullptr); }, 1},
        // Switch and close need a notice.
        {"switch: no notice", fake.c_str(), [] { return ORV_ReinsertCardSwitchText(1); }, 3},
        {"close: no notice", fake.c_str(), [] { return ORV_ReinsertCardClose(); }, 3},
    };
    for (const auto &c : cases) {
        ORV_SetAppPath(c.path);
        EXPECT_EQ(c.call(), c.result) << c.what;
        EXPECT_FALSE(gui.ran()) << c.what;
        EXPECT_EQ(newLog(), "") << c.what;
        EXPECT_EQ(appLchr, nullptr) << c.what;
    }
    EXPECT_TRUE(buffer.untouched() && value.untouched());
    EXPECT_EQ(selected, 0u);
}

TEST_F(Dialogs, YesNoAndTheNoticeResolveTheLanguageFirstEvenWhenRefused)
{
    ORV_SetAppPath(nullptr);
    bool answer = false;
    const std::tuple<const char *, std::function<long()>, int> cases[] = {
        {"sk_SK.UTF-8", [&] { return ORV_YesNoDialog("Q", nullptr, 0, &answer); }, 1},
        {"cs_CZ.UTF-8", [] { return ORV_ReinsertCardShow(nullptr); }, 0},
        // The message box neither reads nor resolves it.
        {"sk_SK.UTF-8", [] { return ORV_MessageBox("Q", nullptr, 0); }, -1},
    };
    for (const auto &[locale, call, language] : cases) {
        setenv("LC_ALL", locale, 1);
        OrvelDialogs::SetLanguage(-1);
        EXPECT_EQ(call(), 9);
        EXPECT_EQ(g_appLanguage, language) << locale;
    }
}

TEST_F(Dialogs, PassExactlyTheirArgumentLists)
{
    gui.reply(replyWithLog("YesNoDialog yes"));
    ORV_SetLanguage(1);
    bool answer = false;
    HostBuffer buffer(64), value(64), full(4);
    char *b = buffer.bytes.get(), *v = value.bytes.get();
    // The PKCS#12 buffer is both the starting name and the answer.
    const auto pkcs12 = [=](const char *name) {
        std::strcpy(b, name);
        return ORV_SelectPKCS12(b, 64, v, 64);
    };
    Records records(2);
    unsigned int selected = 1;
    const auto signing = [&](const char *data, const char *rtf) {
        bool confirmed = false;
        return ORV_ConfirmSignature(records.records.data(), 2, &selected, data, rtf, "SHA-256", "0A1B", &confirmed);
    };
    unsigned char bytes[1000];
    for (size_t i = 0; i < sizeof bytes; ++i)
        bytes[i] = static_cast<unsigned char>(i * 7);
    const auto sent = [&](size_t length) { return base64(std::string(reinterpret_cast<char *>(bytes), length)); };
    // Each list with "|" between the arguments.
    const std::string sign = "-window|SignatureConfirm|-lang|1|-version|2.1|-data|";
    const std::pair<std::function<long()>, std::string> cases[] = {
        {[] { return ORV_MessageBox("Hello", "World", 2); }, "-window|MessageBox|-message|Hello|-info|World|-icon|2"},
        {[] { return ORV_MessageBox("Hello", nullptr, 0); }, "-window|MessageBox|-message|Hello|-icon|0"},
        {[] { return ORV_MessageBox("", "", 1); }, "-window|MessageBox|-message||-icon|1"},
        // Info that is not UTF-8 counts as empty.
        {[] { return ORV_MessageBox("Příliš", "\xC3\x28", 1); }, "-window|MessageBox|-message|Příliš|-icon|1"},
        {[&] { return ORV_YesNoDialog("Q", nullptr, 0, &answer); }, "-window|YesNoDialog|-lang|1|-message|Q|-button|0"},
        {[&] { return ORV_YesNoDialog("Q", "", 1, &answer); }, "-window|YesNoDialog|-lang|1|-message|Q|-button|1"},
        {[&] { return ORV_YesNoDialog("Q", "I", 1, &answer); }, "-window|YesNoDialog|-lang|1|-message|Q|-info|I|-button|1"},
        {[=] { return ORV_FileOpenDialog("Open it", "ignored.txt", b, 64, "Docs (pdf)"); },
         "-window|FileOpen|-lang|1|-message|Open it|-fileFilter|Docs (pdf)"},
        {[=] { return ORV_FileOpenDialog("Open it", nullptr, b, 64, nullptr); },
         "-window|FileOpen|-lang|1|-message|Open it|-fileFilter|"},
        {[=] { return ORV_FileSaveDialog("Save", nullptr, b, 64, nullptr); },
         "-window|FileSave|-lang|1|-message|Save|-fileFilter||-filename|"},
        {[=] { return ORV_FileSaveDialog("Save", "out.pdf", b, 64, "All (*)"); },
         "-window|FileSave|-lang|1|-message|Save|-fileFilter|All (*)|-filename|out.pdf"},
        {[&] { return pkcs12("cert.p12"); }, "-window|SelectPKCS12|-lang|1|-filename|cert.p12"},
        {[&] { return pkcs12(""); }, "-window|SelectPKCS12|-lang|1|-filename|"},
        // A name filling the buffer with no zero is read within the buffer only.
        {[&] { return ORV_SelectPKCS12(full.bytes.get(), full.size, v, 64); }, "-window|SelectPKCS12|-lang|1|-filename|xxxx"},
        // Exactly `length` bytes, as Base64.
        {[&] { return ORV_DisplayCertificate(bytes, 1); }, "-window|DisplayCert|-cert|" + sent(1)},
        {[&] { return ORV_DisplayCertificate(bytes, 3); }, "-window|DisplayCert|-cert|" + sent(3)},
        {[&] { return ORV_DisplayCertificate(bytes, 1000); }, "-window|DisplayCert|-cert|" + sent(1000)},
        {[] { return ORV_ReinsertCardShow("Vyjměte kartu") + ORV_ReinsertCardClose(); },
         "-window|ReinsertCard|-lang|1|-message|Vyjměte kartu"},
        // The certificate list ("*") is read back: the records in their order.
        {[&] { return ORV_SelectCertificate(records.records.data(), 2, &selected); },
         "-window|CertificateSelect|-lang|1|-selectedCert|1|-certs|*"},
        {[&] { return signing("ABC", nullptr); }, sign + "QUJD|-hashAlg|SHA-256|-hashVal|0A1B|-selectedCert|1|-certs|*"},
        {[&] { return signing("ABC", "XY"); }, sign + "QUJD|-hashAlg|SHA-256|-hashVal|0A1B|-selectedCert|1|-rtf|WFk=|-certs|*"},
        {[&] { return signing("", nullptr); }, sign + "|-hashAlg|SHA-256|-hashVal|0A1B|-selectedCert|1|-certs|*"},
        // Data that is not UTF-8 is sent as the empty value.
        {[&] { return signing("\xFF\xFE", "\xC3\x28"); },
         sign + "|-hashAlg|SHA-256|-hashVal|0A1B|-selectedCert|1|-rtf||-certs|*"},
    };
    for (const auto &[call, expected] : cases) {
        call();
        Args arguments = gui.arguments();
        if (expected.back() == '*' && !arguments.empty()) {
            std::vector<Certificate> decoded;
            ASSERT_EQ(Certificate::decodeCertificateArrayFromPropertyList(arguments.back(), decoded), 0);
            ASSERT_EQ(decoded.size(), 2u);
            for (size_t i = 0; i < 2; ++i)
                EXPECT_TRUE(decoded[i].data() == records.data[i] && decoded[i].subjectStr() == records.subjects[i] &&
                            decoded[i].validDaysRemaning() == 30 - static_cast<int>(i) && decoded[i].forceRenew() == (i == 1));
            arguments.back() = "*";
        }
        std::string list;
        for (const std::string &argument : arguments)
            list += (list.empty() ? "" : "|") + argument;
        EXPECT_EQ(list, expected);
    }
}

// What does not fit on the command line arrives in sealed memory files at 3,
// 4, ...; what fits, and a value that only looks like a reference, stay.
TEST_F(Dialogs, ValuesTooLargeForTheCommandLineArriveInSealedFiles)
{
    const int descriptors = OrvelTest::openDescriptorCount();
    Records records(150);
    for (size_t i = 0; i < 150; ++i) { // certificates of a typical 1.5 KiB
        records.data[i].resize(1500, static_cast<char>('A' + i % 26));
        records.records[i].data = records.data[i].data();
        records.records[i].dataLength = 1500;
    }
    const auto text = [](size_t bytes) {
        std::string clauses;
        while (clauses.size() < bytes)
            clauses += "Clause " + std::to_string(clauses.size()) + ": the buyer pays.\n";
        return clauses.substr(0, bytes);
    };
    std::string document = text(300 * 1024);
    const std::string data = base64(document);
    const std::string sealed = std::to_string(F_SEAL_WRITE | F_SEAL_SHRINK | F_SEAL_GROW | F_SEAL_SEAL);
    unsigned int selected = 0;
    bool confirmed = false;
    ORV_SetLanguage(2);
    const auto sign = [&](unsigned count, const std::string &rtf) {
        return ORV_ConfirmSignature(records.records.data(), count, &selected, document.c_str(), rtf.c_str(), "SHA-256",
                                    "0A1B", &confirmed);
    };
    gui.reply(replyWithLog("SignatureConfirm -result 1 -selectedCert 149"));
    EXPECT_EQ(sign(150, "XY"), 0);
    EXPECT_TRUE(confirmed && selected == 149);
    EXPECT_EQ(gui.arguments(), (Args{"-window", "SignatureConfirm", "-lang", "2", "-version", "2.1", "-data", "@fd:3",
                                     "-hashAlg", "SHA-256", "-hashVal", "0A1B", "-selectedCert", "0", "-rtf", "WFk=",
                                     "-certs", "@fd:4"}));
    EXPECT_EQ(gui.valueRead("-data"), data);
    const std::string list = gui.valueRead("-certs"), bytes = std::to_string(list.size());
    std::vector<Certificate> decoded;
    ASSERT_EQ(Certificate::decodeCertificateArrayFromPropertyList(list, decoded), 0);
    ASSERT_EQ(decoded.size(), 150u);
    EXPECT_TRUE(decoded[0].data() == records.data[0] && decoded[149].data() == records.data[149]);
    EXPECT_EQ(gui.announcement(), "-data:3:" + std::to_string(data.size()) + ",-certs:4:" + bytes);
    EXPECT_EQ(gui.valueFiles(), "-data " + sealed + " " + std::to_string(data.size()) + "\n-certs " + sealed + " " +
                                    bytes + "\n");
    EXPECT_EQ(gui.openDescriptors(), (std::vector<int>{0, 1, 2, 3, 4}));
    EXPECT_EQ(OrvelTest::openDescriptorCount(), descriptors);

    gui.reply(replyWithLog("CertificateSelect -selectedCert 7"));
    EXPECT_EQ(ORV_SelectCertificate(records.records.data(), 150, &selected), 0);
    EXPECT_EQ(gui.arguments(), (Args{"-window", "CertificateSelect", "-lang", "2", "-selectedCert", "149", "-certs",
                                     "@fd:3"}));
    EXPECT_EQ(gui.valueRead("-certs"), list);

    // Values each within 128 KiB, too many together for a stack limit of
    // 1 MiB (a quarter of it for all): the largest alone moves.
    rlimit stack{}, small{1 << 20, 1 << 20};
    getrlimit(RLIMIT_STACK, &stack);
    small.rlim_max = stack.rlim_max;
    ASSERT_EQ(setrlimit(RLIMIT_STACK, &small), 0);
    const std::string rtf = text(93000);
    document.assign(text(95000));
    selected = 0;
    gui.reply(replyWithLog("SignatureConfirm -result 0 -selectedCert 1"));
    EXPECT_EQ(sign(2, rtf), 0);
    setrlimit(RLIMIT_STACK, &stack);
    const Args arguments = gui.arguments();
    ASSERT_EQ(arguments.size(), 18u);
    EXPECT_EQ(arguments[7], "@fd:3");
    EXPECT_EQ(arguments[15], base64(rtf));
    EXPECT_EQ(gui.valueRead("-data"), base64(document));
    EXPECT_EQ(gui.announcement(), "-data:3:" + std::to_string(base64(document).size()));

    // The host's own announcement never reaches the child.
    setenv("ORVEL_GUI_VALUE_FILES", "-message:3:5", 1);
    gui.reply(replyWithLog("MessageBox"));
    EXPECT_EQ(ORV_MessageBox("@fd:3", nullptr, 0), 0);
    unsetenv("ORVEL_GUI_VALUE_FILES");
    EXPECT_EQ(gui.arguments(), (Args{"-window", "MessageBox", "-message", "@fd:3", "-icon", "0"}));
    EXPECT_EQ(gui.announcement(), "(none)");
    EXPECT_EQ(gui.openDescriptors(), (std::vector<int>{0, 1, 2}));
    EXPECT_EQ(OrvelTest::openDescriptorCount(), descriptors);
}

// What no command line carries goes in the environment: the language (for the
// windows without -lang too) and the host's window, in place of any stale
// value the host's own environment holds; everything else passes unchanged.
TEST_F(Dialogs, TheGuiGetsTheLanguageAndTheHostsWindowInItsEnvironment)
{
    gui.reply(replyWithLog("MessageBox"));
    setenv("ORVEL_GUI_LANGUAGE", "stale", 1);
    setenv("ORVEL_GUI_PARENT_WINDOW", "stale", 1);
    const std::string tooLong = "x11:" + std::string(1021, '1');
    const struct {
        std::function<long()> set;
        long result;
        const char *language, *window; // null: not in the environment
    } cases[] = {
        {[] { return ORV_SetParentWindow("x11:0x3a00007"); }, 0, "0", "x11:0x3a00007"},
        {[] { return ORV_SetLanguage(1); }, 0, "1", "x11:0x3a00007"},
        // Refused: the window named before stays.
        {[] { return ORV_SetParentWindow("x11:1\n"); }, 1, "1", "x11:0x3a00007"},
        {[] { return ORV_SetParentWindow("wayland:\xC3\x28"); }, 1, "1", "x11:0x3a00007"},
        {[&] { return ORV_SetParentWindow(tooLong.c_str()); }, 1, "1", "x11:0x3a00007"},
        {[&] { return ORV_SetParentWindow(tooLong.substr(1).c_str()); }, 0, "1", tooLong.c_str() + 1},
        {[] { return ORV_SetParentWindow(""); }, 0, "1", nullptr},
        {[] { return ORV_SetParentWindow("wayland:5f3b-Ž"); }, 0, "1", "wayland:5f3b-Ž"},
        {[] { return ORV_SetParentWindow(nullptr); }, 0, "1", nullptr},
        // Not set: the GUI application follows the locale, as the library would.
        {[] { return OrvelDialogs::SetLanguage(-1), 0L; }, 0, nullptr, nullptr},
        {[] { return OrvelDialogs::SetParentWindow("x11:\x7f"), ORV_SetLanguage(2); }, 0, "2", nullptr},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(c.set(), c.result);
        ASSERT_EQ(ORV_MessageBox("M", nullptr, 0), 0);
        std::vector<std::string> ours;
        bool hostsOwn = false;
        for (const std::string &entry : gui.environment()) {
            if (entry.starts_with("ORVEL_GUI_LANGUAGE=") || entry.starts_with("ORVEL_GUI_PARENT_WINDOW="))
                ours.push_back(entry);
            hostsOwn = hostsOwn || entry == "FAKEGUI_RECORD_DIR=" + std::string(getenv("FAKEGUI_RECORD_DIR"));
        }
        Args expected;
        if (c.language)
            expected.push_back(std::string("ORVEL_GUI_LANGUAGE=") + c.language);
        if (c.window)
            expected.push_back(std::string("ORVEL_GUI_PARENT_WINDOW=") + c.window);
        EXPECT_EQ(ours, expected);
        EXPECT_TRUE(hostsOwn);
    }
    EXPECT_EQ(std::string(getenv("ORVEL_GUI_LANGUAGE")), "stale"); // the host's own stays as it was
}

TEST_F(Dialogs, FailuresInsideTheExchangeTakeTheExceptionPath)
{
    const std::string exception = "Exception occured:\n";
    const std::string certificates = "Input parameters checked\nCreating certificates array\n" + exception;
    bool answer = false, confirmed = false;
    unsigned int selected = 0;
    HostBuffer buffer(8), value(8);
    char *b = buffer.bytes.get();
    char badName[] = "\xFF.p12";
    Records records(2), noDeadline(2), badSubject(2);
    noDeadline.records[1].renewDeadlineStr = nullptr;
    badSubject.records[0].subjectStr = const_cast<char *>("\xC3\x28");
    const auto confirm = [&](Records &r, const char *data, const char *alg, const char *value) {
        return ORV_ConfirmSignature(r.records.data(), 2, &selected, data, nullptr, alg, value, &confirmed);
    };
    const struct {
        const char *what;
        std::function<long()> call;
        std::string start, reason = {};
        std::string reply = {}; // for the fake to give; else it never starts
    } cases[] = {
        // A text that is not UTF-8 cannot be placed in the argument list.
        {"box: message", [] { return ORV_MessageBox("\xFF", nullptr, 0); }, exception, "argument list"},
        {"yes/no: message", [&] { return ORV_YesNoDialog("\xC3\x28", nullptr, 0, &answer); }, exception,
         "argument list"},
        {"box: a directory that is no bundle",
         [this] { return withAppPath("/tmp", [] { return ORV_MessageBox("m", nullptr, 0); }); }, exception},
        {"open: null message", [=] { return ORV_FileOpenDialog(nullptr, nullptr, b, 8, nullptr); }, exception},
        {"save: file name", [=] { return ORV_FileSaveDialog("m", "\xFF", b, 8, nullptr); }, exception},
        {"open: filter", [=] { return ORV_FileOpenDialog("m", nullptr, b, 8, "\xC3\x28"); }, exception},
        {"PKCS#12: file name", [&] { return ORV_SelectPKCS12(badName, sizeof badName, value.bytes.get(), 8); },
         exception},
        {"select: no deadline", [&] { return ORV_SelectCertificate(noDeadline.records.data(), 2, &selected); },
         exception},
        {"confirm: subject", [&] { return confirm(badSubject, "ABC", "SHA-256", "0A1B"); }, certificates},
        {"confirm: no data", [&] { return confirm(records, nullptr, "a", "v"); }, certificates},
        {"confirm: no algorithm", [&] { return confirm(records, "d", nullptr, "v"); }, certificates},
        {"confirm: hash value", [&] { return confirm(records, "d", "a", "\xFF"); }, certificates},
        {"confirm: no version",
         [&] {
             ORV_SetOrvelSignVersion(nullptr);
             return confirm(records, "d", "a", "v");
         },
         certificates},
        // Last: the only one that starts the fake.
        {"yes/no: a reply that ends in -log", [&] { return ORV_YesNoDialog("m", nullptr, 0, &answer); }, exception,
         "index 3 beyond bounds [0 .. 2]", "YesNoDialog yes -log"},
    };
    for (const auto &c : cases) {
        gui.reply(c.reply);
        EXPECT_EQ(c.call(), 7) << c.what;
        EXPECT_EQ(gui.ran(), !c.reply.empty()) << c.what;
        const std::string log = newLog();
        EXPECT_EQ(log.rfind(c.start, 0), 0u) << c.what << ": " << log.substr(0, 300);
        EXPECT_GT(log.size(), c.start.size() + 1) << c.what;
        EXPECT_NE(log.find(c.reason), std::string::npos) << c.what << ": " << log.substr(0, 300);
    }
    EXPECT_TRUE(buffer.clearedExceptLast());
    EXPECT_FALSE(answer || confirmed);
}

// Each row's dialog runs against the reply and status and describes what the
// host got back: the result, then the answer, index or buffers.
TEST_F(Dialogs, RepliesAreReadAsTheyCome)
{
    // The answer after a run starting from false, then from true: "01" kept.
    const auto yesNo = [] {
        std::string answers;
        long result = 0;
        for (const bool initial : {false, true}) {
            bool answer = initial;
            result = ORV_YesNoDialog("Q", nullptr, 0, &answer);
            answers += answer ? "1" : "0";
        }
        return std::to_string(result) + " " + answers;
    };
    const auto message = [] { return std::to_string(ORV_MessageBox("m", nullptr, 0)); };
    unsigned char byte = 0;
    const auto display = [&] { return std::to_string(ORV_DisplayCertificate(&byte, 1)); };
    Records three(3), two(2);
    const auto select = [&] {
        unsigned int selected = 1;
        const long result = ORV_SelectCertificate(three.records.data(), 3, &selected);
        return std::to_string(result) + " " + std::to_string(selected);
    };
    // Confirmed after runs from false and from true, then the index (from 1);
    // every run logs its checks first and no unknown status.
    const auto confirm = [&] {
        std::string outcome, confirmedAnswers, indexes;
        for (const bool initial : {false, true}) {
            bool confirmed = initial;
            unsigned int selected = 1;
            const size_t before = OrvelTest::logText().size();
            outcome = std::to_string(ORV_ConfirmSignature(two.records.data(), 2, &selected, "ABC", nullptr, "SHA-256",
                                                          "0A1B", &confirmed));
            const std::string log = OrvelTest::logText().substr(before);
            EXPECT_EQ(log.rfind("Input parameters checked\nCreating certificates array\n", 0), 0u) << log;
            EXPECT_EQ(log.find("Unknown error"), std::string::npos) << log;
            confirmedAnswers += confirmed ? "1" : "0";
            indexes = std::to_string(selected);
        }
        return outcome + " " + confirmedAnswers + " " + indexes;
    };
    const auto open = [](unsigned int size) {
        return [size] {
            HostBuffer buffer(size);
            const long result = ORV_FileOpenDialog("m", nullptr, buffer.bytes.get(), size, nullptr);
            return std::to_string(result) + " " + buffer.describe();
        };
    };
    const auto pkcs12 = [](unsigned int pathSize, unsigned int valueSize) {
        return [=] {
            HostBuffer path(pathSize), value(valueSize);
            const long result = ORV_SelectPKCS12(path.bytes.get(), pathSize, value.bytes.get(), valueSize);
            return std::to_string(result) + " " + path.describe() + " " + value.describe();
        };
    };
    const auto masked = [](std::function<std::string()> call) {
        return [=] {
            ORV_SetMaskSecrets(1);
            const std::string outcome = call();
            ORV_SetMaskSecrets(0);
            return outcome;
        };
    };
    const std::string index = "Index vybraného certifikátu neodpovídá povolenému obsahu\n\n", path8 = "/tmp/a.b";
    const std::string selectFormat = "Neočekávaný formát odpovědi z okna SelectCertificate\n\n";
    const std::string confirmFormat = "Neočekávaný formát odpovědi z okna ConfirmSignature\n\n";
    const std::string both = replyWithLog("SelectPKCS12 " + base64("/k.p12") + " " + base64("heslo"));
    const std::string pathOnly = replyWithLog("SelectPKCS12 " + base64("/k.p12"));
    const std::string emptyBoth = replyWithLog("SelectPKCS12 " + base64("") + " " + base64(""));
    const std::string badValue = replyWithLog("SelectPKCS12 " + base64("/k.p12") + " " + base64("\xFF"));
    const std::string noLog = "Odpověď z GUI neobsahovala log.\n\n", hello = "log z GUI aplikace: hello \n\n";
    const struct {
        std::string reply;
        int exit;
        std::function<std::string()> call;
        std::string outcome, entry = {};
    } cases[] = {
        {replyWithLog("YesNoDialog yes"), 0, yesNo, "0 11"}, {replyWithLog("YesNoDialog no"), 0, yesNo, "0 00"},
        {replyWithLog("YesNoDialog nope"), 0, yesNo, "0 00"}, {replyWithLog("YesNoDialog yesterday"), 0, yesNo, "0 11"},
        {replyWithLog("YesNoDialog  yes"), 0, yesNo, "7 01", "Wrong YesNoDialog response!\n"},
        {replyWithLog("YesNoDialog maybe"), 0, yesNo, "7 01", "Wrong YesNoDialog response!\n"},
        {"YesNoDialog yes", 0, yesNo, "0 01", noLog}, {replyWithLog("YesNoDialog yes"), 2, yesNo, "2 01"},
        {replyWithLog("YesNoDialog yes"), 9, yesNo, "7 01", "Unknown error code number occured:9\n\n"},
        {replyWithLog("MessageBox yes"), 0, yesNo, "7 01", "Chybná odpověď od YesNoDialog okna.\n\n"},
        // The message box and the display read only the status and the reply's
        // start; the GUI's own statuses below 9 pass, the rest is 7.
        {replyWithLog("MessageBox"), 0, message, "0"}, {"MessageBox", 0, message, "0"},
        {"MessageBox anything", 0, message, "0"}, {replyWithLog("MessageBox"), 5, message, "5"},
        {replyWithLog("MessageBox"), 8, message, "8"}, {"", 0, message, "7"},
        {replyWithLog("YesNoDialog"), 0, message, "7"}, {replyWithLog("MessageBox"), 200, message, "7"},
        {"DisplayCert", 0, display, "0", noLog},
        {replyWithLog("MessageBox"), 0, display, "7", "Chybná odpověď od DisplayCert okna.\n\n" + noLog},
        {replyWithLog("DisplayCert"), 4, display, "4"},
        {replyWithLog("CertificateSelect -selectedCert 2"), 0, select, "0 2"},
        {replyWithLog("CertificateSelect -selectedCert 3"), 0, select, "7 1", index},
        {replyWithLog("CertificateSelect -selectedCert -1"), 0, select, "7 1", index},
        {replyWithLog("CertificateSelect -selectedCert 18446744073709551615"), 0, select, "7 1", index},
        {replyWithLog("CertificateSelect -selectedCert abc"), 0, select, "0 0"},
        {replyWithLog("CertificateSelect -selectedCert 2x"), 0, select, "0 2"},
        {"CertificateSelect -selectedCert 2", 0, select, "0 1", noLog},
        {replyWithLog("CertificateSelect  -selectedCert 1"), 0, select, "7 1", selectFormat},
        {replyWithLog("CertificateSelect"), 0, select, "7 1", selectFormat},
        {replyWithLog("CertificateSelect -selectedCert 2"), 2, select, "2 1"},
        {replyWithLog("CertificateSelect -selectedCert 2"), 12, select, "7 1", "Unknown error code number occured:12\n\n"},
        // The confirmation takes its status as it is, 9 and above included.
        {replyWithLog("SignatureConfirm -result 1 -selectedCert 1"), 12, confirm, "12 01 1"},
        {replyWithLog("SignatureConfirm -result 1 -selectedCert 1"), 3, confirm, "3 01 1"},
        {"SignatureConfirm -result 1 -selectedCert 1", 0, confirm, "0 01 1", noLog},
        {"SignatureConfirm -result 1 -selectedCert", 0, confirm, "0 01 1", "Odpověď z GUI neobsahovala log"},
        {"SignatureConfirm -result 1 -log " + base64("x"), 0, confirm, "7 11 1", confirmFormat},
        {replyWithLog("SignatureConfirm -result 1 -selectedCert 1"), 0, confirm, "0 11 1"},
        {replyWithLog("SignatureConfirm -result 0 -selectedCert 0"), 0, confirm, "0 00 0"},
        {replyWithLog("SignatureConfirm -result yes -selectedCert 0"), 0, confirm, "0 00 0"},
        {replyWithLog("SignatureConfirm -result -3 -selectedCert 1"), 0, confirm, "0 11 1"},
        {replyWithLog("SignatureConfirm -result 1 -selectedCert 5"), 0, confirm, "7 11 1", index},
        {replyWithLog("SignatureConfirm -selectedCert 1 -result 1"), 0, confirm, "7 01 1", confirmFormat},
        {replyWithLog("SignatureConfirm -result 1 -index 1"), 0, confirm, "7 11 1", confirmFormat},
        // A path is copied only when it fits, with room for its zero.
        {replyWithLog("FileOpen " + base64(path8)), 0, open(9), "0 " + path8},
        {replyWithLog("FileOpen " + base64(path8)), 0, open(8), "11 cleared"},
        {replyWithLog("FileOpen " + base64(std::string("/a\0/b", 5))), 0, open(9), "0 /a"},
        {replyWithLog("FileOpen " + base64("")), 0, open(1), "0 zero"},
        {replyWithLog("FileOpen " + base64("/")), 0, open(1), "11 untouched"},
        // "-log" stands where the path token would: it decodes to nothing.
        {replyWithLog("FileOpen"), 0, open(9), "0 cleared"}, {"FileOpen " + base64(path8), 0, open(9), "0 cleared"},
        {replyWithLog("FileOpen " + base64(path8)), 2, open(9), "2 cleared"},
        {replyWithLog("FileSave " + base64(path8)), 0, open(9), "7 cleared"},
        // Unpadded tokens lose their last group, as the value decoder does.
        {replyWithLog("FileOpen L3RtcC9hLmI"), 0, open(9), "0 /tmp/a"},
        {replyWithLog("FileOpen " + base64("\xC3\x28")), 0, open(9), "7 cleared"},
        {"FileOpen " + base64(path8) + " -log", 0, open(9), "7 cleared"},
        // Both values or neither; the raw reply is logged before the GUI's log.
        {both, 0, pkcs12(7, 6), "0 /k.p12 heslo", both + "\n" + hello},
        {both, 0, pkcs12(7, 5), "11 /k.p12 zero", both + "\n" + hello},
        {both, 0, pkcs12(6, 64), "11 zero zero", both + "\n" + hello},
        {pathOnly, 0, pkcs12(7, 6), "0 /k.p12 zero", pathOnly + "\n" + hello},
        {emptyBoth, 0, pkcs12(1, 1), "0 zero zero", emptyBoth + "\n" + hello},
        {"SelectPKCS12 " + base64("/k.p12") + " " + base64("heslo"), 0, pkcs12(7, 6), "0 zero zero"},
        {badValue, 0, pkcs12(7, 6), "7 zero zero", badValue + "\n" + hello},
        // Masked on request: the password's token only; "-log" in its place hides nothing.
        {both, 0, masked(pkcs12(7, 6)), "0 /k.p12 heslo", "SelectPKCS12 " + base64("/k.p12") + " ******** -log "},
        {pathOnly, 0, masked(pkcs12(7, 6)), "0 /k.p12 zero", pathOnly + "\n" + hello},
    };
    for (const auto &c : cases) {
        gui.reply(c.reply).exitStatus(c.exit);
        EXPECT_EQ(c.call(), c.outcome) << c.reply << " exit " << c.exit;
        const std::string log = newLog();
        EXPECT_NE(log.find(c.entry), std::string::npos) << c.reply << "\n" << log;
    }
}

TEST_F(Dialogs, SaveLogsTheRawReplyBeforeTheGuiLog)
{
    const std::string reply = replyWithLog("FileSave " + base64("/x"), "gui said");
    gui.reply(reply);
    HostBuffer buffer(16);
    EXPECT_EQ(ORV_FileSaveDialog("m", nullptr, buffer.bytes.get(), buffer.size, nullptr), 0);
    EXPECT_EQ(newLog(), reply + "\nlog z GUI aplikace: gui said \n\n");
    gui.reply(replyWithLog("FileOpen " + base64("/x"), "gui said"));
    EXPECT_EQ(ORV_FileOpenDialog("m", nullptr, buffer.bytes.get(), buffer.size, nullptr), 0);
    EXPECT_EQ(newLog(), "log z GUI aplikace: gui said \n\n");
}

TEST_F(Dialogs, SpoiltRecordsAreRefusedBeforeAnythingStarts)
{
    using Mutation = std::function<void(Records &, unsigned int &)>;
    const std::pair<const char *, Mutation> cases[] = {
        {"preselected equals count", [](Records &, unsigned int &s) { s = 3; }},
        {"second record without data", [](Records &r, unsigned int &) { r.records[1].data = nullptr; }},
        {"second record of length 0", [](Records &r, unsigned int &) { r.records[1].dataLength = 0; }},
        {"third record without end of validity", [](Records &r, unsigned int &) { r.records[2].notAfterStr = nullptr; }},
        {"first record without subject", [](Records &r, unsigned int &) { r.records[0].subjectStr = nullptr; }},
    };
    for (const auto &[what, mutate] : cases) {
        Records records(3);
        unsigned int selected = 0;
        bool confirmed = true;
        mutate(records, selected);
        const unsigned int before = selected;
        EXPECT_EQ(ORV_SelectCertificate(records.records.data(), 3, &selected), 1) << what;
        EXPECT_EQ(ORV_ConfirmSignature(records.records.data(), 3, &selected, "ABC", nullptr, "SHA-256", "0A1B", &confirmed), 1)
            << what;
        EXPECT_EQ(selected, before);
        EXPECT_TRUE(confirmed);
    }
    EXPECT_FALSE(gui.ran());
    EXPECT_EQ(newLog(), "");
}

// The modeless reinsert-card notice: show, switch and close against a fake GUI
// that records what it reads from its stdin.
TEST_F(Dialogs, NoticeCommandsReachTheGuiAsOneStreamAndCloseGivesItsStatus)
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

TEST_F(Dialogs, NoticeCloseMapsUnknownStatusesAndDrainsOutputNobodyReads)
{
    // Far more output than a pipe holds: close must not wait for ever.
    gui.readStdin().fill(8u << 20).exitStatus(12);
    ASSERT_EQ(ORV_ReinsertCardShow("m"), 0);
    EXPECT_EQ(ORV_ReinsertCardClose(), 7);
    EXPECT_EQ(newLog(), "Unknown error code number occured:12\n\n");
}

TEST_F(Dialogs, ANoticeLauncherThatCannotTakeCommandsGivesSevenAndTheHostLives)
{
    // SIGPIPE at its default disposition would kill the test if it leaked.
    signal(SIGPIPE, SIG_DFL);
    struct Step {
        const char *what;
        std::function<void()> prepare;
    };
    const Step steps[] = {
        {"the notice was closed", [] {
             ASSERT_EQ(ORV_ReinsertCardShow("m"), 0);
             ASSERT_EQ(ORV_ReinsertCardClose(), 0);
         }},
        {"a modal dialog took the slot", [] { ASSERT_EQ(ORV_MessageBox("m", nullptr, 0), 0); }},
        {"the launch failed",
         [this] { ASSERT_EQ(withAppPath("/nonexistent.app", [] { return ORV_ReinsertCardShow("m"); }), 7); }},
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

TEST_F(Dialogs, AReplacedNoticeKeepsRunningAndIsReapedOnceItExits)
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

TEST_F(Dialogs, ShowingANoticeTwiceReachesOnlyTheSecond)
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

// The memory test's password lives here only masked (each byte XOR kMask), so
// that a scan of this process finds the library's copies and no test's own.
constexpr char kMask = 0x5A;

// Where the masked `needle` stands in this process's writable memory; the
// scan's own buffer is left out. Mappings of 4 GiB and more are sanitizer
// shadow, never the heap.
std::vector<uintptr_t> placesInMemory(const std::string &needle)
{
    static char chunk[1 << 20];
    const auto own = reinterpret_cast<uintptr_t>(chunk);
    std::vector<std::pair<uintptr_t, uintptr_t>> regions;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) {
        unsigned long begin = 0, end = 0;
        char perms[5] = {};
        if (std::sscanf(line.c_str(), "%lx-%lx %4s", &begin, &end, perms) == 3 && perms[0] == 'r' &&
            perms[1] == 'w' && end - begin < (1ul << 32))
            regions.emplace_back(begin, end);
    }
    const auto unmasked = [](char m, char c) { return (c ^ kMask) == m; };
    std::vector<uintptr_t> found;
    const int mem = open("/proc/self/mem", O_RDONLY | O_CLOEXEC);
    for (auto [at, end] : regions) {
        while (at < end) {
            if (at >= own && at < own + sizeof chunk) {
                at = own + sizeof chunk;
                continue;
            }
            const size_t want = std::min<uintptr_t>({sizeof chunk, end - at, at < own ? own - at : SIZE_MAX});
            const ssize_t n = pread(mem, chunk, want, static_cast<off_t>(at));
            if (n < static_cast<ssize_t>(needle.size()))
                break;
            // Candidates by their first byte: memchr keeps a debug build fast.
            const char *p = chunk, *last = chunk + n - needle.size();
            while (p <= last && (p = static_cast<const char *>(std::memchr(p, needle[0] ^ kMask, last - p + 1)))) {
                if (std::equal(needle.begin(), needle.end(), p, unmasked))
                    found.push_back(at + static_cast<uintptr_t>(p - chunk));
                ++p;
            }
            at += static_cast<size_t>(n) - needle.size() + 1;
        }
    }
    close(mem);
    return found;
}

TEST_F(Dialogs, ThePkcs12PasswordStaysOnlyInTheHostsBufferAndTheLog)
{
    for (const bool maskSecrets : {false, true}) {
        SCOPED_TRACE(maskSecrets ? "masked" : "not masked");
        std::string password;
        for (std::ifstream random("/dev/urandom"); password.size() < 40;)
            password += static_cast<char>(('a' + static_cast<unsigned char>(random.get()) % 26) ^ kMask);
        const std::string token = base64(password, kMask);
        const std::string replyFile = scratch / "reply";
        const int fd = open(replyFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        const std::string head = "SelectPKCS12 " + base64("/k.p12") + " ", tail = " -log " + base64("hello") + "\n";
        char clear[64] = {};
        std::transform(token.begin(), token.end(), clear, [](char c) { return static_cast<char>(c ^ kMask); });
        ASSERT_TRUE(write(fd, head.data(), head.size()) > 0 && write(fd, clear, token.size()) > 0 &&
                    write(fd, tail.data(), tail.size()) > 0);
        explicit_bzero(clear, sizeof clear);
        close(fd);
        gui.replyFile(replyFile);
        ORV_SetMaskSecrets(maskSecrets);
        HostBuffer path(64), value(64);
        ASSERT_EQ(ORV_SelectPKCS12(path.bytes.get(), path.size, value.bytes.get(), value.size), 0);
        // Searched for without their first 16 bytes, which malloc overwrites
        // in memory it took back.
        const auto hostsBuffer = reinterpret_cast<uintptr_t>(value.bytes.get());
        EXPECT_EQ(placesInMemory(password.substr(16)), std::vector{hostsBuffer + 16});
        for (int round = 0; round < 2; ++round) {
            const char *log = nullptr;
            ORV_GetLog(&log);
            const auto inLog = [&](uintptr_t at) { return at - reinterpret_cast<uintptr_t>(log) < std::strlen(log); };
            const std::vector<uintptr_t> places = placesInMemory(token.substr(16));
            EXPECT_EQ(places.size(), maskSecrets ? 0u : 1u);
            EXPECT_TRUE(std::all_of(places.begin(), places.end(), inLog));
            // Once more after the log has grown into new room.
            logMsg(std::string(4u << 20, '.'));
        }
    }
}

TEST(FileFilter, ReadsThePatternsOfEveryEntry)
{
    using Patterns = std::optional<std::vector<std::string>>;
    const std::pair<const char *, Patterns> cases[] = {
        {"Documents (pdf,doc)|Text (txt)", std::vector<std::string>{"pdf", "doc", "txt"}},
        {"Documents (pdf, doc)", std::vector<std::string>{"pdf", " doc"}}, {"x (a)b(c)", std::vector<std::string>{"a"}},
        {"Any ()", std::vector<std::string>{""}}, {"Docs (pdf", std::vector<std::string>{"pdf"}},
        {"Odd )pdf(", std::vector<std::string>{"pdf"}}, {"Images (png,*)", std::nullopt},
        {"All files (*)", std::nullopt}, {"All (*)|broken", std::nullopt},
        {"Dup (a,a)|Again (a)", std::vector<std::string>{"a", "a", "a"}}, {nullptr, std::nullopt},
        {"Bad (\xFF)", std::nullopt},
    };
    for (const auto &[text, expected] : cases)
        EXPECT_EQ(getFileTypesFromString(text), expected) << (text ? text : "null");
    for (const char *broken : {"broken|All (*)", "", "Text (txt)|", "no patterns"})
        EXPECT_THROW(getFileTypesFromString(broken), std::runtime_error) << broken;
}

} // namespace
