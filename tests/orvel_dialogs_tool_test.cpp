// End to end: the host tool orvel-dialogs, the library, and the reference GUI
// application (found by the tool next to itself) in a pseudo-terminal, with
// keys sent as a user would type them.
#include "terminal_driver.hpp"

#include "support/TempDir.hpp"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <fstream>

namespace {

using namespace OrvelTest;

const std::string kTool = ORVEL_TEST_BUILD_DIR "/../tools/orvel-dialogs";
const std::string kData = ORVEL_SOURCE_DIR "/tests/data/";

struct Tool {
    explicit Tool(std::vector<std::string> arguments, std::string folder = {}, bool terminal = true,
                  bool pipeStdin = false)
        : process([&] {
              ::setenv("ORVEL_GUI_FRONTEND", "terminal", 1); // not the desktop, even with a display
              ProcessOptions options;
              options.argv = {kTool};
              options.argv.insert(options.argv.end(), arguments.begin(), arguments.end());
              options.pipeStdout = true; // the value, apart from what is drawn
              options.pipeStdin = pipeStdin;
              options.terminal = terminal;
              options.workingDirectory = std::move(folder);
              return options;
          }())
    {
    }
    DrivenProcess process;
};

class TempFolder {
public:
    TempFolder() : path(makeTempDir()) {}
    ~TempFolder() { removeTree(path); }
    void file(const std::string &name) const { std::ofstream(path + "/" + name) << "content"; }
    const std::string path;
};

TEST(OrvelDialogsTool, YesNoPrintsTheAnswer)
{
    Tool tool({"yesno", "--lang", "en", "--message", "Continue?", "--info", "Details here"});
    auto &p = tool.process;
    ASSERT_TRUE(p.waitForScreen("Continue?"));
    ASSERT_TRUE(p.waitForScreen("Details here"));
    ASSERT_TRUE(p.waitForScreen("> 1. Yes"));
    p.sendKeys(kKeyDown);
    ASSERT_TRUE(p.waitForScreen("> 2. No"));
    p.sendKeys(kKeyEnter);
    EXPECT_EQ(p.waitExit(), 0);
    EXPECT_EQ(p.standardOutput(), "no\n");
}

TEST(OrvelDialogsTool, EscapeCancelsWithStatusTwoInCzech)
{
    Tool tool({"yesno", "--lang", "cs", "--message", "Pokračovat?", "--button", "no", "--log"});
    auto &p = tool.process;
    ASSERT_TRUE(p.waitForScreen("> 2. Ne"));
    p.sendKeys(kKeyEscape);
    EXPECT_EQ(p.waitExit(), 2);
    EXPECT_EQ(p.standardOutput(), "");
    EXPECT_TRUE(p.waitForScreen("Cancelled by the user.")); // the GUI's log, printed by --log
}

TEST(OrvelDialogsTool, MessageBoxCloses)
{
    Tool tool({"message", "--message", "Hello", "--info", "World", "--icon", "warning"});
    auto &p = tool.process;
    ASSERT_TRUE(p.waitForScreen("Warning"));
    ASSERT_TRUE(p.waitForScreen("World"));
    p.sendKeys(kKeyEnter);
    EXPECT_EQ(p.waitExit(), 0);
}

TEST(OrvelDialogsTool, OpenBrowsesTheFilteredFolder)
{
    TempFolder folder;
    folder.file("a.txt");
    folder.file("b.pdf");
    ::mkdir((folder.path + "/sub").c_str(), 0700);
    folder.file("sub/c.txt");
    Tool tool({"open", "--lang", "en", "--message", "Pick one", "--filter", "Text (txt)"}, folder.path);
    auto &p = tool.process;
    ASSERT_TRUE(p.waitForScreen("Filter: Text (txt)"));
    ASSERT_TRUE(p.waitForScreen("3. sub/"));
    ASSERT_TRUE(p.waitForScreen("4. a.txt"));
    EXPECT_EQ(p.screen().find("b.pdf"), std::string::npos);
    p.sendKeys("3");
    ASSERT_TRUE(p.waitForScreen("> 3. sub/"));
    p.sendKeys(kKeyEnter);
    ASSERT_TRUE(p.waitForScreen("3. c.txt"));
    p.sendKeys("3");
    ASSERT_TRUE(p.waitForScreen("> 3. c.txt"));
    p.sendKeys(kKeyEnter);
    EXPECT_EQ(p.waitExit(), 0);
    EXPECT_EQ(p.standardOutput(), folder.path + "/sub/c.txt\n");
}

TEST(OrvelDialogsTool, SaveTakesATypedNameAndAsksBeforeReplacing)
{
    TempFolder folder;
    folder.file("old.bin");
    Tool tool({"save", "--lang", "en", "--message", "Where to?", "--filename", "old.bin"}, folder.path);
    auto &p = tool.process;
    ASSERT_TRUE(p.waitForScreen("File name: \x1b[0mold.bin"));
    p.sendKeys(kKeyEnter);
    ASSERT_TRUE(p.waitForScreen("exists. Replace it?"));
    ASSERT_TRUE(p.waitForScreen("> 2. No"));
    p.sendKeys(kKeyEnter);
    ASSERT_TRUE(p.waitForScreen("File name: \x1b[0mold.bin"));
    p.sendKeys("\x7f\x7f\x7fnew");
    ASSERT_TRUE(p.waitForScreen("File name: \x1b[0mold.new"));
    p.sendKeys(kKeyEnter);
    EXPECT_EQ(p.waitExit(), 0);
    EXPECT_EQ(p.standardOutput(), folder.path + "/old.new\n");
}

TEST(OrvelDialogsTool, ReinsertFollowsTheCommandsOnStdin)
{
    Tool tool({"reinsert", "--lang", "sk", "--message", "Vyberte a vložte kartu"}, {}, true, true);
    auto &p = tool.process;
    ASSERT_TRUE(p.waitForScreen("Vyberte a vložte kartu"));
    p.writeStdin("remove\n");
    ASSERT_TRUE(p.waitForScreen("> Vyberte kartu z čítačky."));
    p.writeStdin("insert\n");
    ASSERT_TRUE(p.waitForScreen("> Vložte kartu do čítačky."));
    p.writeStdin("close\n");
    EXPECT_EQ(p.waitExit(), 0);
}

TEST(OrvelDialogsTool, ShowCertReadsADerFile)
{
    Tool tool({"show-cert", kData + "bob.der"});
    auto &p = tool.process;
    ASSERT_TRUE(p.waitForScreen("Subject:\x1b[0m C = SK, O = Orvel Test, CN = Bob Example"));
    ASSERT_TRUE(p.waitForScreen("Key usage:\x1b[0m not restricted"));
    p.sendKeys(kKeyEnter);
    EXPECT_EQ(p.waitExit(), 0);
}

TEST(OrvelDialogsTool, SelectCertPrintsTheChosenIndex)
{
    Tool tool({"select-cert", "--lang", "en", "--force-days", "100000", kData + "alice.pem", kData + "bob.der"});
    auto &p = tool.process;
    ASSERT_TRUE(p.waitForScreen("CN = Jiří Novák | valid until 2126-"));
    ASSERT_TRUE(p.waitForScreen("RENEWAL REQUIRED by 2126-"));
    ASSERT_TRUE(p.waitForScreen("2. C = SK, O = Orvel Test, CN = Bob Example"));
    p.sendKeys(kKeyDown);
    ASSERT_TRUE(p.waitForScreen("> 2. C = SK"));
    p.sendKeys(kKeyEnter);
    EXPECT_EQ(p.waitExit(), 0);
    EXPECT_EQ(p.standardOutput(), "1\n");
}

TEST(OrvelDialogsTool, ConfirmSignatureWithAnotherCertificate)
{
    Tool tool({"confirm-signature", "--lang", "en", "--data", "Pay 100 EUR", "--rtf", "{\\rtf1 Pay}",
               "--sign-version", "4.2", kData + "alice.pem", kData + "bob.der"});
    auto &p = tool.process;
    ASSERT_TRUE(p.waitForScreen("Application version:\x1b[0m 4.2"));
    ASSERT_TRUE(p.waitForScreen("Pay 100 EUR"));
    ASSERT_TRUE(p.waitForScreen("{\\rtf1 Pay}"));
    ASSERT_TRUE(p.waitForScreen("Hash algorithm:\x1b[0m SHA-256"));
    // Computed by the tool from --data.
    ASSERT_TRUE(p.waitForScreen("D11E9CF0D6D5932208BE8AFFF1FFEA231C2886B9DDC4247385D6D4F5D4945C91"));
    ASSERT_TRUE(p.waitForScreen("Certificate:\x1b[0m C = CZ"));
    p.sendKeys("3");
    ASSERT_TRUE(p.waitForScreen("> 3. Change the certificate"));
    p.sendKeys(kKeyEnter);
    ASSERT_TRUE(p.waitForScreen("Select a certificate"));
    p.sendKeys("2");
    ASSERT_TRUE(p.waitForScreen("> 2. C = SK"));
    p.sendKeys(kKeyEnter);
    ASSERT_TRUE(p.waitForScreen("Certificate:\x1b[0m C = SK"));
    p.sendKeys("1");
    ASSERT_TRUE(p.waitForScreen("> 1. Sign"));
    p.sendKeys(kKeyEnter);
    EXPECT_EQ(p.waitExit(), 0);
    EXPECT_EQ(p.standardOutput(), "confirmed 1\n");
}

TEST(OrvelDialogsTool, CtrlCCancelsTheDialogButNotTheHost)
{
    Tool tool({"confirm-signature", "--lang", "en", "--data", "x", kData + "bob.der"});
    auto &p = tool.process;
    ASSERT_TRUE(p.waitForScreen("> 2. Decline"));
    p.sendKeys("\x03");
    EXPECT_EQ(p.waitExit(), 2); // the GUI's status, passed on by the tool, not death by SIGINT
    EXPECT_EQ(p.standardOutput(), "");
}

TEST(OrvelDialogsTool, APathTooLongForTheHostsBufferGivesEleven)
{
    TempFolder folder;
    Tool tool({"save", "--lang", "en", "--buffer-size", "8", "--filename", "long-name.txt"}, folder.path);
    auto &p = tool.process;
    ASSERT_TRUE(p.waitForScreen("long-name.txt"));
    p.sendKeys(kKeyEnter);
    EXPECT_EQ(p.waitExit(), 11);
    EXPECT_EQ(p.standardOutput(), "");
}

TEST(OrvelDialogsTool, ReinsertWithoutATerminalStillTakesEveryCommand)
{
    Tool tool({"reinsert", "--message", "Card"}, {}, false, true);
    auto &p = tool.process;
    p.writeStdin("remove\ninsert\nremove\nclose\n");
    EXPECT_EQ(p.waitExit(), 6); // from the close: the GUI found no terminal
    EXPECT_EQ(p.screen().find("switching the text gave"), std::string::npos) << p.screen();
}

TEST(OrvelDialogsTool, Pkcs12PrintsPathAndPassword)
{
    Tool tool({"pkcs12", "--lang", "en", "--filename", kData + "id.p12", "--show-password"});
    auto &p = tool.process;
    ASSERT_TRUE(p.waitForScreen("PKCS#12 file: \x1b[0m" + kData + "id.p12"));
    p.sendKeys(kKeyEnter);
    ASSERT_TRUE(p.waitForScreen("Password: "));
    p.sendKeys("päss");
    ASSERT_TRUE(p.waitForScreen("****"));
    p.sendKeys(kKeyEnter);
    EXPECT_EQ(p.waitExit(), 0);
    EXPECT_EQ(p.standardOutput(), kData + "id.p12\npäss\n");
}

struct ToolCase {
    std::vector<std::string> arguments;
    int status;
    std::string expected; // in what the tool printed, stdout or stderr
    std::string absent;   // never printed
};

void expectCases(const std::vector<ToolCase> &cases, const std::string &stdinText = {})
{
    for (const ToolCase &row : cases) {
        Tool tool(row.arguments, {}, false, true);
        auto &p = tool.process;
        p.writeStdin(stdinText);
        p.closeStdin();
        const int status = p.waitExit();
        const std::string printed = p.standardOutput() + p.screen();
        SCOPED_TRACE(row.arguments.back() + ": " + printed);
        EXPECT_EQ(status, row.status);
        EXPECT_NE(printed.find(row.expected), std::string::npos);
        if (!row.absent.empty()) {
            EXPECT_EQ(printed.find(row.absent), std::string::npos);
        }
    }
}

TEST(OrvelDialogsTool, CommandLineErrorsNameTheirCause)
{
    const std::string alice = kData + "alice.pem";
    expectCases({
        {{"yesno", "--message", "Anyone?"}, 6, "found no user interface", ""},
        {{"frobnicate"}, 64, "orvel-dialogs: The following argument was not expected: frobnicate", ""},
        {{"yesno"}, 64, "--message or --message-file is required", ""},
        {{"yesno", "--message", "a", "--message", "b"}, 64, "--message:", ""},
        {{"message", "--lang", "en", "--message", "caf\xe9"}, 64, "--message: not valid UTF-8", ""},
        {{"select-cert", "--selected", "5", alice}, 64, "--selected: 5 is not below the number of certificates (1)",
         ""},
        {{"show-cert", "missing.pem"}, 66, "missing.pem: cannot read: No such file or directory", ""},
        {{"select-cert", alice, "missing.pem"}, 66, "missing.pem: cannot read: No such file or directory", ""},
        {{"select-cert", kData + "../gui_app_test.cpp"}, 66, "not a PEM or DER certificate", ""},
        {{"--lang", "en", "--app", "/nonexistent", "yesno", "--message", "hi"}, 7,
         "cause: no application bundle with an executable at \"/nonexistent\"", "libOrvelGUIDialogs.so"},
        {{"--lang", "cs", "--app", "/nonexistent", "yesno", "--message", "hi"}, 7, "výsledek 7: výměna", ""},
        {{"save", "--help"}, 0, "--buffer-size", ""},
        {{"-V"}, 0, "orvel-dialogs " ORVEL_PROJECT_VERSION, ""},
    });
}

// Replies of the scripted fake GUI application, through the tool.
TEST(OrvelDialogsTool, ResultsLogAndJsonForScripts)
{
    const std::string app = ORVEL_FAKE_GUI_BUNDLE;
    // "a", an escape sequence, tab, carriage return, a C1 control, "z".
    const std::string guiLog = "YRtbMzFtYgljDcKbego="; // Base64 of "a\x1b[31mb\tc\r\u009bz\n"
    struct Reply {
        const char *reply;
        const char *exit;
        ToolCase expected;
    };
    const std::vector<Reply> replies = {
        {"MessageBox -log ", "0",
         {{"--lang", "en", "--app", app, "--log", "message", "--message", "m"}, 0,
          "GUI application log: a\\x1B[31mb\tc\\x0D\\u009Bz", "\x1b"}},
        {"SelectPKCS12 L2EucDEy c2VjcmV0 -log ", "0",
         {{"--app", app, "--log", "--json", "pkcs12"}, 0,
          "{\"result\":0,\"meaning\":\"success\",\"value\":{\"path\":\"/a.p12\"}}", "c2VjcmV0"}},
        {"SelectPKCS12 L2EucDEy c2VjcmV0 -log ", "0",
         {{"--app", app, "--log", "pkcs12"}, 0, "SelectPKCS12 L2EucDEy ******** -log", "c2VjcmV0"}},
        {"YesNoDialog no -log ", "0", {{"--app", app, "--answer-status", "yesno", "--message", "m"}, 1, "no\n", ""}},
        {"SignatureConfirm -result 1 -selectedCert 0 -log ", "0",
         {{"--app", app, "--answer-status", "--json", "confirm-signature", "--data", "x", kData + "bob.der"}, 0,
          "\"value\":{\"confirmed\":true,\"index\":0}}", ""}},
        {"MessageBox -log ", "5",
         {{"--lang", "en", "--app", app, "--json", "message", "--message", "m"}, 5,
          "\"cause\":\"GUI application log: a\\\\x1B[31mb\\tc\\\\x0D\\\\u009Bz\"", ""}},
    };
    for (const Reply &reply : replies) {
        ::setenv("FAKEGUI_REPLY", (reply.reply + guiLog).c_str(), 1);
        ::setenv("FAKEGUI_EXIT", reply.exit, 1);
        expectCases({reply.expected});
    }
}

TEST(OrvelDialogsTool, TextsFromFilesAndBadReinsertCommands)
{
    TempFolder folder;
    std::ofstream(folder.path + "/long.txt") << std::string(200000, 'a');
    expectCases({{{"--lang", "en", "message", "--message-file", folder.path + "/long.txt"}, 7,
                  "cause: posix_spawn", "Argument list too long\n/"}});
    // A command that is none ends the tool with 65 after closing the notice;
    // --log still prints the log.
    expectCases({{{"--lang", "en", "--log", "reinsert", "--message-file", "-"}, 64, "give a file", ""},
                 {{"--lang", "en", "--log", "reinsert", "--message", "Card"}, 65,
                  "line 2: unknown command 'bogus'", ""}},
                "remove\nbogus\nclose\n");
}

} // namespace
