// The library's own parts, each test on a fresh library: settings, language and
// the log; the exported symbols, exactly the interface; the certificate records
// and their list, read back by python3 too; and the Util helpers (Base64 beside
// the list's own codec, encodings through iconv, strings, whole files).
#include <OrvelGUIDialogs/Certificate.hpp>
#include <OrvelGUIDialogs/LibraryState.hpp>
#include <OrvelGUIDialogs/OrvelDialogs.hpp>
#include <OrvelGUIDialogs/Util.hpp>

#include "support/Host.hpp"

#include <gtest/gtest.h>

#include <unistd.h>

#include <climits>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <numeric>
#include <optional>
#include <set>
#include <sstream>
#include <stdexcept>
#include <tuple>

using OrvelDialogs::Util;
using OrvelTest::readFile;
using OrvelTest::writeFile;

namespace {

TEST(State, StartsEmpty)
{
    EXPECT_EQ(OrvelDialogs::GetLogBuffer(), nullptr);
    const char *log = "untouched";
    EXPECT_EQ(ORV_GetLog(&log), 0);
    EXPECT_EQ(log, nullptr);
    EXPECT_TRUE(languageIsSet());
    EXPECT_EQ(g_appLanguage, 0);
    EXPECT_FALSE(g_appPath.has_value() || g_orvelSignVersion.has_value());
    EXPECT_EQ(appLchr, nullptr);
}

TEST(State, SetLanguageAcceptsOnlyZeroToTwo)
{
    const int cases[][3] = {{2, 0, 2}, {3, 1, 2}, {-1, 1, 2}, {0, 0, 0}, {1, 0, 1}, {1 << 30, 1, 1}};
    for (const auto &[value, result, stored] : cases) {
        EXPECT_EQ(ORV_SetLanguage(value), result) << value;
        EXPECT_EQ(g_appLanguage, stored) << value;
    }
    // The namespace setter stores anything; outside 0..2 means "not set".
    for (int value : {-1, 3, 1000}) {
        OrvelDialogs::SetLanguage(value);
        EXPECT_EQ(g_appLanguage, value);
        EXPECT_FALSE(languageIsSet());
    }
}

TEST(State, TextSettingsStoreNoValueForNullOrInvalidText)
{
    const std::pair<const char *, bool> cases[] = {{"/Applications/Orvel.app", true}, {"", true}, {"\xC3\x28", false},
        {nullptr, false}, {"\xED\xA0\x80", false}, {"\xF4\x90\x80\x80", false}, {"\xC0\xAF", false}, {"Žluťoučký", true}};
    for (const auto &[text, stored] : cases) {
        EXPECT_EQ(ORV_SetAppPath(text), 0);
        EXPECT_EQ(ORV_SetOrvelSignVersion(text), 0);
        EXPECT_EQ(g_appPath.has_value(), stored);
        EXPECT_EQ(g_orvelSignVersion.has_value(), stored);
        EXPECT_TRUE(!stored || (*g_appPath == text && *g_orvelSignVersion == text));
    }
}

TEST(State, EveryLogEntryEndsWithOneAddedLineFeedAndIsReadInPlace)
{
    logMsg("abc");
    EXPECT_EQ(OrvelTest::logText(), "abc\n");
    logMsg("def\n");
    EXPECT_EQ(OrvelTest::logText(), "abc\ndef\n\n");
    logMsg("");
    const char *read = nullptr;
    EXPECT_EQ(ORV_GetLog(&read), 0);
    EXPECT_STREQ(read, "abc\ndef\n\n\n");
    // Neither copied nor emptied by reading.
    EXPECT_EQ(read, OrvelDialogs::GetLogBuffer());
    EXPECT_EQ(OrvelTest::logText(), read);
    EXPECT_EQ(ORV_GetLog(nullptr), 1);
}

TEST(State, LanguageFollowsTheLocaleWhenNotSet)
{
    const struct {
        const char *lcAll, *lcMessages, *lang;
        int expected;
    } cases[] = {
        {nullptr, nullptr, "cs_CZ.UTF-8", 0}, {nullptr, nullptr, "sk_SK", 1},       {nullptr, nullptr, "cs", 0},
        {nullptr, nullptr, "en_US", 2},       {nullptr, nullptr, "de", 2},          {nullptr, nullptr, "Cs_cz", 0},
        {nullptr, nullptr, "sk_SK.ISO-8859-2@euro", 1},                             {nullptr, nullptr, "C", 2},
        {nullptr, nullptr, nullptr, 2},       {"sk_SK", nullptr, "cs_CZ", 1},       {"", "cs_CZ.UTF-8", "en_US", 0},
        {"POSIX", "cs_CZ", "cs_CZ", 2},       {nullptr, nullptr, "csx_CZ", 2},
    };
    const auto put = [](const char *name, const char *value) { value ? setenv(name, value, 1) : unsetenv(name); };
    for (const auto &c : cases) {
        put("LC_ALL", c.lcAll);
        put("LC_MESSAGES", c.lcMessages);
        put("LANG", c.lang);
        OrvelDialogs::SetLanguage(-1);
        SetCurrentOSLanguage();
        EXPECT_EQ(g_appLanguage, c.expected) << (c.lcAll ? c.lcAll : "-") << " " << (c.lang ? c.lang : "-");
    }
    // SetCurrentOSLanguage overrides a set language too, and logs nothing.
    setenv("LC_ALL", "sk_SK", 1);
    ORV_SetLanguage(0);
    SetCurrentOSLanguage();
    EXPECT_EQ(g_appLanguage, 1);
    EXPECT_EQ(OrvelDialogs::GetLogBuffer(), nullptr);
}

// The names in a file or a command's output, "address type name" lines of nm
// cut to the name, '#' lines left out.
std::set<std::string> names(FILE *lines, size_t skip)
{
    std::set<std::string> names;
    char line[4096];
    while (lines != nullptr && fgets(line, sizeof line, lines) != nullptr)
        if (const std::string text = std::string(line).substr(0, std::strcspn(line, "\n")); text.size() > skip && text[0] != '#')
            names.insert(text.substr(skip));
    return names;
}

TEST(ExportedSymbols, AreExactlyTheIntendedInterface)
{
    FILE *nm = popen(("nm -D --defined-only -C '" + std::string(ORVEL_LIBRARY_PATH) + "'").c_str(), "r");
    const std::set<std::string> exported = names(nm, 19);
    pclose(nm);
    FILE *list = fopen(ORVEL_SOURCE_DIR "/tests/exported_symbols.txt", "r");
    ASSERT_NE(list, nullptr);
    const std::set<std::string> intended = names(list, 0);
    fclose(list);
    ASSERT_FALSE(exported.empty());
    for (const auto &name : exported)
        EXPECT_TRUE(intended.count(name)) << "exported but not intended: " << name;
    for (const auto &name : intended)
        EXPECT_TRUE(exported.count(name)) << "intended but not exported: " << name;
}

// What a host keeps for one record; record() points into it.
struct HostRecord {
    std::string data, subject, notAfter, renewDeadline;
    int days = 0;
    bool force = false, warn = false;

