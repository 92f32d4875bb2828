// The reference GUI application driven directly: argument lists in, keys on
// its terminal, and its reply and log read back.
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
        {"-window", "CertificateSelect", "-certs", certificateList(), "-selectedCert", "2"},
        {"-window", "SignatureConfirm", "-certs", certificateList(), "-version", "1", "-data", "QUJD", "-hashAlg",
         "SHA-256"},
        {"-window", "MessageBox", "-message", "a", "-message", "b"},
    };
    for (const auto &arguments : cases) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        const std::string window = arguments.size() >= 2 ? arguments[1] : "";
        play(kGui, {"", arguments, {exits(5), printsFirst(window + " -log "), logs("Bad command line")}, false}, true);
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
        return std::vector<Step>{see("Confirm the signature"), see("> 2. Decline"), keys(pressed), see(shown),
                                 keys(kKeyEnter), exits(0), printsFirst("SignatureConfirm -result " + result + " ")};
    };
    const auto hostGone = [](const std::string &shown, const std::string &first = "") {
        return std::vector<Step>{keys(first), see(shown), endInput(), exits(2), logs("End of input"), restored()};
    };
    const auto titled = [](const std::string &title) {
        return std::vector<Step>{see(title + "\x1b[0m"), keys(kKeyEnter), exits(0)};
    };
    const std::vector<std::string> done = {"-window", "MessageBox", "-message", "Hotovo"};
    const std::vector<std::string> notice = {"-window", "ReinsertCard", "-message", "Card"};
    return {
        {"MessageWithoutATerminalRepliesAndExitsWithSix", {"-window", "MessageBox", "-message", "Hi", "-icon", "1"},
         {exits(6), printsFirst("MessageBox -log "), logs("No terminal")}, false},
        {"NoticeWithoutATerminalStillTakesTheCommands", {"-window", "ReinsertCard", "-lang", "2", "-message", "Card"},
         {input("ReinsertCard removeReinsertCard close"), exits(6), printsFirst("ReinsertCard -log ")}, false},
        {"CertificateSelectionShowsTheListAndRepliesTheIndex",
         {"-window", "CertificateSelect", "-lang", "1", "-selectedCert", "0", "-certs", certificateList(true)},
         {see("Výber certifikátu"), see("Jiří Novák | platný do 2126-10-29"),
          see("Bob Example | platný do 2026-12-01 | zostáva dní: 3 | NUTNÁ OBNOVA do 2026-11-01"), keys("2"),
          see("> 2. Bob Example"), keys("d"), see("Bob Example"), see("Použitie kľúča:"), keys(kKeyEnter),
          see("> 2. Bob Example"), keys(kKeyEnter), exits(0), printsFirst("CertificateSelect -selectedCert 1 -log ")}},
        // The values are Base64 with their closing "=", and the password stays
        // out of the log.
        {"Pkcs12FileAndPasswordAreCheckedBeforeTheReply",
         {"-window", "SelectPKCS12", "-lang", "2", "-filename", "{dir}/bogus.p12"},
         {see("PKCS#12 file: \x1b[0m{dir}/bogus.p12"), keys(kKeyEnter), see("Not a PKCS#12 file: {dir}/bogus.p12"),
          keys("\x15{dir}/missing.p12\r"), see("Cannot read the file: {dir}/missing.p12"), keys("\x15" + id + "\r"),
          see("Password: "), keys("wrong\r"), see("Wrong password. Try again."), keys("pä"), keys("ss"), see("****"),
          keys(kKeyEnter), exits(0), printsFirst("SelectPKCS12 " + base64(id) + " " + base64("päss") + " -log "),
          logLacks("päss")},
         true, {}, {{"bogus.p12", "-----BEGIN CERTIFICATE-----"}}},
        {"CertificateDisplayShowsACertificate", {"-window", "DisplayCert", "-cert", base64(readFile(kData + "alice.pem"))},
         {see("Subject:\x1b[0m C = CZ, O = Orvel Test, CN = Jiří Novák"), see("Valid until:\x1b[0m 2126-10-29"),
          see("SHA-256 fingerprint:\x1b[0m 72:41:F7:55:37:46:FA:FC:1B:7F:3C:81:9A:87:AB:98:89:13:A0:BE:F4:44:E0:94:CF:"
              "D5:8D:ED:6F:1B:ED:B7"),
          see("Key usage:\x1b[0m digitalSignature, nonRepudiation"), keys(kKeyEnter), exits(0),
          printsFirst("DisplayCert -log ")}},
        {"CertificateDisplayShowsOtherBytes", {"-window", "DisplayCert", "-cert", base64("\x1b[2Jhello")},
         {see("Not a certificate (9 bytes):"), see("1b 5b 32 4a 68 65 6c 6c 6f"), keys(kKeyEscape), exits(0)}},
        {"ReinsertCardTakesCommandsApartFromOneStream",
         {"-window", "ReinsertCard", "-lang", "2", "-message", "Card check"},
         {see("Card check"), input("ReinsertCard removeReinsertCard ins"), see("> Remove the card from the reader."),
          input("ert"), see("> Insert the card into the reader."), input("ReinsertCard close"), exits(0),
          printsFirst("ReinsertCard -log ")}},
        {"AHiddenNoticeRunsToTheEndOfItsInput", notice,
         {see("Esc hides this notice."), keys(kKeyEscape), see("Notice hidden"), input("ReinsertCard insert"),
          endInput(), exits(2)}},
        {"CtrlCEndsAHiddenNotice", notice,
         {see("Esc hides this notice."), keys(kKeyEscape), see("Ctrl-C ends the application."), keys("\x03"),
          exits(128 + SIGINT), restored()}},
        {"SignIsNotChoosableBeforeTheEnd", signing(clauses(15)), choose("1", "> 2. Decline", "0"), true, {}, {}, 12, 60},
        {"SignIsChoosableAtTheEnd", signing(clauses(15)), choose("\x1b[F1", "> 1. Sign", "1"), true, {}, {}, 12, 60},
        {"SignIsChoosableAfterPagingDown", signing(clauses(15)),
         choose("\x1b[6~\x1b[6~\x1b[6~\x1b[6~\x1b[6~\x1b[6~1", "> 1. Sign", "1"), true, {}, {}, 12, 60},
        // Data that is no text: a hex dump under a warning, never blank.
        {"DataThatIsNoTextIsAWarnedHexDump", signing("Pay 100 \xe9UR"),
         choose(kKeyDown, "Warning: these data are not text.", "0"), true, {}, {}, 12, 60},
        {"OneByteThatIsNoText", signing("\xff"),
         {see("Warning: these data are not text."), see("00000000  ff"), see("|.|")}},
        // Redrawn at once on a resize, with no key pressed.
        {"WindowsFollowTheTerminalsSizeAndWrapAtWords",
         {"-window", "MessageBox", "-message", "aaaa bbbb cccc dddd eeee " + clauses(60)},
         {see("lines 1–"), resize(10, 20), see("Information"), see("aaaa bbbb cccc dddd\r"),
          see("\neeee Clause 1: the\r"), see("\nbuyer pays.\r"), keys("\x1b[F"), see("Clause 60: the buyer"),
          keys(kKeyEnter), exits(0)}},
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
        {"FileOpenNamesAFilterItCannotRead",
         {"-window", "FileOpen", "-lang", "2", "-message", "Open", "-fileFilter", "*.pdf"},
         {see("Filter not understood, showing all files: *.pdf"), keys(kKeyEscape), exits(2),
          logs("File filter not understood")}},
        {"FileSaveNamesAMissingFolderAndAMissingName",
         {"-window", "FileSave", "-lang", "0", "-message", "Save", "-fileFilter", "", "-filename", "/nonexistent/dir/x.pdf"},
         {see("x.pdf"), keys(kKeyEnter), see("Složka neexistuje: /nonexistent/dir"), keys("\x15\r"),
          see("Zadejte název souboru."), keys(kKeyEscape), exits(2)}},
        {"TerminalModeIsRestoredWhenASignalEndsIt", {"-window", "YesNoDialog", "-message", "Q"},
         {see("> 1. Yes"), rawMode(), sendSignal(SIGTERM), exits(128 + SIGTERM), restored()}},
    };
}

class GuiSession : public testing::TestWithParam<Session> {};

TEST_P(GuiSession, Runs)
{
    play(kGui, GetParam(), true);
}

INSTANTIATE_TEST_SUITE_P(GuiApp, GuiSession, testing::ValuesIn(sessions()), sessionName);

} // namespace
