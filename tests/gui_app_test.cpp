// The reference GUI application driven directly: argument lists in, keys on
// its terminal, and its reply read back with the library's own decoders.
#include "terminal_driver.hpp"

#include <OrvelGUIDialogs/Certificate.hpp>
#include <OrvelGUIDialogs/Util.hpp>

#include "support/TempDir.hpp"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>

namespace {

using namespace OrvelTest;

const std::string kGui = ORVEL_TEST_BUILD_DIR "/../gui/OrvelGUI.app/Contents/MacOS/OrvelGUI";
const std::string kData = ORVEL_SOURCE_DIR "/tests/data/";

std::string readFile(const std::string &path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << file.rdbuf();
    return bytes.str();
}

std::string base64(const std::string &bytes)
{
    return OrvelDialogs::Util::Base64Encode(reinterpret_cast<const unsigned char *>(bytes.data()),
                                            static_cast<unsigned>(bytes.size()));
}

std::vector<std::string> tokens(const std::string &reply)
{
    std::vector<std::string> out(1);
    for (char c : reply) {
        if (c == ' ')
            out.emplace_back();
        else
            out.back().push_back(c);
    }
    return out;
}

// The GUI's own log, decoded from the token after "-log".
std::string guiLog(const std::string &reply)
{
    const auto parts = tokens(reply);
    for (std::size_t i = 0; i + 1 < parts.size(); ++i)
        if (parts[i] == "-log")
            return OrvelDialogs::Util::Base64Decode(parts[i + 1]);
    return "(no log)";
}

ProcessOptions gui(std::vector<std::string> arguments, bool terminal = true)
{
    ProcessOptions options;
    options.argv = {kGui};
    options.argv.insert(options.argv.end(), arguments.begin(), arguments.end());
    options.terminal = terminal;
    options.pipeStdin = true;
    options.pipeStdout = true;
    return options;
}

// The list text of the two test certificates, made by the library's encoder.
std::string certificateList(bool forceSecond)
{
    static std::string alice = readFile(kData + "alice.pem");
    static std::string bob = readFile(kData + "bob.der");
    ORV_Certificate records[2] = {
        {alice.data(), static_cast<unsigned>(alice.size()), const_cast<char *>("Jiří Novák"),
         const_cast<char *>("2126-10-29"), const_cast<char *>("2126-09-29"), 36500, false, false},
        {bob.data(), static_cast<unsigned>(bob.size()), const_cast<char *>("Bob Example"),
         const_cast<char *>("2026-12-01"), const_cast<char *>("2026-11-01"), 3, forceSecond, true},
    };
    std::vector<Certificate> certificates(2);
    certificates[0].initWithCertificate(records[0]);
    certificates[1].initWithCertificate(records[1]);
    std::string text;
    EXPECT_EQ(Certificate::encodeCertificateArrayToPropertyList(certificates, text), 0);
    return text;
}

TEST(GuiApp, BadCommandLinesExitWithFiveAndALog)
{
    const std::vector<std::vector<std::string>> cases = {
        {},
        {"-window", "NoSuchWindow"},
        {"-window", "MessageBox", "-icon", "0"},
        {"-window", "MessageBox", "-message"},
        {"-window", "YesNoDialog", "-message", "Q", "-button", "2"},
        {"-window", "FileOpen", "-message", "M", "-lang", "cz"},
        {"-window", "DisplayCert", "-cert", "not base64!"},
        {"-window", "DisplayCert", "-cert", "QUI"},
        {"-window", "DisplayCert", "-cert", "QU=D"},
        {"-window", "DisplayCert", "-cert", "Q==="},
        {"-window", "DisplayCert", "-cert", "QUJ\xE1"},
        {"-window", "CertificateSelect", "-certs", base64("<plist>no</plist>")},
        {"-window", "CertificateSelect", "-certs", certificateList(false), "-selectedCert", "2"},
        {"-window", "SignatureConfirm", "-certs", certificateList(false), "-version", "1", "-data", "QUJD",
         "-hashAlg", "SHA-256"},
        {"-window", "MessageBox", "-message", "a", "-message", "b"},
    };
    for (const auto &arguments : cases) {
        DrivenProcess process(gui(arguments, false));
        EXPECT_EQ(process.waitExit(), 5) << ::testing::PrintToString(arguments);
        const std::string reply = process.standardOutput();
        const std::string window = arguments.size() >= 2 ? arguments[1] : "";
        EXPECT_EQ(reply.rfind(window + " -log ", 0), 0u) << reply;
        EXPECT_NE(guiLog(reply).find("Bad command line"), std::string::npos) << guiLog(reply);
    }
}

TEST(GuiApp, WithoutATerminalItRepliesAndExitsWithSix)
{
    DrivenProcess message(gui({"-window", "MessageBox", "-message", "Hi", "-icon", "1"}, false));
    EXPECT_EQ(message.waitExit(), 6);
    EXPECT_EQ(message.standardOutput().rfind("MessageBox -log ", 0), 0u);
    EXPECT_NE(guiLog(message.standardOutput()).find("No terminal"), std::string::npos);

    // The notice still takes the host's commands to their end.
    DrivenProcess notice(gui({"-window", "ReinsertCard", "-lang", "2", "-message", "Card"}, false));
    notice.writeStdin("ReinsertCard removeReinsertCard close");
    EXPECT_EQ(notice.waitExit(), 6);
    EXPECT_EQ(notice.standardOutput().rfind("ReinsertCard -log ", 0), 0u);
}

TEST(GuiApp, CertificateSelectionShowsTheListAndRepliesTheIndex)
{
    DrivenProcess process(gui({"-window", "CertificateSelect", "-lang", "1", "-selectedCert", "0", "-certs",
                               certificateList(true)}));
    ASSERT_TRUE(process.waitForScreen("Výber certifikátu"));
    ASSERT_TRUE(process.waitForScreen("Jiří Novák | platný do 2126-10-29"));
    ASSERT_TRUE(process.waitForScreen("Bob Example | platný do 2026-12-01 | zostáva dní: 3 | NUTNÁ OBNOVA do 2026-11-01"));
    process.sendKeys("2");
    ASSERT_TRUE(process.waitForScreen("> 2. Bob Example"));
    process.sendKeys("d"); // details of the highlighted certificate, decoded from its data
    ASSERT_TRUE(process.waitForScreen("Bob Example"));
    ASSERT_TRUE(process.waitForScreen("Použitie kľúča:"));
    process.sendKeys(kKeyEnter);
    ASSERT_TRUE(process.waitForScreen("> 2. Bob Example"));
    process.sendKeys(kKeyEnter);
    ASSERT_EQ(process.waitExit(), 0);
    const auto parts = tokens(process.standardOutput());
    ASSERT_GE(parts.size(), 5u);
    EXPECT_EQ(parts[0], "CertificateSelect");
    EXPECT_EQ(parts[1], "-selectedCert");
    EXPECT_EQ(parts[2], "1");
    EXPECT_EQ(parts[3], "-log");
}

TEST(GuiApp, Pkcs12FileAndPasswordAreCheckedBeforeTheReply)
{
    const std::string folder = makeTempDir();
    const std::string bogus = folder + "/bogus.p12";
    std::ofstream(bogus) << "-----BEGIN CERTIFICATE-----";
    const std::string file = kData + "id.p12";
    DrivenProcess process(gui({"-window", "SelectPKCS12", "-lang", "2", "-filename", bogus}));
    ASSERT_TRUE(process.waitForScreen("PKCS#12 file: \x1b[0m" + bogus));
    process.sendKeys(kKeyEnter);
    ASSERT_TRUE(process.waitForScreen("Not a PKCS#12 file: " + bogus));
    process.sendKeys("\x15" + folder + "/missing.p12" + kKeyEnter);
    ASSERT_TRUE(process.waitForScreen("Cannot read the file: " + folder + "/missing.p12"));
    process.sendKeys("\x15" + file + kKeyEnter);
    ASSERT_TRUE(process.waitForScreen("Password: "));
    process.sendKeys(std::string("wrong") + kKeyEnter);
    ASSERT_TRUE(process.waitForScreen("Wrong password. Try again."));
    process.sendKeys("pä");
    process.sendKeys("ss");
    ASSERT_TRUE(process.waitForScreen("****"));
    process.sendKeys(kKeyEnter);
    ASSERT_EQ(process.waitExit(), 0);
    const auto parts = tokens(process.standardOutput());
    ASSERT_GE(parts.size(), 5u);
    EXPECT_EQ(parts[0], "SelectPKCS12");
    EXPECT_EQ(Certificate::b64StringToData(parts[1]), file);
    EXPECT_EQ(Certificate::b64StringToData(parts[2]), "päss"); // needs its closing "="
    EXPECT_EQ(parts[3], "-log");
    EXPECT_EQ(guiLog(process.standardOutput()).find("päss"), std::string::npos);
    removeTree(folder);
}

TEST(GuiApp, CertificateDisplayShowsCertificatesAndOtherBytes)
{
    DrivenProcess cert(gui({"-window", "DisplayCert", "-cert", base64(readFile(kData + "alice.pem"))}));
    ASSERT_TRUE(cert.waitForScreen("Subject:\x1b[0m C = CZ, O = Orvel Test, CN = Jiří Novák"));
    ASSERT_TRUE(cert.waitForScreen("Valid until:\x1b[0m 2126-10-29"));
    ASSERT_TRUE(cert.waitForScreen("SHA-256 fingerprint:\x1b[0m 72:41:F7:55:37:46:FA:FC:1B:7F:3C:81:9A:87:AB:98:89:13:"
                                   "A0:BE:F4:44:E0:94:CF:D5:8D:ED:6F:1B:ED:B7"));
    ASSERT_TRUE(cert.waitForScreen("Key usage:\x1b[0m digitalSignature, nonRepudiation"));
    cert.sendKeys(kKeyEnter);
    EXPECT_EQ(cert.waitExit(), 0);
    EXPECT_EQ(cert.standardOutput().rfind("DisplayCert -log ", 0), 0u);

    DrivenProcess bytes(gui({"-window", "DisplayCert", "-cert", base64("\x1b[2Jhello")}));
    ASSERT_TRUE(bytes.waitForScreen("Not a certificate (9 bytes):"));
    ASSERT_TRUE(bytes.waitForScreen("1b 5b 32 4a 68 65 6c 6c 6f"));
    bytes.sendKeys(kKeyEscape);
    EXPECT_EQ(bytes.waitExit(), 0);
}

TEST(GuiApp, ReinsertCardTakesCommandsApartFromOneStream)
{
    DrivenProcess process(gui({"-window", "ReinsertCard", "-lang", "2", "-message", "Card check"}));
    ASSERT_TRUE(process.waitForScreen("Card check"));
    process.writeStdin("ReinsertCard removeReinsertCard ins");
    ASSERT_TRUE(process.waitForScreen("> Remove the card from the reader."));
    process.writeStdin("ert");
    ASSERT_TRUE(process.waitForScreen("> Insert the card into the reader."));
    process.writeStdin("ReinsertCard close");
    EXPECT_EQ(process.waitExit(), 0);
    EXPECT_EQ(process.standardOutput().rfind("ReinsertCard -log ", 0), 0u);

    // Escape hides the notice; it still runs to the end of its input.
    DrivenProcess hidden(gui({"-window", "ReinsertCard", "-message", "Card"}));
    ASSERT_TRUE(hidden.waitForScreen("Esc hides this notice."));
    hidden.sendKeys(kKeyEscape);
    ASSERT_TRUE(hidden.waitForScreen("Notice hidden"));
    hidden.writeStdin("ReinsertCard insert");
    hidden.closeStdin();
    EXPECT_EQ(hidden.waitExit(), 2);
}

// The rows of a terminal of `rows` by `columns`.
ProcessOptions sized(ProcessOptions options, int rows, int columns)
{
    options.rows = rows;
    options.columns = columns;
    return options;
}

std::string clauses(int count)
{
    std::string text;
    for (int i = 1; i <= count; ++i)
        text += "Clause " + std::to_string(i) + ": the buyer pays.\n";
    return text;
}

TEST(GuiApp, SignIsChoosableOnlyOnceTheWholeDataWasOnScreen)
{
    struct Case {
        std::string data;
        std::string keys;         // after the window is drawn
        std::string shown;        // drawn after the keys
        std::string result;       // the reply's -result
    };
    const std::vector<Case> cases = {
        // Sign stays out of reach while the end is unseen; Decline is preselected.
        {clauses(15), "1", "> 2. Decline", "0"},
        {clauses(15), "\x1b[F1", "> 1. Sign", "1"},
        {clauses(15), "\x1b[6~\x1b[6~\x1b[6~\x1b[6~\x1b[6~\x1b[6~1", "> 1. Sign", "1"},
        // Data that is no text: a hex dump under a warning, never blank.
        {"Pay 100 \xe9UR", "\x1b[B", "Warning: these data are not text.", "0"},
    };
    for (const auto &c : cases) {
        DrivenProcess process(sized(gui({"-window", "SignatureConfirm", "-lang", "2", "-certs", certificateList(false),
                                         "-version", "4.2", "-data", base64(c.data), "-hashAlg", "SHA-256",
                                         "-hashVal", "AB"}),
                                    12, 60));
        ASSERT_TRUE(process.waitForScreen("Confirm the signature")) << c.keys;
        ASSERT_TRUE(process.waitForScreen("> 2. Decline"));
        process.sendKeys(c.keys);
        ASSERT_TRUE(process.waitForScreen(c.shown)) << c.shown;
        process.sendKeys(kKeyEnter);
        ASSERT_EQ(process.waitExit(), 0) << c.keys;
        const auto parts = tokens(process.standardOutput());
        ASSERT_GE(parts.size(), 3u);
        EXPECT_EQ(parts[2], c.result) << c.keys;
    }
    DrivenProcess process(gui({"-window", "SignatureConfirm", "-lang", "2", "-certs", certificateList(false),
                               "-version", "4.2", "-data", base64("\xff"), "-hashAlg", "SHA-256", "-hashVal", "AB"}));
    EXPECT_TRUE(process.waitForScreen("Warning: these data are not text."));
    EXPECT_TRUE(process.waitForScreen("00000000  ff"));
    EXPECT_TRUE(process.waitForScreen("|.|"));
}

TEST(GuiApp, WindowsFollowTheTerminalsSizeAndWrapAtWords)
{
    DrivenProcess process(sized(gui({"-window", "MessageBox", "-message", "aaaa bbbb cccc dddd eeee " + clauses(60)}),
                                40, 120));
    ASSERT_TRUE(process.waitForScreen("lines 1–"));
    process.resize(10, 20); // redrawn at once, with no key pressed
    ASSERT_TRUE(process.waitForScreen("Information"));
    for (const char *row : {"aaaa bbbb cccc dddd\r", "\neeee Clause 1: the\r", "\nbuyer pays.\r"})
        ASSERT_TRUE(process.waitForScreen(row)) << row;
    process.sendKeys("\x1b[F");
    ASSERT_TRUE(process.waitForScreen("Clause 60: the buyer"));
    process.sendKeys(kKeyEnter);
    EXPECT_EQ(process.waitExit(), 0);
}

// The terminal is as the user left it: cooked mode, the main screen.
void expectTerminalRestored(DrivenProcess &process)
{
    termios mode{};
    ASSERT_EQ(::tcgetattr(process.terminalFd(), &mode), 0);
    EXPECT_EQ(mode.c_lflag & (ICANON | ECHO | ISIG), static_cast<tcflag_t>(ICANON | ECHO | ISIG));
    EXPECT_NE(process.screen().find("\x1b[?1049l"), std::string::npos);
}

TEST(GuiApp, EveryWindowEndsCancelledWhenTheHostIsGone)
{
    struct Case {
        std::vector<std::string> arguments;
        std::string keys;  // lead to the window that is open when the input ends
        std::string shown; // in that window
    };
    const std::vector<Case> cases = {
        {{"-window", "MessageBox", "-message", "M"}, "", "Information"},
        {{"-window", "YesNoDialog", "-message", "Q"}, "", "> 1. Yes"},
        {{"-window", "FileSave", "-message", "S", "-filename", "x"}, "", "File name"},
        {{"-window", "DisplayCert", "-cert", base64(readFile(kData + "bob.der"))}, "", "Subject"},
        {{"-window", "ReinsertCard", "-message", "Card"}, "", "Card"},
        {{"-window", "SignatureConfirm", "-certs", certificateList(false), "-version", "1", "-data", "QUJD",
          "-hashAlg", "SHA-256", "-hashVal", "AB", "-lang", "2"},
         "3\r", "Select a certificate"},
    };
    for (const auto &[arguments, keys, shown] : cases) {
        DrivenProcess process(gui(arguments));
        process.sendKeys(keys);
        ASSERT_TRUE(process.waitForScreen(shown)) << arguments[1];
        process.closeStdin();
        EXPECT_EQ(process.waitExit(), 2) << arguments[1];
        EXPECT_NE(guiLog(process.standardOutput()).find("End of input"), std::string::npos) << arguments[1];
        expectTerminalRestored(process);
    }
}

TEST(GuiApp, CtrlCEndsAHiddenNotice)
{
    DrivenProcess process(gui({"-window", "ReinsertCard", "-message", "Card"}));
    ASSERT_TRUE(process.waitForScreen("Esc hides this notice."));
    process.sendKeys(kKeyEscape);
    ASSERT_TRUE(process.waitForScreen("Ctrl-C ends the application."));
    process.sendKeys("\x03");
    EXPECT_EQ(process.waitExit(), 128 + SIGINT);
    expectTerminalRestored(process);
}

TEST(GuiApp, WithoutLangTheLocaleChoosesTheLanguage)
{
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases = {
        {{"LC_ALL=", "LC_MESSAGES=", "LANG=cs_CZ.UTF-8"}, "Informace"},
        {{"LC_ALL=sk_SK.UTF-8", "LANG=cs_CZ.UTF-8"}, "Informácia"},
        {{"LC_ALL=", "LC_MESSAGES=en_GB", "LANG=cs_CZ.UTF-8"}, "Information"},
        {{"LC_ALL=", "LC_MESSAGES=", "LANG=de_DE.UTF-8"}, "Information"},
    };
    for (const auto &[environment, title] : cases) {
        ProcessOptions options = gui({"-window", "MessageBox", "-message", "Hotovo"});
        options.environment = environment;
        DrivenProcess process(options);
        EXPECT_TRUE(process.waitForScreen(title + "\x1b[0m")) << environment.back();
        process.sendKeys(kKeyEnter);
        EXPECT_EQ(process.waitExit(), 0);
    }
}

TEST(GuiApp, FileWindowsSayWhatIsWrong)
{
    DrivenProcess open(gui({"-window", "FileOpen", "-lang", "2", "-message", "Open", "-fileFilter", "*.pdf"}));
    ASSERT_TRUE(open.waitForScreen("Filter not understood, showing all files: *.pdf"));
    open.sendKeys(kKeyEscape);
    EXPECT_EQ(open.waitExit(), 2);
    EXPECT_NE(guiLog(open.standardOutput()).find("File filter not understood"), std::string::npos);

    DrivenProcess save(gui({"-window", "FileSave", "-lang", "0", "-message", "Save", "-fileFilter", "",
                            "-filename", "/nonexistent/dir/x.pdf"}));
    ASSERT_TRUE(save.waitForScreen("x.pdf"));
    save.sendKeys(kKeyEnter);
    ASSERT_TRUE(save.waitForScreen("Složka neexistuje: /nonexistent/dir"));
    save.sendKeys(std::string("\x15") + kKeyEnter);
    ASSERT_TRUE(save.waitForScreen("Zadejte název souboru."));
    save.sendKeys(kKeyEscape);
    EXPECT_EQ(save.waitExit(), 2);
}

TEST(GuiApp, TerminalModeIsRestoredWhenASignalEndsIt)
{
    DrivenProcess process(gui({"-window", "YesNoDialog", "-message", "Q"}));
    ASSERT_TRUE(process.waitForScreen("> 1. Yes"));
    termios mode{};
    ASSERT_EQ(::tcgetattr(process.terminalFd(), &mode), 0);
    EXPECT_EQ(mode.c_lflag & (ICANON | ECHO), 0u);
    ::kill(process.pid(), SIGTERM);
    EXPECT_EQ(process.waitExit(), 128 + SIGTERM);
    expectTerminalRestored(process);
}

} // namespace