    ORV_Certificate record()
    {
        return {data.data(), static_cast<unsigned>(data.size()), subject.data(), notAfter.data(),
                renewDeadline.data(), days, force, warn};
    }
    Certificate certificate() { return Certificate().initWithCertificate(record()); }
};

std::vector<HostRecord> sampleRecords()
{
    std::string everyByte(256, '\0');
    std::iota(everyByte.begin(), everyByte.end(), '\0');
    return {
        {std::string("A\0B\0\0C", 6), "Jiří Novák", "2031-01-01 & <later>", "R&D <dept>", -5, true, false},
        {"", "", "x", "y", INT_MIN, false, true},
        {everyByte, "Ünïcødé ✓ 𝄞", "]]> '\"", "-", INT_MAX, true, true},
    };
}

void expectSame(const Certificate &c, const HostRecord &r)
{
    EXPECT_EQ(std::tuple(c.data(), c.subjectStr(), c.notAfterStr(), c.renewDeadlineStr()),
              std::tuple(r.data, std::optional(r.subject), std::optional(r.notAfter), std::optional(r.renewDeadline)));
    EXPECT_EQ(std::tuple(c.validDaysRemaning(), c.forceRenew(), c.warnRenew()), std::tuple(r.days, r.force, r.warn));
}

std::string listTextOf(std::vector<HostRecord> records)
{
    std::vector<Certificate> certificates;
    for (auto &r : records)
        certificates.push_back(r.certificate());
    std::string text;
    EXPECT_EQ(Certificate::encodeCertificateArrayToPropertyList(certificates, text), 0);
    return text;
}

std::string listTextOfXml(const std::string &root)
{
    return Certificate::dataToBase64String("<?xml version=\"1.0\"?><plist version=\"1.0\">" + root + "</plist>");
}

std::string hex(const std::string &bytes)
{
    std::string out;
    for (unsigned char c : bytes)
        out += {"0123456789abcdef"[c >> 4], "0123456789abcdef"[c & 15]};
    return out;
}

// python3's own base64 and plistlib read the list text (printing the XML, then
// each entry with strings and the decoded data in hex) or write a binary list,
// so neither direction is checked only against this library.
const char *const kPythonScript = R"(
import base64, plistlib, sys
if sys.argv[1] == "binary":
    certs = [{"data": "AP8=", "subjectStr": "Ji\u0159\u00ed", "notAfterStr": "a", "renewDeadlineStr": "b",
              "validDaysRemaining": -12, "forceRenew": True, "warnRenew": 0}]
    print(base64.b64encode(plistlib.dumps(certs, fmt=plistlib.FMT_BINARY)).decode(), end="")
else:
    xml = base64.b64decode(open(sys.argv[2], "rb").read(), validate=True)
    print(xml.decode(), end="")
    for i, d in enumerate(plistlib.loads(xml, fmt=plistlib.FMT_XML)):
        for key in sorted(d):
            v = base64.b64decode(d[key].encode(), validate=True) if key == "data" else d[key]
            print(i, key, type(v).__name__, v.hex() if key == "data" else v.encode().hex() if type(v) is str else v)
)";

