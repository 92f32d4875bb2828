// The reference GUI application driven directly: argument lists in, keys on its
// terminal, and its reply and log read back.
#include "terminal_driver.hpp"

#include <OrvelGUIDialogs/Certificate.hpp>

#include "support/FakeGui.hpp"

namespace {

using namespace OrvelTest;

const std::string kGui = ORVEL_TEST_BUILD_DIR "/../gui/OrvelGUI.app/Contents/MacOS/OrvelGUI";
const std::string kData = ORVEL_SOURCE_DIR "/tests/data/";

// The list text of the two test certificates, made by the library's encoder.
std::string certificateList(bool forceSecond = false)
{
    std::string alice = readFile(kData + "alice.pem"), bob = readFile(kData + "bob.der"), text;
    std::string texts[] = {"Jiří Novák", "2126-10-29", "2126-09-29", "Bob Example", "2026-12-01", "2026-11-01"};
    const ORV_Certificate records[] = {
        {alice.data(), static_cast<unsigned>(alice.size()), texts[0].data(), texts[1].data(), texts[2].data(), 36500,
         false, false},
        {bob.data(), static_cast<unsigned>(bob.size()), texts[3].data(), texts[4].data(), texts[5].data(), 3,
         forceSecond, true}};
    std::vector<Certificate> certificates;
    for (const auto &record : records)
        certificates.push_back(Certificate().initWithCertificate(record));
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
}

std::vector<Session> sessions()
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
    const std::vector<std::string> done = {"-window", "MessageBox", "-message", "Hotovo"};
    const std::vector<std::string> notice = {"-window", "ReinsertCard", "-message", "Card"};
    return {
        {"MessageWithoutATerminalRepliesAndExitsWithSix", {"-window", "MessageBox", "-message", "Hi", "-icon", "1"},
         {"=6", "^MessageBox -log ", "@No terminal"}, false},
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
        {"CertificateDisplayShowsACertificate", {"-window", "DisplayCert", "-cert", base64(readFile(kData + "alice.pem"))},
         {"?Subject:\x1b[0m C = CZ, O = Orvel Test, CN = Jiří Novák", "?Valid until:\x1b[0m 2126-10-29",
          "?SHA-256 fingerprint:\x1b[0m 72:41:F7:55:37:46:FA:FC:1B:7F:3C:81:9A:87:AB:98:89:13:A0:BE:F4:44:E0:94:CF:D5:"
          "8D:ED:6F:1B:ED:B7", "?Key usage:\x1b[0m digitalSignature, nonRepudiation", kEnter, "=0", "^DisplayCert -log "}},
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
        {"SignIsNotChoosableBeforeTheEnd", signing(clauses(15)), choose("1", "> 2. Decline", "0"), true, {}, {}, 12, 60},
        {"SignIsChoosableAtTheEnd", signing(clauses(15)), choose("\x1b[F1", "> 1. Sign", "1"), true, {}, {}, 12, 60},
        {"SignIsChoosableAfterPagingDown", signing(clauses(15)),
         choose("\x1b[6~\x1b[6~\x1b[6~\x1b[6~\x1b[6~\x1b[6~1", "> 1. Sign", "1"), true, {}, {}, 12, 60},
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

INSTANTIATE_TEST_SUITE_P(GuiApp, GuiSession, testing::ValuesIn(sessions()), sessionName);

} // namespace
