// Every dialog of the C interface against the fake GUI: what it refuses before
// anything starts, the argument list it passes, where it takes the exception
// path; and how the message box, the yes/no dialog and the certificate display
// read their replies.
#include <OrvelGUIDialogs/LibraryState.hpp>
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "support/DialogFixture.hpp"
#include "support/HostBuffer.hpp"

#include <cstdlib>
#include <cstring>
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
        {"switch to 7: no notice", fake.c_str(), [] { return ORV_ReinsertCardSwitchText(7); }, 3},
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
    unsigned char bytes[1000];
    for (size_t i = 0; i < sizeof bytes; ++i)
        bytes[i] = static_cast<unsigned char>(i * 7);
    const auto sent = [&](size_t length) { return base64(std::string(reinterpret_cast<char *>(bytes), length)); };
    const std::pair<std::function<long()>, Args> cases[] = {
        {[] { return ORV_MessageBox("Hello", "World", 2); },
         {"-window", "MessageBox", "-message", "Hello", "-info", "World", "-icon", "2"}},
        {[] { return ORV_MessageBox("Hello", nullptr, 0); }, {"-window", "MessageBox", "-message", "Hello", "-icon", "0"}},
        {[] { return ORV_MessageBox("", "", 1); }, {"-window", "MessageBox", "-message", "", "-icon", "1"}},
        // Info that is not UTF-8 counts as empty.
        {[] { return ORV_MessageBox("Příliš", "\xC3\x28", 1); },
         {"-window", "MessageBox", "-message", "Příliš", "-icon", "1"}},
        {[&] { return ORV_YesNoDialog("Q", nullptr, 0, &answer); },
         {"-window", "YesNoDialog", "-lang", "1", "-message", "Q", "-button", "0"}},
        {[&] { return ORV_YesNoDialog("Q", "", 1, &answer); },
         {"-window", "YesNoDialog", "-lang", "1", "-message", "Q", "-button", "1"}},
        {[&] { return ORV_YesNoDialog("Q", "I", 1, &answer); },
         {"-window", "YesNoDialog", "-lang", "1", "-message", "Q", "-info", "I", "-button", "1"}},
        {[=] { return ORV_FileOpenDialog("Open it", "ignored.txt", b, 64, "Docs (pdf)"); },
         {"-window", "FileOpen", "-lang", "1", "-message", "Open it", "-fileFilter", "Docs (pdf)"}},
        {[=] { return ORV_FileOpenDialog("Open it", nullptr, b, 64, nullptr); },
         {"-window", "FileOpen", "-lang", "1", "-message", "Open it", "-fileFilter", ""}},
        {[=] { return ORV_FileSaveDialog("Save", nullptr, b, 64, nullptr); },
         {"-window", "FileSave", "-lang", "1", "-message", "Save", "-fileFilter", "", "-filename", ""}},
        {[=] { return ORV_FileSaveDialog("Save", "out.pdf", b, 64, "All (*)"); },
         {"-window", "FileSave", "-lang", "1", "-message", "Save", "-fileFilter", "All (*)", "-filename", "out.pdf"}},
        {[&] { return pkcs12("cert.p12"); }, {"-window", "SelectPKCS12", "-lang", "1", "-filename", "cert.p12"}},
        {[&] { return pkcs12(""); }, {"-window", "SelectPKCS12", "-lang", "1", "-filename", ""}},
        // A name filling the buffer with no zero is read within the buffer only.
        {[&] { return ORV_SelectPKCS12(full.bytes.get(), full.size, v, 64); },
         {"-window", "SelectPKCS12", "-lang", "1", "-filename", "xxxx"}},
        // Exactly `length` bytes, as Base64.
        {[&] { return ORV_DisplayCertificate(bytes, 1); }, {"-window", "DisplayCert", "-cert", sent(1)}},
        {[&] { return ORV_DisplayCertificate(bytes, 3); }, {"-window", "DisplayCert", "-cert", sent(3)}},
        {[&] { return ORV_DisplayCertificate(bytes, 1000); }, {"-window", "DisplayCert", "-cert", sent(1000)}},
        {[] { return ORV_ReinsertCardShow("Vyjměte kartu") + ORV_ReinsertCardClose(); },
         {"-window", "ReinsertCard", "-lang", "1", "-message", "Vyjměte kartu"}},
    };
    for (const auto &[call, expected] : cases) {
        call();
        EXPECT_EQ(gui.arguments(), expected);
    }
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
        return ORV_ConfirmSignature(r.records.data(), r.count(), &selected, data, nullptr, alg, value, &confirmed);
    };
    // One argument holds at most 128 KiB on Linux.
    std::string der(96 * 1024, '\x30'), subject = "CN=Big", date = "2030-01-01";
    ORV_Certificate big{der.data(), static_cast<unsigned int>(der.size()), subject.data(), date.data(), date.data(),
                        1, false, false};
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
         [this] {
             ORV_SetAppPath("/tmp");
             const long result = ORV_MessageBox("m", nullptr, 0);
             ORV_SetAppPath(fake.c_str());
             return result;
         },
         exception},
        {"open: null message", [=] { return ORV_FileOpenDialog(nullptr, nullptr, b, 8, nullptr); }, exception},
        {"save: file name", [=] { return ORV_FileSaveDialog("m", "\xFF", b, 8, nullptr); }, exception},
        {"open: filter", [=] { return ORV_FileOpenDialog("m", nullptr, b, 8, "\xC3\x28"); }, exception},
        {"PKCS#12: file name", [&] { return ORV_SelectPKCS12(badName, sizeof badName, value.bytes.get(), 8); },
         exception},
        {"select: no deadline", [&] { return ORV_SelectCertificate(noDeadline.records.data(), 2, &selected); },
         exception},
        {"select: a list too long for the command line", [&] { return ORV_SelectCertificate(&big, 1, &selected); },
         exception, "Argument list too long"},
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

TEST_F(Dialogs, YesNoInterpretsTheBeginningOfTheReply)
{
    const struct {
        std::string reply;
        int exit;
        long result;
        int answer; // -1: left as it was
        std::string entry;
    } cases[] = {
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

// The message box and the certificate display read only the status and the
// reply's start; a missing log section is logged, not an error.
TEST_F(Dialogs, MessageBoxAndDisplayReadOnlyStatusAndReplyStart)
{
    unsigned char byte = 0;
    const struct {
        std::string reply;
        int exit;
        long result;
        bool display = false;
        std::string entries = {};
    } cases[] = {
        {replyWithLog("MessageBox"), 0, 0},
        {"MessageBox", 0, 0},
        {"MessageBox anything", 0, 0},
        {replyWithLog("MessageBox"), 5, 5},
        {"", 0, 7},
        {replyWithLog("YesNoDialog"), 0, 7},
        {replyWithLog("MessageBox"), 200, 7},
        {"DisplayCert", 0, 0, true, "Odpověď z GUI neobsahovala log.\n\n"},
        {replyWithLog("MessageBox"), 0, 7, true,
         "Chybná odpověď od DisplayCert okna.\n\nOdpověď z GUI neobsahovala log.\n\n"},
        {replyWithLog("DisplayCert"), 4, 4, true},
    };
    for (const auto &c : cases) {
        gui.reply(c.reply).exitStatus(c.exit);
        const long result = c.display ? ORV_DisplayCertificate(&byte, 1) : ORV_MessageBox("m", nullptr, 0);
        EXPECT_EQ(result, c.result) << c.reply << " exit " << c.exit;
        const std::string log = newLog();
        EXPECT_TRUE(c.entries.empty() || log == c.entries) << c.reply << ": " << log;
    }
}

} // namespace
