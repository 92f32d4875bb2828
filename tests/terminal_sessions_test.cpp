// Sessions at a terminal: the reference GUI application driven directly
// (argument lists in, keys on its terminal, its reply and log read back); and
// end to end, the host tool orvel-dialogs with the library and the GUI
// application it finds next to itself, or the scripted fake GUI application.
#include "terminal_driver.hpp"

#include <OrvelGUIDialogs/Certificate.hpp>

#include "support/FakeGui.hpp"
#include "support/HostileSamples.hpp"
#include "support/TestCertificates.hpp"

namespace {

using namespace OrvelTest;

const std::string kGui = ORVEL_TEST_BUILD_DIR "/../gui/OrvelGUI.app/Contents/MacOS/OrvelGUI";
const std::string kTool = ORVEL_TEST_BUILD_DIR "/../tools/orvel-dialogs";
const std::string kData = ORVEL_SOURCE_DIR "/tests/data/";

// The list text of certificates, made by the library's encoder: by default
// the two test certificates.
std::string certificateList(bool forceSecond = false, std::vector<std::string> ders = {})
{
    if (ders.empty())
        ders = {readFile(kData + "alice.pem"), readFile(kData + "bob.der")};
    std::string texts[] = {"Jiří Novák", "2126-10-29", "2126-09-29", "Bob Example", "2026-12-01", "2026-11-01"}, text;
    std::vector<Certificate> certificates;
    for (std::size_t i = 0; i < ders.size(); ++i) {
        std::string *t = texts + (i ? 3 : 0);
        const ORV_Certificate record{ders[i].data(), static_cast<unsigned>(ders[i].size()), t[0].data(), t[1].data(),
                                     t[2].data(), i ? 3 : 36500, i && forceSecond, i > 0};
        certificates.push_back(Certificate().initWithCertificate(record));
    }
    Certificate::encodeCertificateArrayToPropertyList(certificates, text);
    return text;
}

std::string clauses(int count)
{
    std::string text;
    for (int i = 1; i <= count; ++i)
        text += "Clause " + std::to_string(i) + ": the buyer pays.\n";
    return text;
}

TEST(GuiApp, BadCommandLinesExitWithFiveAndALog)
{
    const std::vector<std::vector<std::string>> cases = {
        {}, {"-window", "NoSuchWindow"}, {"-window", "MessageBox", "-icon", "0"}, {"-window", "MessageBox", "-message"},
        {"-window", "YesNoDialog", "-message", "Q", "-button", "2"},
        {"-window", "FileOpen", "-message", "M", "-lang", "cz"}, {"-window", "DisplayCert", "-cert", "not base64!"},
        {"-window", "DisplayCert", "-cert", "QUI"}, {"-window", "DisplayCert", "-cert", "QU=D"},
        {"-window", "DisplayCert", "-cert", "Q==="}, {"-window", "DisplayCert", "-cert", "QUJ\xE1"},
        {"-window", "CertificateSelect", "-certs", base64("<plist>no</plist>")},
        {"-window", "CertificateSelect", "-certs", certificateList(), "-selectedCert", "2"},
        {"-window", "SignatureConfirm", "-certs", certificateList(), "-version", "1", "-data", "QUJD", "-hashAlg",
         "SHA-256"},
        {"-window", "MessageBox", "-message", "a", "-message", "b"},
    };
    for (const auto &arguments : cases) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const std::string window = arguments.size() >= 2 ? arguments[1] : "";
        play(kGui, {"", arguments, {"=5", "^" + window + " -log ", "@Bad command line"}, false}, true);
    }
    // References that the announcement does not back: malformed, naming an
    // option whose value is no reference or that is missing, a descriptor
    // that holds no sealed file of the size.
    const std::vector<std::string> box = {"-window", "MessageBox", "-message", "@fd:3"};
    const std::pair<std::string, std::string> announcements[] = {
        {"-message", "is malformed"}, {"-message:3", "is malformed"}, {"-message:2:5", "is malformed"},
        {"-message:3:5,-message:4:5", "is malformed"}, {"-info:3:5", "-info: the command line has no such option"},
        {"-message:4:5", "is not the reference @fd:4"}, {"-message:3:5", "-message: descriptor 3 "}};
    for (const auto &[announced, why] : announcements) {
        SCOPED_TRACE(announced);
        play(kGui, {"", box, {"=5", "@Bad command line", "@" + why}, false, {"ORVEL_GUI_VALUE_FILES=" + announced}},
             true);
    }
}