std::string python(const std::string &mode, const std::string &listText = "")
{
    const OrvelTest::TempFolder dir;
    const std::string script = OrvelTest::writeFile(dir / "check.py", kPythonScript);
    const std::string command = "/usr/bin/python3 " + script + " " + mode + " " + dir / "list.b64" + " >" + dir / "out 2>&1";
    OrvelTest::writeFile(dir / "list.b64", listText);
    const int status = std::system(command.c_str());
    if (status != 0)
        throw std::runtime_error("python3 failed:\n" + OrvelTest::readFile(dir / "out"));
    return OrvelTest::readFile(dir / "out");
}

TEST(CertificateList, PythonReadsTheListTextAsTheRecordsInOrder)
{
    const auto records = sampleRecords();
    const std::string text = listTextOf(records);
    EXPECT_EQ(text.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/="),
              std::string::npos);

    std::ostringstream entries;
    for (size_t i = 0; i < records.size(); ++i) {
        const auto &r = records[i];
        entries << i << " data bytes " << hex(r.data) << "\n"
                << i << " forceRenew bool " << (r.force ? "True" : "False") << "\n"
                << i << " notAfterStr str " << hex(r.notAfter) << "\n"
                << i << " renewDeadlineStr str " << hex(r.renewDeadline) << "\n"
                << i << " subjectStr str " << hex(r.subject) << "\n"
                << i << " validDaysRemaining int " << r.days << "\n"
                << i << " warnRenew bool " << (r.warn ? "True" : "False") << "\n";
    }
    const std::string out = python("inspect", text);
    const size_t end = out.find("</plist>\n");
    ASSERT_NE(end, std::string::npos) << out;
    EXPECT_EQ(out.substr(end + 9), entries.str());
    const std::string xml = out.substr(0, end);
    EXPECT_EQ(xml.rfind("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC "
                        "\"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                        "<plist version=\"1.0\">\n<array>",
                        0),
              0u);
    EXPECT_NE(xml.find("<integer>-5</integer>"), std::string::npos);
    EXPECT_NE(xml.find("R&amp;D &lt;dept"), std::string::npos);
}

TEST(CertificateList, CharactersXmlCannotCarryBecomeReplacementCharacters)
{
    // A strict reader (plistlib) must take the list; tab, line feed and
    // carriage return stay, the rest becomes U+FFFD.
    const std::string fffd = "\xEF\xBF\xBD";
    const std::string text = listTextOf({{"z", "a\x01" "b\x1F\t\n\r", "c\xEF\xBF\xBE" "d\xEF\xBF\xBF", "\x7F\xEF\xBF\xBD", 1}});
    const std::string out = python("inspect", text);
    EXPECT_NE(out.find("subjectStr str " + hex("a" + fffd + "b" + fffd + "\t\n\n")), std::string::npos) << out;
    EXPECT_NE(out.find("notAfterStr str " + hex("c" + fffd + "d" + fffd)), std::string::npos) << out;
    EXPECT_NE(out.find("renewDeadlineStr str " + hex("\x7F" + fffd)), std::string::npos) << out;
}

TEST(CertificateList, DecodesBackToTheSameCertificatesEvenWhenWrapped)
{
    const auto records = sampleRecords();
    std::string text = listTextOf(records);
    for (size_t at = 76; at < text.size(); at += 77)
        text.insert(at, "\n");
    std::vector<Certificate> decoded;
    ASSERT_EQ(Certificate::decodeCertificateArrayFromPropertyList(text, decoded), 0);
    ASSERT_EQ(decoded.size(), records.size());
    for (size_t i = 0; i < records.size(); ++i)
        expectSame(decoded[i], records[i]);
}

