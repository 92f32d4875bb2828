// End to end: the host tool orvel-dialogs, the library, and the reference GUI
// application (found by the tool next to itself) in a pseudo-terminal, with
// keys sent as a user would type them; or the scripted fake GUI application.
#include "terminal_driver.hpp"

namespace {

using namespace OrvelTest;

const std::string kTool = ORVEL_TEST_BUILD_DIR "/../tools/orvel-dialogs";
const std::string kData = ORVEL_SOURCE_DIR "/tests/data/";

std::vector<Session> sessions()
{
    const std::string alice = kData + "alice.pem", bob = kData + "bob.der", id = kData + "id.p12";
    const std::string app = ORVEL_FAKE_GUI_BUNDLE;
    // With no terminal, and the input ended at once: the status, what the tool
    // printed (standard output or error), and what it must not print.
    const auto ends = [](int status, const std::string &printed, const std::string &absent = "") {
        std::vector<std::string> steps{".", "=" + std::to_string(status), "+" + printed};
        if (!absent.empty())
            steps.push_back("-" + absent);
        return steps;
    };
    // The fake GUI application's reply and status. Its log holds "a", an escape
    // sequence, tab, carriage return, a C1 control and "z".
    const auto replying = [](const std::string &reply, const std::string &status = "0") {
        return std::vector<std::string>{"FAKEGUI_REPLY=" + reply + "YRtbMzFtYgljDcKbego=", "FAKEGUI_EXIT=" + status};
    };
    const std::string pkcs12Reply = "SelectPKCS12 L2EucDEy c2VjcmV0 -log ";
    const std::string escapedLog = "GUI application log: a\\x1B[31mb\tc\\x0D\\u009Bz";
    return {
        {"YesNoPrintsTheAnswer", {"yesno", "--lang", "en", "--message", "Continue?", "--info", "Details here"},
         {"?Continue?", "?Details here", "?> 1. Yes", kDown, "?> 2. No", kEnter, "=0", ">no\n"}},
        // --log prints the GUI's log.
        {"EscapeCancelsWithStatusTwoInCzech", {"yesno", "--lang", "cs", "--message", "Pokračovat?", "--button", "no", "--log"},
         {"?> 2. Ne", kEscape, "=2", ">", "?Cancelled by the user."}},
        {"MessageBoxCloses", {"message", "--message", "Hello", "--info", "World", "--icon", "warning"},
         {"?Warning", "?World", kEnter, "=0"}},
        {"OpenBrowsesTheFilteredFolder", {"open", "--lang", "en", "--message", "Pick one", "--filter", "Text (txt)"},
         {"?Filter: Text (txt)", "?3. sub/", "?4. a.txt", "-b.pdf", "!3", "?> 3. sub/", kEnter, "?3. c.txt", "!3",
          "?> 3. c.txt", kEnter, "=0", ">{dir}/sub/c.txt\n"},
         true, {}, {{"a.txt", "content"}, {"b.pdf", "content"}, {"sub/c.txt", "content"}}},
        {"SaveTakesATypedNameAndAsksBeforeReplacing", {"save", "--lang", "en", "--message", "Where to?", "--filename", "old.bin"},
         {"?File name: \x1b[0mold.bin", kEnter, "?exists. Replace it?", "?> 2. No", kEnter, "?File name: \x1b[0mold.bin",
          "!\x7f\x7f\x7fnew", "?File name: \x1b[0mold.new", kEnter, "=0", ">{dir}/old.new\n"},
         true, {}, {{"old.bin", "content"}}},
        {"ReinsertFollowsTheCommandsOnStdin", {"reinsert", "--lang", "sk", "--message", "Vyberte a vložte kartu"},
         {"?Vyberte a vložte kartu", "<remove\n", "?> Vyberte kartu z čítačky.", "<insert\n",
          "?> Vložte kartu do čítačky.", "<close\n", "=0"}},
        {"ShowCertReadsADerFile", {"show-cert", bob},
         {"?Subject:\x1b[0m C = SK, O = Orvel Test, CN = Bob Example", "?Key usage:\x1b[0m not restricted", kEnter, "=0"}},
        {"SelectCertPrintsTheChosenIndex", {"select-cert", "--lang", "en", "--force-days", "100000", alice, bob},
         {"?CN = Jiří Novák | valid until 2126-", "?RENEWAL REQUIRED by 2126-", "?2. C = SK, O = Orvel Test, CN = Bob "
          "Example", kDown, "?> 2. C = SK", kEnter, "=0", ">1\n"}},
        // The hash is the tool's own, of --data.
        {"ConfirmSignatureWithAnotherCertificate",
         {"confirm-signature", "--lang", "en", "--data", "Pay 100 EUR", "--rtf", "{\\rtf1 Pay}", "--sign-version", "4.2",
          alice, bob},
         {"?Application version:\x1b[0m 4.2", "?Pay 100 EUR", "?{\\rtf1 Pay}", "?Hash algorithm:\x1b[0m SHA-256",
          "?D11E9CF0D6D5932208BE8AFFF1FFEA231C2886B9DDC4247385D6D4F5D4945C91", "?Certificate:\x1b[0m C = CZ", "!3",
          "?> 3. Change the certificate", kEnter, "?Select a certificate", "!2", "?> 2. C = SK", kEnter,
          "?Certificate:\x1b[0m C = SK", "!1", "?> 1. Sign", kEnter, "=0", ">confirmed 1\n"}},
        // The GUI's status, passed on by the tool, not death by SIGINT.
        {"CtrlCCancelsTheDialogButNotTheHost", {"confirm-signature", "--lang", "en", "--data", "x", bob},
         {"?> 2. Decline", "!\x03", "=2", ">"}},
        {"APathTooLongForTheHostsBufferGivesEleven", {"save", "--lang", "en", "--buffer-size", "8", "--filename", "long-name.txt"},
         {"?long-name.txt", kEnter, "=11", ">"}},
        // 6 from the close: the GUI found no terminal.
        {"ReinsertWithoutATerminalStillTakesEveryCommand", {"reinsert", "--message", "Card"},
         {"<remove\ninsert\nremove\nclose\n", "=6", "-switching the text gave"}, false},
        {"Pkcs12PrintsPathAndPassword", {"pkcs12", "--lang", "en", "--filename", id, "--show-password"},
         {"?PKCS#12 file: \x1b[0m" + id, kEnter, "?Password: ", "!päss", "?****", kEnter, "=0", ">" + id + "\npäss\n"}},
        {"NoUserInterfaceWithoutATerminal", {"yesno", "--message", "Anyone?"}, ends(6, "found no user interface"), false},
        {"UnknownCommand", {"frobnicate"}, ends(64, "orvel-dialogs: The following argument was not expected: frobnicate"),
         false},
        {"MissingMessage", {"yesno"}, ends(64, "--message or --message-file is required"), false},
        {"RepeatedMessage", {"yesno", "--message", "a", "--message", "b"}, ends(64, "--message:"), false},
        {"MessageThatIsNoUtf8", {"message", "--lang", "en", "--message", "caf\xe9"}, ends(64, "--message: not valid UTF-8"),
         false},
        {"PreselectedBeyondTheList", {"select-cert", "--selected", "5", alice},
         ends(64, "--selected: 5 is not below the number of certificates (1)"), false},
        {"MissingCertificate", {"show-cert", "missing.pem"},
         ends(66, "missing.pem: cannot read: No such file or directory"), false},
        {"OneOfTheCertificatesMissing", {"select-cert", alice, "missing.pem"},
         ends(66, "missing.pem: cannot read: No such file or directory"), false},
        {"NotACertificate", {"select-cert", kData + "../gui_app_test.cpp"}, ends(66, "not a PEM or DER certificate"), false},
        {"MissingApplicationNamesTheCause", {"--lang", "en", "--app", "/nonexistent", "yesno", "--message", "hi"},
         ends(7, "cause: no application bundle with an executable at \"/nonexistent\"", "libOrvelGUIDialogs.so"), false},
        {"MissingApplicationInCzech", {"--lang", "cs", "--app", "/nonexistent", "yesno", "--message", "hi"},
         ends(7, "výsledek 7: výměna"), false},
        {"Help", {"save", "--help"}, ends(0, "--buffer-size"), false},
        {"Version", {"-V"}, ends(0, "orvel-dialogs " ORVEL_PROJECT_VERSION), false},
        {"ATextTooLongForTheCommandLineNamesTheCause", {"--lang", "en", "message", "--message-file", "{dir}/long.txt"},
         ends(7, "cause: posix_spawn", "Argument list too long\n/"), false, {}, {{"long.txt", std::string(200000, 'a')}}},
        // A command that is none ends the tool with 65 after closing the
        // notice; --log still prints the log.
        {"ReinsertMessageNotFromStdin", {"--lang", "en", "--log", "reinsert", "--message-file", "-"},
         ends(64, "give a file"), false},
        {"ReinsertRefusesAnUnknownCommand", {"--lang", "en", "--log", "reinsert", "--message", "Card"},
         {"<remove\nbogus\nclose\n", ".", "=65", "+line 2: unknown command 'bogus'"}, false},
        // Replies of the scripted fake GUI application: the log escaped, the
        // password never printed, JSON for scripts.
        {"LogIsEscaped", {"--lang", "en", "--app", app, "--log", "message", "--message", "m"}, ends(0, escapedLog, "\x1b"),
         false, replying("MessageBox -log ")},
        {"JsonLeavesThePasswordOut", {"--app", app, "--log", "--json", "pkcs12"},
         ends(0, "{\"result\":0,\"meaning\":\"success\",\"value\":{\"path\":\"/a.p12\"}}", "c2VjcmV0"), false,
         replying(pkcs12Reply)},
        {"LoggedReplyHidesThePassword", {"--app", app, "--log", "pkcs12"},
         ends(0, "SelectPKCS12 L2EucDEy ******** -log", "c2VjcmV0"), false, replying(pkcs12Reply)},
        {"AnswerStatus", {"--app", app, "--answer-status", "yesno", "--message", "m"}, ends(1, "no\n"), false,
         replying("YesNoDialog no -log ")},
        {"JsonAnswer", {"--app", app, "--answer-status", "--json", "confirm-signature", "--data", "x", bob},
         ends(0, "\"value\":{\"confirmed\":true,\"index\":0}}"), false,
         replying("SignatureConfirm -result 1 -selectedCert 0 -log ")},
        {"JsonCauseHoldsTheEscapedLog", {"--lang", "en", "--app", app, "--json", "message", "--message", "m"},
         ends(5, "\"cause\":\"GUI application log: a\\\\x1B[31mb\\tc\\\\x0D\\\\u009Bz\""), false,
         replying("MessageBox -log ", "5")},
    };
}

class ToolSession : public testing::TestWithParam<Session> {};

TEST_P(ToolSession, Runs)
{
    play(kTool, GetParam(), false);
}

INSTANTIATE_TEST_SUITE_P(OrvelDialogsTool, ToolSession, testing::ValuesIn(sessions()), sessionName);

} // namespace