std::vector<Session> guiSessions()
{
    const std::string id = kData + "id.p12";
    const std::vector<std::string> sign = {"-window", "SignatureConfirm", "-lang", "2", "-certs", certificateList(),
                                           "-version", "4.2", "-hashAlg", "SHA-256", "-hashVal", "AB", "-data"};
    const auto signing = [&](const std::string &data) {
        auto arguments = sign;
        arguments.push_back(base64(data));
        return arguments;
    };
    // Sign stays out of reach while the end of the data is unseen; Decline is
    // preselected.
    const auto choose = [](const std::string &pressed, const std::string &shown, const std::string &result) {
        return std::vector<std::string>{"?Confirm the signature", "?> 2. Decline", "!" + pressed, "?" + shown, kEnter,
                                        "=0", "^SignatureConfirm -result " + result + " "};
    };
    const auto hostGone = [](const std::string &shown, const std::string &first = "") {
        return std::vector<std::string>{"!" + first, "?" + shown, ".", "=2", "@End of input", "*restored"};
    };
    const auto titled = [](const std::string &title) {
        return std::vector<std::string>{"?" + title + "\x1b[0m", kEnter, "=0"};
    };
    const std::string asanOptions = std::getenv("ASAN_OPTIONS") ? std::getenv("ASAN_OPTIONS") : "";
    const std::vector<std::string> done = {"-window", "MessageBox", "-message", "Hotovo"};
    const std::vector<std::string> notice = {"-window", "ReinsertCard", "-message", "Card"};
    return {
        {"MessageWithoutATerminalRepliesAndExitsWithSix", {"-window", "MessageBox", "-message", "Hi", "-icon", "1"},
         {"=6", "^MessageBox -log ", "@No terminal"}, false},
        // Announced nowhere, it is a value like any other.
        {"AValueLikeAReferenceIsAValue", {"-window", "MessageBox", "-lang", "2", "-message", "@fd:3"},
         {"?@fd:3", kEnter, "=0"}},
        {"CertificateSelectionShowsTheListAndRepliesTheIndex",
         {"-window", "CertificateSelect", "-lang", "1", "-selectedCert", "0", "-certs", certificateList(true)},
         {"?Výber certifikátu", "?Jiří Novák | platný do 2126-10-29", "?Bob Example | platný do 2026-12-01 | zostáva "
          "dní: 3 | NUTNÁ OBNOVA do 2026-11-01", "!2", "?> 2. Bob Example", "!d", "?Bob Example", "?Použitie kľúča:",
          kEnter, "?> 2. Bob Example", kEnter, "=0", "^CertificateSelect -selectedCert 1 -log "}},
        // The values are Base64 with their closing "=", and the password stays
        // out of the log.
        {"Pkcs12FileAndPasswordAreCheckedBeforeTheReply",
         {"-window", "SelectPKCS12", "-lang", "2", "-filename", "{dir}/bogus.p12"},
         {"?PKCS#12 file: \x1b[0m{dir}/bogus.p12", kEnter, "?Not a PKCS#12 file: {dir}/bogus.p12",
          "!\x15{dir}/missing.p12\r", "?Cannot read the file: {dir}/missing.p12", "!\x15" + id + "\r", "?Password: ",
          "!wrong\r", "?Wrong password. Try again.", "!pä", "!ss", "?****", kEnter, "=0",
          "^SelectPKCS12 " + base64(id) + " " + base64("päss") + " -log ", "%päss"},
         true, {}, {{"bogus.p12", "-----BEGIN CERTIFICATE-----"}}},
        // While it asks for the password the application may not be dumped.
        {"Pkcs12WindowCannotBeDumped", {"-window", "SelectPKCS12", "-lang", "2", "-filename", id},
         {"?PKCS#12 file: ", kEnter, "?Password: ", "~" + std::to_string(SIGURG), "?[dumpable 0, core limit 0]",
          "!päss\r", "=0"},
         true, {"LD_PRELOAD=" ORVEL_DUMPABLE_PROBE, "ASAN_OPTIONS=verify_asan_link_order=0:" + asanOptions}},
        {"CertificateDisplayShowsACertificate", {"-window", "DisplayCert", "-cert", base64(readFile(kData + "alice.pem"))},
         {"?Subject:\x1b[0m C = CZ, O = Orvel Test, CN = Jiří Novák", "?Valid until:\x1b[0m 2126-10-29",
          "?Key usage:\x1b[0m digitalSignature, nonRepudiation", "?SHA-256 fingerprint:\x1b[0m 72:41:F7:55:37:46:FA:"
          "FC:1B:7F:3C:81:9A:87:AB:98:89:13:A0:BE:F4:44:E0:94:CF:D5:8D:ED:6F:1B:ED:B7", kEnter, "=0", "^DisplayCert -log "}},
        {"CertificateDisplayShowsOtherBytes", {"-window", "DisplayCert", "-cert", base64("\x1b[2Jhello")},
         {"?Not a certificate (9 bytes):", "?1b 5b 32 4a 68 65 6c 6c 6f", kEscape, "=0"}},
        {"ReinsertCardTakesCommandsApartFromOneStream", {"-window", "ReinsertCard", "-lang", "2", "-message", "Card check"},
         {"?Card check", "<ReinsertCard removeReinsertCard ins", "?> Remove the card from the reader.", "<ert",
          "?> Insert the card into the reader.", "<ReinsertCard close", "=0", "^ReinsertCard -log "}},
        {"AHiddenNoticeRunsToTheEndOfItsInput", notice,
         {"?Esc hides this notice.", kEscape, "?Notice hidden", "<ReinsertCard insert", ".", "=2"}},
        // 130 and 143: ended by SIGINT and by SIGTERM.
        {"CtrlCEndsAHiddenNotice", notice,
         {"?Esc hides this notice.", kEscape, "?Ctrl-C ends the application.", "!\x03", "=130", "*restored"}},
        {"TerminalModeIsRestoredWhenASignalEndsIt", {"-window", "YesNoDialog", "-message", "Q"},
         {"?> 1. Yes", "*raw", "~" + std::to_string(SIGTERM), "=143", "*restored"}},
        // A crash too gives the terminal back; the default action still ends it.
        {"TerminalModeIsRestoredAfterSegv", {"-window", "YesNoDialog", "-message", "Q"},
         {"?> 1. Yes", "*raw", "~" + std::to_string(SIGSEGV), "=139", "*restored", "+\x1b[?25h"}},
        {"TerminalModeIsRestoredAfterAbort", {"-window", "FileSave", "-message", "S"},
         {"?File name", "*raw", "~" + std::to_string(SIGABRT), "=134", "*restored"}},
        {"SignIsNotChoosableBeforeTheEnd", signing(clauses(15)), choose("1", "> 2. Decline", "0"), true, {}, {}, 12, 60},
        {"SignIsChoosableAtTheEnd", signing(clauses(15)), choose("\x1b[F1", "> 1. Sign", "1"), true, {}, {}, 12, 60},
        {"SignIsChoosableAfterPagingDown", signing(clauses(15)),
         choose("\x1b[6~\x1b[6~\x1b[6~\x1b[6~\x1b[6~\x1b[6~\x1b[6~\x1b[6~1", "> 1. Sign", "1"), true, {}, {}, 12, 60},
        // Data that is no text: a hex dump under a warning, never blank.
        {"DataThatIsNoTextIsAWarnedHexDump", signing("Pay 100 \xe9UR"),
         choose("\x1b[B", "Warning: these data are not text.", "0"), true, {}, {}, 12, 60},
        {"OneByteThatIsNoText", signing("\xff"), {"?Warning: these data are not text.", "?00000000  ff", "?|.|"}},
        // Redrawn at once on a resize, with no key pressed.
        {"WindowsFollowTheTerminalsSizeAndWrapAtWords",
         {"-window", "MessageBox", "-message", "aaaa bbbb cccc dddd eeee " + clauses(60)},
         {"?lines 1–", "#10,20", "?Information", "?aaaa bbbb cccc dddd\r", "?\neeee Clause 1: the\r",
          "?\nbuyer pays.\r", "!\x1b[F", "?Clause 60: the buyer", kEnter, "=0"}},
        {"MessageEndsCancelledWhenTheHostIsGone", {"-window", "MessageBox", "-message", "M"}, hostGone("Information")},
        {"YesNoEndsCancelledWhenTheHostIsGone", {"-window", "YesNoDialog", "-message", "Q"}, hostGone("> 1. Yes")},
        {"FileSaveEndsCancelledWhenTheHostIsGone", {"-window", "FileSave", "-message", "S", "-filename", "x"},
         hostGone("File name")},
        {"DisplayEndsCancelledWhenTheHostIsGone", {"-window", "DisplayCert", "-cert", base64(readFile(kData + "bob.der"))},
         hostGone("Subject")},
        {"NoticeEndsCancelledWhenTheHostIsGone", notice, hostGone("Card")},
        {"ChoiceInsideSignatureEndsCancelledWhenTheHostIsGone", signing("ABC"), hostGone("Select a certificate", "3\r")},
        {"WithoutLangCzechFromLang", done, titled("Informace"), true, {"LC_ALL=", "LC_MESSAGES=", "LANG=cs_CZ.UTF-8"}},
        {"WithoutLangSlovakFromLcAll", done, titled("Informácia"), true, {"LC_ALL=sk_SK.UTF-8", "LANG=cs_CZ.UTF-8"}},
        {"WithoutLangEnglishFromLcMessages", done, titled("Information"), true,
         {"LC_ALL=", "LC_MESSAGES=en_GB", "LANG=cs_CZ.UTF-8"}},
        {"WithoutLangEnglishForOtherLanguages", done, titled("Information"), true,
         {"LC_ALL=", "LC_MESSAGES=", "LANG=de_DE.UTF-8"}},
        // The library's language in the environment comes before the locale,
        // and -lang before both.
        {"WithoutLangTheHostsLanguage", done, titled("Informácia"), true, {"ORVEL_GUI_LANGUAGE=1", "LC_ALL=cs_CZ.UTF-8"}},
        {"LangBeforeTheHostsLanguage", {"-window", "MessageBox", "-lang", "2", "-message", "Done"},
         titled("Information"), true, {"ORVEL_GUI_LANGUAGE=0"}},
        {"AnUnknownHostsLanguageLeavesItToTheLocale", done,
         {"?Informace\x1b[0m", kEnter, "=0", "@Ignored ORVEL_GUI_LANGUAGE=3"}, true,
         {"ORVEL_GUI_LANGUAGE=3", "LC_ALL=cs_CZ.UTF-8"}},
        {"FileOpenNamesAFilterItCannotRead", {"-window", "FileOpen", "-lang", "2", "-message", "Open", "-fileFilter", "*.pdf"},
         {"?Filter not understood, showing all files: *.pdf", kEscape, "=2", "@File filter not understood"}},
        {"FileSaveNamesAMissingFolderAndAMissingName",
         {"-window", "FileSave", "-lang", "0", "-message", "Save", "-fileFilter", "", "-filename", "/nonexistent/dir/x.pdf"},
         {"?x.pdf", kEnter, "?Složka neexistuje: /nonexistent/dir", "!\x15\r", "?Zadejte název souboru.", kEscape, "=2"}},
    };
}