TEST(CertificateList, ReadsABinaryPropertyListAndAppends)
{
    auto records = sampleRecords();
    std::vector<Certificate> out{records[0].certificate()};
    ASSERT_EQ(Certificate::decodeCertificateArrayFromPropertyList(python("binary"), out), 0);
    ASSERT_EQ(out.size(), 2u);
    expectSame(out[0], records[0]);
    expectSame(out[1], {std::string("\0\xFF", 2), "Jiří", "a", "b", -12, true, false});
}

TEST(CertificateList, MissingOrOddEntriesGiveDefaultsNumbersKeepTheirLow32Bits)
{
    const struct {
        const char *entries;
        int days;
        bool force, warn;
    } cases[] = {
        {"", 0, false, false},
        {"<key>validDaysRemaining</key><integer>4294967291</integer>", -5, false, false},
        {"<key>validDaysRemaining</key><integer>-2147483649</integer>", INT_MAX, false, false},
        {"<key>validDaysRemaining</key><real>12.9</real><key>forceRenew</key><integer>2</integer>", 12, true, false},
        {"<key>forceRenew</key><real>0.5</real><key>warnRenew</key><integer>0</integer>", 0, true, false},
        {"<key>validDaysRemaining</key><string>7</string><key>warnRenew</key><string>yes</string>", 0, false, false},
    };
    for (const auto &c : cases) {
        std::vector<Certificate> out;
        ASSERT_EQ(Certificate::decodeCertificateArrayFromPropertyList(
                      listTextOfXml(std::string("<array><dict>") + c.entries + "</dict></array>"), out),
                  0)
            << c.entries;
        const Certificate &d = out.at(0);
        EXPECT_EQ(d.data(), "");
        EXPECT_FALSE(d.subjectStr() || d.notAfterStr() || d.renewDeadlineStr());
        EXPECT_EQ(d.validDaysRemaning(), c.days) << c.entries;
        EXPECT_EQ(d.forceRenew(), c.force) << c.entries;
        EXPECT_EQ(d.warnRenew(), c.warn) << c.entries;
    }
}

TEST(CertificateList, RefusesWhatIsNoNonEmptyArrayOfDictionaries)
{
    auto records = sampleRecords();
    const std::string texts[] = {
        "",
        "not a property list",
        Certificate::dataToBase64String("hello"),
        "=" + listTextOf(records),
        listTextOfXml("<dict><key>subjectStr</key><string>a</string></dict>"),
        listTextOfXml("<array/>"),
        listTextOf({}),
        listTextOfXml("<array><dict/><string>b</string></array>"),
    };
    for (const auto &text : texts) {
        std::vector<Certificate> out{records[1].certificate()};
        EXPECT_EQ(Certificate::decodeCertificateArrayFromPropertyList(text, out), 7) << text;
        ASSERT_EQ(out.size(), 1u);
        expectSame(out[0], records[1]);
    }
}

TEST(CertificateRecord, InitCopiesAndKeepsInvalidUtf8AsAbsentWhichCannotBeEncoded)
{
    HostRecord r{std::string("\0\x01", 2), "\xC3\x28", "ok", "\xED\xA0\x80", 3, false, true};
    const Certificate c = r.certificate();
    r.data[1] = 'x';
    EXPECT_EQ(c.data(), std::string("\0\x01", 2));
    EXPECT_FALSE(c.subjectStr().has_value());
    EXPECT_EQ(c.notAfterStr(), "ok");
    EXPECT_FALSE(c.renewDeadlineStr().has_value());

    std::string text = "unchanged";
    EXPECT_THROW(Certificate::encodeCertificateArrayToPropertyList({c}, text), std::runtime_error);
    EXPECT_EQ(text, "unchanged");
    std::vector<Certificate> decoded;
    ASSERT_EQ(Certificate::decodeCertificateArrayFromPropertyList(listTextOfXml("<array><dict/></array>"), decoded), 0);
    EXPECT_THROW(decoded[0].encodeCertificateToDictionary(), std::runtime_error);
}

TEST(CertificateRecord, InitRefusesNullPointersAndLeavesTheObjectAsItWas)
{
    HostRecord r = sampleRecords()[0];
    ORV_Certificate broken[4] = {r.record(), r.record(), r.record(), r.record()};
    broken[0].subjectStr = nullptr;
    broken[1].notAfterStr = nullptr;
    broken[2].renewDeadlineStr = nullptr;
    broken[3].data = nullptr;
    for (const auto &record : broken) {
        Certificate c = r.certificate();
        EXPECT_THROW(c.initWithCertificate(record), std::runtime_error);
        expectSame(c, r);
    }
    broken[3].dataLength = 0;
    EXPECT_EQ(Certificate().initWithCertificate(broken[3]).data(), "");
}

