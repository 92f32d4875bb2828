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

TEST(GuiApp, Pkcs12ValuesDecodeWithTheLibrarysDecoder)
{
    const std::string folder = makeTempDir();
    const std::string file = folder + "/id.p12";
    std::ofstream(file) << "x";
    DrivenProcess process(gui({"-window", "SelectPKCS12", "-lang", "0", "-filename", file}));
    ASSERT_TRUE(process.waitForScreen("Soubor PKCS#12: \x1b[0m" + file));
    process.sendKeys(kKeyEnter);
    ASSERT_TRUE(process.waitForScreen("Heslo: "));
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

TEST(GuiApp, TerminalModeIsRestoredWhenASignalEndsIt)
{
    DrivenProcess process(gui({"-window", "YesNoDialog", "-message", "Q"}));
    ASSERT_TRUE(process.waitForScreen("> 1. Yes"));
    termios mode{};
    ASSERT_EQ(::tcgetattr(process.terminalFd(), &mode), 0);
    EXPECT_EQ(mode.c_lflag & (ICANON | ECHO), 0u);
    ::kill(process.pid(), SIGTERM);
    EXPECT_EQ(process.waitExit(), 128 + SIGTERM);
    ASSERT_EQ(::tcgetattr(process.terminalFd(), &mode), 0);
    EXPECT_EQ(mode.c_lflag & (ICANON | ECHO), static_cast<tcflag_t>(ICANON | ECHO));
    EXPECT_NE(process.screen().find("\x1b[?1049l"), std::string::npos);
}

} // namespace