class GuiSession : public testing::TestWithParam<Session> {};

TEST_P(GuiSession, Runs)
{
    play(kGui, GetParam(), true);
}

INSTANTIATE_TEST_SUITE_P(GuiApp, GuiSession, testing::ValuesIn(guiSessions()), sessionName);

// The hostile documents of the desktop's test, at 24 by 80: no row wider
// than the terminal, the first line on the first screen, every marker and
// every text of the RTF shown, Sign offered only where there is something to
// sign.
std::vector<Session> hostileSessions()
{
    std::vector<Session> sessions;
    for (const HostileSample &sample : hostileSamples()) {
        std::vector<std::string> arguments = {"-window", "SignatureConfirm", "-lang", "2", "-certs", certificateList(),
                                              "-version", "4.2", "-hashAlg", "SHA-256", "-hashVal", "AB",
                                              "-data", base64(sample.data)};
        if (sample.rtf)
            arguments.insert(arguments.end(), {"-rtf", base64(*sample.rtf)});
        std::vector<std::string> steps = {"?Esc cancels.", "|"};
        for (const std::string &text : sample.shown)
            steps.push_back("[" + text);
        for (const std::string &text : sample.absent)
            steps.push_back("-" + text);
        if (sample.signable)
            steps.insert(steps.end(), {"!\x1b[F1", "?> 1. Sign", "|", kEscape, "=2"});
        else
            steps.insert(steps.end(), {"[> 1. Decline", "-Sign (", kEnter, "=0", "^SignatureConfirm -result 0 "});
        sessions.push_back({sample.name, arguments, steps, true, {}, {}, 24, 80});
    }
    // Names read from the certificate by type, whatever its texts hold.
    const SpoofedCertificates made;
    const std::string spoofed = certificateList(false, {made.ouHoldsCommonName, made.lineFeedInCommonName,
                                                        made.bidiInCommonName, made.forgedIssuer});
    sessions.push_back({"CertificatesAreNamedByTheirOwnFields",
                        {"-window", "CertificateSelect", "-lang", "2", "-certs", spoofed},
                        {"?Esc cancels.", "[1. Mallory | valid until", "[OU = \"x, CN = Jiří Novák, y\"",
                         "[2. Mallory⟨U+000A⟩O = Česká národní banka | valid", "[3. Jan ⟨U+202E⟩káváN |",
                         "-\u202E", "!4d", "?Issuer:", "[Issuer: O = Evil, OU = \"CN = Orvel Test Qualified CA\", CN = Evil CA",
                         kEscape, kEscape, "=2"},
                        true, {}, {}, 24, 80});
    return sessions;
}