std::string encode(const std::string &bytes)
{
    return Util::Base64Encode(reinterpret_cast<const unsigned char *>(bytes.data()),
                              static_cast<unsigned int>(bytes.size()));
}

TEST(UtilBase64, EncodesWithPaddingFourBytesPerStartedGroup)
{
    const std::pair<std::string, std::string> cases[] = {{"A", "QQ=="},    {"AB", "QUI="},         {"ABC", "QUJD"},
                                                         {"ABCD", "QUJDRA=="}, {"\xFF\xFE", "//4="}, {"", ""},
                                                         {std::string("\0\0\0", 3), "AAAA"}};
    for (const auto &[bytes, text] : cases)
        EXPECT_EQ(encode(bytes), text) << bytes;
    EXPECT_EQ(Util::Base64Encode(nullptr, 0), ""); // the pointer is never read
    for (unsigned n : {1u, 2u, 3u, 999u, 1000u, 1001u})
        EXPECT_EQ(encode(std::string(n, 'x')).size(), 4 * ((n + 2) / 3)) << n;
}

// Util's decoder stops at the first byte outside the alphabet and decodes an
// open group; the certificate list's skips such bytes, stops at padding and
// drops an open group.
TEST(Base64, TheDecodersTreatForeignBytesPaddingAndOpenGroupsApart)
{
    const std::string zeros("\0\0\0", 3);
    const struct {
        std::string text, util, certificate;
    } cases[] = {
        {"QUJD", "ABC", "ABC"},      {"QUI=", "AB", "AB"},          {"QUI", "AB", ""},           {"QQ==", "A", "A"},
        {"QQ", "A", ""},             {"Q", "", ""},                 {"QUJDRA", "ABCD", "ABC"},   {"QUJDR", "ABC", "ABC"},
        {"QUJD\nREVG", "ABC", "ABCDEF"}, {"QUJD REVG", "ABC", "ABCDEF"}, {"=QUJD", "", ""},      {"QUJD=REVG", "ABC", "ABC"},
        {"QUJ-", "AB", ""},          {"////", "\xFF\xFF\xFF", "\xFF\xFF\xFF"}, {"", "", ""},     {"QUJD_REVG", "ABC", "ABCDEF"},
        {"AAAA", zeros, zeros},      {"QU-JD", "A", "ABC"},         {"QU=I", "A", "A"},          {"Q\tU\rJ_D\x01", "", "ABC"},
        {"QU\xC3\xA1JD", "A", "ABC"},
        // One value before "=": one byte, the value in its upper six bits and
        // zeros below ('Q' is 16, 'R' 17).
        {"Q=", "", "\x40"},          {"QUJDR=", "ABC", "ABC\x44"},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(Util::Base64Decode(c.text), c.util) << c.text;
        EXPECT_EQ(Certificate::b64StringToData(c.text), c.certificate) << c.text;
    }
}

TEST(Base64, BothRoundTripEveryByteValueAndEncodeAlike)
{
    std::string bytes(256, '\0');
    std::iota(bytes.begin(), bytes.end(), '\0');
    for (size_t cut = 0; cut < 4; ++cut) {
        const std::string part = bytes.substr(cut), text = encode(part);
        EXPECT_EQ(Util::Base64Decode(text), part);
        EXPECT_EQ(Certificate::dataToBase64String(part), text);
        EXPECT_EQ(Certificate::b64StringToData(text), part);
    }
    EXPECT_EQ(Certificate::dataToBase64String(""), "");
}

// Long texts take the wide (vector) paths; each short piece of them takes the
// plain one, which the cases above pin down. Both must agree everywhere.
TEST(UtilBase64, LongTextsAgreeWithTheirShortPieces)
{
    std::string bytes;
    for (int i = 0; i < 3000; ++i)
        bytes.push_back(static_cast<char>(i * 37 + i / 256));
    const std::string text = encode(bytes);
    for (size_t at = 0; at + 24 <= bytes.size(); at += 24)
        ASSERT_EQ(text.substr(at / 3 * 4, 32), encode(bytes.substr(at, 24))) << "bytes from " << at;
    EXPECT_EQ(Util::Base64Decode(text), bytes);
    // A byte outside the alphabet anywhere ends decoding right there.
    for (const size_t stop : {size_t{0}, size_t{5}, size_t{31}, size_t{64}, size_t{100}, size_t{1001}, text.size() - 1})
        for (const char bad : {'=', '\n', '-', '\x80'}) {
            std::string broken = text;
            broken[stop] = bad;
            ASSERT_EQ(Util::Base64Decode(broken), Util::Base64Decode(text.substr(0, stop))) << stop << " " << bad;
        }
}

