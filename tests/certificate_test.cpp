#include <OrvelGUIDialogs/Certificate.hpp>

#include "support/Host.hpp"

#include <gtest/gtest.h>

#include <climits>
#include <cstdlib>
#include <numeric>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <tuple>
#include <vector>

namespace {

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

} // namespace