INSTANTIATE_TEST_SUITE_P(Hostile, GuiSession, testing::ValuesIn(hostileSessions()), sessionName);

// The tool, with keys sent as a user would type them.
std::vector<Session> toolSessions()
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
        // Without --lang in the library's first language, Czech, like every window.
        {"MessageBoxCloses", {"message", "--message", "Hello", "--info", "World", "--icon", "warning"},
         {"?Varování", "?World", kEnter, "=0"}, true, {"LC_ALL=en_US.UTF-8"}},
        // The message box gets no -lang; the library's language reaches it all the same.
        {"MessageBoxInTheToolsLanguage", {"--lang", "sk", "message", "--message", "Hotovo"},
         {"?Informácia", kEnter, "=0"}, true, {"LC_ALL=", "LC_MESSAGES=", "LANG=cs_CZ.UTF-8"}},
        {"OpenBrowsesTheFilteredFolder", {"open", "--lang", "en", "--message", "Pick one", "--filter", "Text (txt)"},
         {"?Filter: Text (txt)", "?3. sub/", "?4. a.txt", "-b.pdf", "!3", "?> 3. sub/", kEnter, "?3. c.txt", "!3",
          "?> 3. c.txt", kEnter, "=0", ">{dir}/sub/c.txt\n"},
         true, {}, {{"a.txt", "content"}, {"b.pdf", "content"}, {"sub/c.txt", "content"}}},
        {"SaveTakesATypedNameAndAsksBeforeReplacing",
         {"save", "--lang", "en", "--message", "Where to?", "--filename", "old.bin"},
         {"?File name: \x1b[0mold.bin", kEnter, "?exists. Replace it?", "?> 2. No", kEnter, "?File name: \x1b[0mold.bin",
          "!\x7f\x7f\x7fnew", "?File name: \x1b[0mold.new", kEnter, "=0", ">{dir}/old.new\n"},
         true, {}, {{"old.bin", "content"}}},
        {"ReinsertFollowsTheCommandsOnStdin", {"reinsert", "--lang", "sk", "--message", "Vyberte a vložte kartu"},
         {"?Vyberte a vložte kartu", "<remove\n", "?> Vyberte kartu z čítačky.", "<insert\n",
          "?> Vložte kartu do čítačky.", "<close\n", "=0"}},
        {"ShowCertReadsADerFile", {"--lang", "en", "show-cert", bob},
         {"?Subject:\x1b[0m C = SK, O = Orvel Test, CN = Bob Example", "?Key usage:\x1b[0m not restricted", kEnter, "=0"}},
        {"SelectCertPrintsTheChosenIndex", {"select-cert", "--lang", "en", "--force-days", "100000", alice, bob},
         {"?1. Jiří Novák | valid until 2126-", "?RENEWAL REQUIRED by 2126-", "?C = CZ, O = Orvel Test, CN = Jiří Novák",
          "?2. Bob Example", kDown, "?> 2. Bob Example", kEnter, "=0", ">1\n"}},
        // The hash is the tool's own, of --data.
        {"ConfirmSignatureWithAnotherCertificate",
         {"confirm-signature", "--lang", "en", "--data", "Pay 100 EUR", "--rtf", "{\\rtf1 Pay}", "--sign-version", "4.2",
          alice, bob},
         {"?Pay 100 EUR", "?Formatted text:\x1b[0m", "?\nPay\r", "?Hash algorithm:\x1b[0m SHA-256",
          "?D11E9CF0D6D5932208BE8AFFF1FFEA231C2886B9DDC4247385D6D4F5D4945C91", "?Certificate:\x1b[0m Jiří Novák",
          "?C = CZ, O = Orvel Test", "?Application version:\x1b[0m 4.2", "!3", "?> 3. Change the certificate", kEnter,
          "?Select a certificate", "!2", "?> 2. Bob Example", kEnter, "?Certificate:\x1b[0m Bob Example", "!1",
          "?> 1. Sign", kEnter, "=0", ">confirmed 1\n"}},
        // The GUI's status, passed on by the tool, not death by SIGINT.
        {"CtrlCCancelsTheDialogButNotTheHost", {"confirm-signature", "--lang", "en", "--data", "x", bob},
         {"?> 2. Decline", "!\x03", "=2", ">"}},
        {"APathTooLongForTheHostsBufferGivesEleven",
         {"save", "--lang", "en", "--buffer-size", "8", "--filename", "long-name.txt"},
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
        {"ParentWindowWithAControlCharacter", {"--parent-window", "x11:1\x1b", "message", "--message", "m"},
         ends(64, "--parent-window: not a window handle (a control character, or over 1024 bytes): x11:1\\x1B"),
         false},
        {"MessageThatIsNoUtf8", {"message", "--lang", "en", "--message", "caf\xe9"}, ends(64, "--message: not valid UTF-8"),
         false},
        {"PreselectedBeyondTheList", {"select-cert", "--selected", "5", alice},
         ends(64, "--selected: 5 is not below the number of certificates (1)"), false},
        {"MissingCertificate", {"show-cert", "missing.pem"},
         ends(66, "missing.pem: cannot read: No such file or directory"), false},
        {"OneOfTheCertificatesMissing", {"select-cert", alice, "missing.pem"},
         ends(66, "missing.pem: cannot read: No such file or directory"), false},
        {"NotACertificate", {"select-cert", kData + "../terminal_sessions_test.cpp"},
         ends(66, "not a PEM or DER certificate"), false},
        {"MissingApplicationNamesTheCause", {"--lang", "en", "--app", "/nonexistent", "yesno", "--message", "hi"},
         ends(7, "cause: no application bundle with an executable at \"/nonexistent\"", "libOrvelGUIDialogs.so"), false},
        {"MissingApplicationInCzech", {"--lang", "cs", "--app", "/nonexistent", "yesno", "--message", "hi"},
         ends(7, "výsledek 7: výměna"), false},
        {"Help", {"save", "--help"}, ends(0, "--buffer-size"), false},
        {"Version", {"-V"}, ends(0, "orvel-dialogs " ORVEL_PROJECT_VERSION), false},
        // Sent in a sealed memory file, read to its end.
        {"ADocumentTooLargeForTheCommandLineIsShownWhole",
         {"confirm-signature", "--lang", "en", "--data-file", "{dir}/contract.txt", alice},
         {"?Clause 1: the buyer pays.", "!\x1b[F", "?Clause 12000: the buyer pays.", "!1", "?> 1. Sign", kEnter, "=0",
          ">confirmed 0\n"},
         true, {}, {{"contract.txt", clauses(12000)}}},
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
        {"LogShowsThePasswordWhenAskedTo", {"--app", app, "--log", "pkcs12", "--show-password"},
         ends(0, "SelectPKCS12 L2EucDEy c2VjcmV0 -log"), false, replying(pkcs12Reply)},
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

INSTANTIATE_TEST_SUITE_P(OrvelDialogsTool, ToolSession, testing::ValuesIn(toolSessions()), sessionName);

} // namespace