TEST(UtilBase64, IsBase64AcceptsExactlyTheAlphabetInThePosixLocale)
{
    std::setlocale(LC_ALL, "C");
    const std::string alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (int c = 0; c < 256; ++c)
        EXPECT_EQ(Util::is_base64(static_cast<unsigned char>(c)), alphabet.find(static_cast<char>(c)) != std::string::npos && c != 0)
            << c;
}

TEST(UtilBase64, ByteAboveAsciiThatTheLocaleCallsAlphanumericJoinsAGroupWithValue255)
{
    // In ISO-8859-1, 0xE1 is a letter: it passes is_base64 and counts as a
    // character outside the alphabet (value 255).
    if (std::setlocale(LC_CTYPE, "de_DE.ISO-8859-1") == nullptr && std::setlocale(LC_CTYPE, "en_US.ISO-8859-1") == nullptr)
        GTEST_SKIP() << "no ISO-8859-1 locale on this machine";
    EXPECT_TRUE(Util::is_base64(0xE1));
    // a=16 ('Q'), b=255: first byte (4*16 | (255>>4)&3) = 67 ('C').
    EXPECT_EQ(Util::Base64Decode("Q\xE1"), "C");
    std::setlocale(LC_CTYPE, "C");
}

// "Žluťoučký kůň" in each code page under test.
const std::string kUtf8 = "\xC5\xBDlu\xC5\xA5ou\xC4\x8Dk\xC3\xBD k\xC5\xAF\xC5\x88";
const std::string kLatin2 = "\xAElu\xBBou\xE8k\xFD k\xF9\xF2", kCp1250 = "\x8Elu\x9Dou\xE8k\xFD k\xF9\xF2";
const std::wstring kWide = L"\u017Dlu\u0165ou\u010Dk\u00FD k\u016F\u0148";
const char *kUnknown = "NO-SUCH-CODE-PAGE";

TEST(UtilTextEncoding, DecodesWholeTextsOrNothing)
{
    const struct { std::string bytes; const char *codePage; std::wstring expected; } cases[] = {
        {kUtf8, "UTF-8", kWide}, {kLatin2, "ISO-8859-2", kWide}, {kCp1250, "CP1250", kWide}, {"plain", "ASCII", L"plain"},
        {std::string("A\0B\0", 4), "UTF-16LE", L"AB"}, {std::string("ab\0cd", 5), "UTF-8", L"ab"},
        {"\xC3\x28", "UTF-8", L""}, {"ab\xC5", "UTF-8", L""}, {"a\x81", "CP1250", L""}, {"a\x80", "ASCII", L""},
        {"abc", kUnknown, L""}, {"abc", nullptr, L""}, {"", "UTF-8", L""}, {std::string("\0ab", 3), "UTF-8", L""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Util::MultiByte2WideChar(c.bytes, c.codePage), c.expected) << c.bytes << " from " << c.codePage;
}

TEST(UtilTextEncoding, PointerFormConvertsExactlyAnExplicitLength)
{
    EXPECT_EQ(Util::MultiByte2WideChar(nullptr, 3, "UTF-8"), L"");
    EXPECT_EQ(Util::MultiByte2WideChar("abcdef", 0, "UTF-8"), L"abcdef");
    EXPECT_EQ(Util::MultiByte2WideChar("abcdef", 3, "UTF-8"), L"abc");
    EXPECT_EQ(Util::MultiByte2WideChar("\xC5\xBD", 1, "UTF-8"), L"") << "a length that cuts a character";
    // The byte after the length is never read: the sanitizer build catches it.
    const char unterminated[3] = {'x', 'y', 'z'};
    EXPECT_EQ(Util::MultiByte2WideChar(unterminated, 3, "UTF-8"), L"xyz");
}

TEST(UtilTextEncoding, EncodesRepresentableTextsOrNothing)
{
    const struct { std::wstring text; const char *codePage; std::string expected; } cases[] = {
        {kWide, "UTF-8", kUtf8}, {kWide, "ISO-8859-2", kLatin2}, {kWide, "CP1250", kCp1250}, {L"\u20AC", "CP1250", "\x80"},
        {L"\u20AC", "ISO-8859-2", ""}, {L"plain\u017D", "ASCII", ""}, {L"\U0001F600", "UTF-8", "\xF0\x9F\x98\x80"},
        {std::wstring(1, wchar_t(0xD800)), "UTF-8", ""}, {L"A", "UTF-16LE", "A"}, {std::wstring(L"ab\0cd", 5), "UTF-8", "ab"},
        {L"abc", kUnknown, ""}, {L"abc", nullptr, ""}, {L"", "UTF-8", ""},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(Util::WideChar2String(c.text, c.codePage), c.expected) << c.codePage;
        EXPECT_EQ(Util::WideChar2String(c.text.c_str(), c.codePage), c.expected) << c.codePage;
    }
    EXPECT_EQ(Util::WideChar2String(static_cast<const wchar_t *>(nullptr), "UTF-8"), "");
}

TEST(UtilTextEncoding, FlagChoosesAsciiOrUtf8)
{
    EXPECT_EQ(Util::WideChar2String(L"\u017Dl", false), "\xC5\xBDl");
    EXPECT_EQ(Util::WideChar2String(std::wstring(L"ascii"), true), "ascii");
    for (const wchar_t *text : {L"\u017Dab", L"a\u017Db", L"ab\u017D"})
        EXPECT_EQ(Util::WideChar2String(std::wstring(text), true) + Util::WideChar2String(text, true), "");
}

TEST(UtilTextEncoding, BridgesCodePagesThroughUtf8)
{
    EXPECT_EQ(Util::FromCodepage2UTF8(kLatin2, "ISO-8859-2"), kUtf8);
    EXPECT_EQ(Util::FromCodepage2UTF8(kCp1250, "CP1250"), kUtf8);
    EXPECT_EQ(Util::FromUTF82Codepage(kUtf8, "ISO-8859-2"), kLatin2);
    EXPECT_EQ(Util::FromUTF82Codepage(kUtf8, "CP1250"), kCp1250);
    for (const char *codePage : {"UTF-8", "ISO-8859-2", "CP1250", "ASCII", kUnknown})
        EXPECT_EQ(Util::FromUTF82Codepage("\xC3\x28", codePage), "") << codePage;
    EXPECT_EQ(Util::FromUTF82Codepage("\xE2\x82\xAC", "ISO-8859-2") + Util::FromCodepage2UTF8("a\x81", "CP1250"), "");
    EXPECT_EQ(Util::FromUTF82Codepage("abc", kUnknown) + Util::FromCodepage2UTF8("abc", kUnknown), "");
}

TEST(UtilTextEncoding, FourUtf8BytesPerCharacterFitTheOutputArea)
{
    std::string emoji;
    for (int i = 0; i < 25000; ++i)
        emoji += "\xF0\x9F\x98\x80";
    EXPECT_EQ(Util::WideChar2String(std::wstring(25000, wchar_t(0x1F600)), false), emoji);
}

// ToUpper changes only ASCII letters; Unescape resolves each pair once;
// Apostrophies quotes without escaping; a folder path ends at the last
// backslash.
TEST(UtilStrings, TextsInTextsOut)
{
    using Function = std::string (*)(const std::string &);
    const Function upper = [](const std::string &t) { return Util::ToUpper(t); };
    const Function unescape = [](const std::string &t) { return Util::Unescape(t); };
    const Function quote = [](const std::string &t) { return Util::Apostrophies(t); };
    const Function folder = [](const std::string &t) { return Util::GetFolderPath(t.c_str()); };
    const std::tuple<Function, std::string, std::string> cases[] = {
        {upper, "abc-xyz_09", "ABC-XYZ_09"}, {upper, "\xC5\xA1\xC3\xA1`{", "\xC5\xA1\xC3\xA1`{"},
        {upper, std::string("a\0b", 3), std::string("A\0B", 3)}, {unescape, "a\\nb", "a\nb"}, {unescape, "a\\tb", "a\tb"},
        {unescape, "a\\\"b", "a\"b"}, {unescape, "a\\rb", "ab"}, {unescape, "\\\\n", "\\n"}, {unescape, "ab\\", "ab\\"},
        {unescape, "\\\\\\", "\\\\"}, {unescape, "\\x41\\101", "4101"}, {unescape, std::string("\\\0z", 3), "z"},
        {unescape, "", ""}, {quote, "", "\"\""}, {quote, "say \"hi\" it's", "\"say \"hi\" it's\""},
        {folder, "C:\\dir\\file.txt", "C:\\dir\\"}, {folder, "/usr/local/file", ""}, {folder, "C:\\dir\\", "C:\\dir\\"},
        {folder, "a\\b/c", "a\\"}, {folder, "", ""},
    };
    for (const auto &[function, input, expected] : cases)
        EXPECT_EQ(function(input), expected) << input;
    EXPECT_EQ(Util::GetFolderPath(static_cast<const char *>(nullptr)), "");
    std::wstring czech = L"C:\\P\u0159\u00EDli\u0161\\\u017Dlu\u0165ou\u010Dk\u00FD.txt", plain = L"/home/\u017D";
    std::wstring surrogate = std::wstring(1, wchar_t(0xD800)) + L"\\x"; // no valid Unicode: conversion fails
    EXPECT_EQ(Util::GetFolderPath(czech.data()), "C:\\P\xC5\x99\xC3\xADli\xC5\xA1\\");
    EXPECT_EQ(Util::GetFolderPath(plain.data()) + Util::GetFolderPath(surrogate.data()), "");
    EXPECT_EQ(Util::GetFolderPath(static_cast<wchar_t *>(nullptr)), "");
}

TEST(UtilStrings, SplitAppendsNonEmptyWordsAfterEarlierEntries)
{
    const struct { std::string text; char delimiter; std::vector<std::string> expected; } cases[] = {
        {"  ab   cd ", ' ', {"old", "ab", "cd"}}, {"a\tb\nc d", ' ', {"old", "a\tb\nc", "d"}}, {"   ", ' ', {"old"}},
        {"", ' ', {"old"}}, {std::string("ab cd\0ef", 8), ' ', {"old", "ab", "cd"}}, {";;x;;y z;", ';', {"old", "x", "y z"}},
    };
    for (const auto &c : cases) {
        std::vector<std::string> output = {"old"};
        Util::SplitString(c.text, c.delimiter, output);
        EXPECT_EQ(output, c.expected) << c.text;
    }
}

const std::string kTenBytes("\0\1\2\3\4\5\6\7\10\11", 10);

class UtilFiles : public ::testing::Test {
protected:
    std::string path(const std::string &name) const { return dir_ / name; }
    const OrvelTest::TempFolder dir_;
};

TEST_F(UtilFiles, SaveWritesTheContentExactlyOrFails)
{
    for (const std::string &content : {std::string(), std::string("a\0b\r\n", 5), kTenBytes}) {
        writeFile(path("f"), "older and longer content");
        EXPECT_TRUE(Util::SaveToFile(path("f"), content));
        EXPECT_EQ(readFile(path("f")), content);
    }
    for (const std::string &bad : {path("missing/f"), std::string(), dir_.path})
        EXPECT_FALSE(Util::SaveToFile(bad, "x")) << bad;
    EXPECT_FALSE(std::filesystem::exists(path("missing")));
}

TEST_F(UtilFiles, LoadJoinsTheWordsOrEmptiesTheOutput)
{
    const struct { std::string content, words; } cases[] = {
        {"abc def\nghi\n", "abcdefghi"}, {" \t\r\n\v\f", ""}, {"", ""}, {"\xC5\xBD\xC5\xA5 x\r\ny", "\xC5\xBD\xC5\xA5xy"},
    };
    for (const auto &c : cases) {
        writeFile(path("f"), c.content);
        std::string output = "stale";
        EXPECT_TRUE(Util::LoadFile(path("f"), output));
        EXPECT_EQ(output, c.words) << c.content;
    }
    for (const std::string &missing : {path("none"), path("none/f"), std::string()}) {
        std::string output = "stale";
        EXPECT_FALSE(Util::LoadFile(missing, output));
        EXPECT_EQ(output, "");
    }
}

TEST_F(UtilFiles, ShrinkKeepsTheLastBytes)
{
    const struct { unsigned long size; std::string left; } cases[] = {
        {4, kTenBytes.substr(6)}, {0, ""}, {9, kTenBytes.substr(1)}, {10, kTenBytes}, {11, kTenBytes}, {~0ul, kTenBytes},
    };
    for (const auto &c : cases) {
        writeFile(path("f"), kTenBytes);
        EXPECT_TRUE(Util::ShrinkBinaryFile(path("f"), c.size)) << c.size;
        EXPECT_EQ(readFile(path("f")), c.left) << c.size;
    }
    writeFile(path("empty"), "");
    EXPECT_TRUE(Util::ShrinkBinaryFile(path("empty"), 0));
}

TEST_F(UtilFiles, FailedShrinkTouchesNothing)
{
    EXPECT_FALSE(Util::ShrinkBinaryFile("", 1));
    EXPECT_FALSE(Util::ShrinkBinaryFile(path("none"), 1));
    EXPECT_FALSE(std::filesystem::exists(path("none")));
    // A directory may open for reading but never yields bytes.
    writeFile(path("inside"), kTenBytes);
    EXPECT_FALSE(Util::ShrinkBinaryFile(dir_.path, 1));
    EXPECT_EQ(readFile(path("inside")), kTenBytes);
}

TEST_F(UtilFiles, ShrinkThatCannotRewriteLeavesTheFileWhole)
{
    writeFile(path("f"), kTenBytes);
    std::filesystem::permissions(path("f"), std::filesystem::perms::owner_read);
    if (access(path("f").c_str(), W_OK) == 0)
        GTEST_SKIP() << "this user may write a read-only file";
    EXPECT_FALSE(Util::ShrinkBinaryFile(path("f"), 4));
    EXPECT_EQ(readFile(path("f")), kTenBytes);
}

} // namespace
