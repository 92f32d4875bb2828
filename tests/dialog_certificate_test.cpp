// Certificate selection and signature confirmation against the fake GUI.
#include <OrvelGUIDialogs/Certificate.hpp>
#include <OrvelGUIDialogs/LibraryState.hpp>
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "support/DialogFixture.hpp"

#include <cstring>
#include <functional>

using OrvelTest::replyWithLog;
using Args = std::vector<std::string>;

namespace {

using OrvelTest::Records;

class CertificateDialogs : public OrvelTest::DialogTest {
protected:
    void SetUp() override
    {
        DialogTest::SetUp();
        ORV_SetOrvelSignVersion("2.1");
    }

    long select(Records &records, unsigned int &selected)
    {
        return ORV_SelectCertificate(records.records.data(), records.count(), &selected);
    }
    long confirm(Records &records, unsigned int &selected, bool &confirmed, const char *data = "ABC",
                 const char *rtf = nullptr)
    {
        return ORV_ConfirmSignature(records.records.data(), records.count(), &selected, data, rtf, "SHA-256", "0A1B",
                                    &confirmed);
    }
};

TEST_F(CertificateDialogs, SpoiltRecordsAreRefusedBeforeAnythingStarts)
{
    using Mutation = std::function<void(Records &, unsigned int &)>;
    const std::pair<const char *, Mutation> cases[] = {
        {"preselected equals count", [](Records &, unsigned int &s) { s = 3; }},
        {"second record without data", [](Records &r, unsigned int &) { r.records[1].data = nullptr; }},
        {"second record of length 0", [](Records &r, unsigned int &) { r.records[1].dataLength = 0; }},
        {"third record without end of validity", [](Records &r, unsigned int &) { r.records[2].notAfterStr = nullptr; }},
        {"first record without subject", [](Records &r, unsigned int &) { r.records[0].subjectStr = nullptr; }},
    };
    for (const auto &[what, mutate] : cases) {
        Records records(3);
        unsigned int selected = 0;
        bool confirmed = true;
        mutate(records, selected);
        const unsigned int before = selected;
        EXPECT_EQ(select(records, selected), 1) << what;
        EXPECT_EQ(confirm(records, selected, confirmed), 1) << what;
        EXPECT_EQ(selected, before);
        EXPECT_TRUE(confirmed);
    }
    EXPECT_FALSE(gui.ran());
    EXPECT_EQ(newLog(), "");
}

TEST_F(CertificateDialogs, SelectionPassesTheListInRecordOrder)
{
    gui.reply(replyWithLog("CertificateSelect -selectedCert 0"));
    Records records(2);
    unsigned int selected = 1;
    ORV_SetLanguage(0);
    ASSERT_EQ(select(records, selected), 0);
    const Args arguments = gui.arguments();
    ASSERT_EQ(arguments.size(), 8u);
    EXPECT_EQ(Args(arguments.begin(), arguments.begin() + 7),
              (Args{"-window", "CertificateSelect", "-lang", "0", "-selectedCert", "1", "-certs"}));
    std::vector<Certificate> decoded;
    ASSERT_EQ(Certificate::decodeCertificateArrayFromPropertyList(arguments[7], decoded), 0);
    ASSERT_EQ(decoded.size(), 2u);
    for (size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(decoded[i].data(), records.data[i]);
        EXPECT_EQ(decoded[i].subjectStr(), records.subjects[i]);
        EXPECT_EQ(decoded[i].validDaysRemaning(), 30 - static_cast<int>(i));
        EXPECT_EQ(decoded[i].forceRenew(), i == 1);
    }
}

TEST_F(CertificateDialogs, SelectionReadsTheChosenIndex)
{
    const char *kIndexEntry = "Index vybraného certifikátu neodpovídá povolenému obsahu\n\n";
    const char *kFormatEntry = "Neočekávaný formát odpovědi z okna SelectCertificate\n\n";
    const struct {
        std::string reply;
        int exit;
        long result;
        unsigned int selected;
        const char *entry;
    } cases[] = {
        {replyWithLog("CertificateSelect -selectedCert 2"), 0, 0, 2, ""},
        {replyWithLog("CertificateSelect -selectedCert 3"), 0, 7, 1, kIndexEntry},
        {replyWithLog("CertificateSelect -selectedCert -1"), 0, 7, 1, kIndexEntry},
        {replyWithLog("CertificateSelect -selectedCert 18446744073709551615"), 0, 7, 1, kIndexEntry},
        {replyWithLog("CertificateSelect -selectedCert abc"), 0, 0, 0, ""},
        {replyWithLog("CertificateSelect -selectedCert 2x"), 0, 0, 2, ""},
        {"CertificateSelect -selectedCert 2", 0, 0, 1, "Odpověď z GUI neobsahovala log.\n\n"},
        {replyWithLog("CertificateSelect  -selectedCert 1"), 0, 7, 1, kFormatEntry},
        {replyWithLog("CertificateSelect"), 0, 7, 1, kFormatEntry},
        {replyWithLog("CertificateSelect -selectedCert 2"), 2, 2, 1, ""},
        {replyWithLog("CertificateSelect -selectedCert 2"), 12, 7, 1, "Unknown error code number occured:12\n\n"},
    };
    Records records(3);
    for (const auto &c : cases) {
        gui.reply(c.reply).exitStatus(c.exit);
        unsigned int selected = 1;
        EXPECT_EQ(select(records, selected), c.result) << c.reply;
        EXPECT_EQ(selected, c.selected) << c.reply;
        const std::string log = newLog();
        EXPECT_NE(log.find(c.entry), std::string::npos) << c.reply << "\n" << log;
    }
}

TEST_F(CertificateDialogs, ConfirmationPassesSixteenOrEighteenStrings)
{
    gui.reply(replyWithLog("SignatureConfirm -result 1 -selectedCert 0"));
    Records records(2);
    ORV_SetLanguage(1);
    const Args common = {"-window", "SignatureConfirm", "-lang", "1", "-version", "2.1", "-data"};
    const struct {
        const char *data;
        const char *rtf;
        Args expectedHead;
    } cases[] = {
        {"ABC", nullptr, {"QUJD", "-hashAlg", "SHA-256", "-hashVal", "0A1B", "-selectedCert", "0", "-certs"}},
        {"ABC", "XY", {"QUJD", "-hashAlg", "SHA-256", "-hashVal", "0A1B", "-selectedCert", "0", "-rtf", "WFk=", "-certs"}},
        {"", nullptr, {"", "-hashAlg", "SHA-256", "-hashVal", "0A1B", "-selectedCert", "0", "-certs"}},
        // Data that is not UTF-8 is sent as the empty value.
        {"\xFF\xFE", "\xC3\x28", {"", "-hashAlg", "SHA-256", "-hashVal", "0A1B", "-selectedCert", "0", "-rtf", "", "-certs"}},
    };
    for (const auto &c : cases) {
        unsigned int selected = 0;
        bool confirmed = false;
        ASSERT_EQ(confirm(records, selected, confirmed, c.data, c.rtf), 0);
        Args expected = common;
        expected.insert(expected.end(), c.expectedHead.begin(), c.expectedHead.end());
        Args arguments = gui.arguments();
        ASSERT_EQ(arguments.size(), expected.size() + 1);
        arguments.pop_back();
        EXPECT_EQ(arguments, expected);
    }
}

TEST_F(CertificateDialogs, ConfirmationReadsAnswerThenIndex)
{
    const char *kFormatEntry = "Neočekávaný formát odpovědi z okna ConfirmSignature\n\n";
    const struct {
        std::string reply;
        int exit;
        long result;
        int confirmed;         // -1: untouched
        unsigned int selected; // 7: untouched
        const char *entry;
    } cases[] = {
        {replyWithLog("SignatureConfirm -result 1 -selectedCert 1"), 0, 0, 1, 1, ""},
        {replyWithLog("SignatureConfirm -result 0 -selectedCert 0"), 0, 0, 0, 0, ""},
        {replyWithLog("SignatureConfirm -result 1 -selectedCert 5"), 0, 7, 1, 7,
         "Index vybraného certifikátu neodpovídá povolenému obsahu\n\n"},
        {replyWithLog("SignatureConfirm -selectedCert 1 -result 1"), 0, 7, -1, 7, kFormatEntry},
        {replyWithLog("SignatureConfirm -result 1 -index 1"), 0, 7, 1, 7, kFormatEntry},
        {replyWithLog("SignatureConfirm -result yes -selectedCert 0"), 0, 0, 0, 0, ""},
        {replyWithLog("SignatureConfirm -result -3 -selectedCert 1"), 0, 0, 1, 1, ""},
        {"SignatureConfirm -result 1 -selectedCert 1", 0, 0, -1, 7, "Odpověď z GUI neobsahovala log.\n\n"},
        // The status is taken as it is, 9 and above included, with no entry.
        {replyWithLog("SignatureConfirm -result 1 -selectedCert 1"), 12, 12, -1, 7, ""},
        {replyWithLog("SignatureConfirm -result 1 -selectedCert 1"), 3, 3, -1, 7, ""},
        {"SignatureConfirm -result 1 -selectedCert", 0, 0, -1, 7, "Odpověď z GUI neobsahovala log"},
        {"SignatureConfirm -result 1 -log " + OrvelTest::base64("x"), 0, 7, 1, 7, kFormatEntry},
    };
    Records records(2);
    for (const auto &c : cases) {
        gui.reply(c.reply).exitStatus(c.exit);
        for (bool initial : {false, true}) {
            unsigned int selected = 1;
            bool confirmed = initial;
            EXPECT_EQ(confirm(records, selected, confirmed), c.result) << c.reply;
            EXPECT_EQ(confirmed, c.confirmed == -1 ? initial : c.confirmed == 1) << c.reply;
            EXPECT_EQ(selected, c.selected == 7 ? 1u : c.selected) << c.reply;
            const std::string log = newLog();
            EXPECT_EQ(log.rfind("Input parameters checked\nCreating certificates array\n", 0), 0u);
            EXPECT_NE(log.find(c.entry), std::string::npos) << c.reply << "\n" << log;
            EXPECT_EQ(log.find("Unknown error"), std::string::npos);
        }
    }
}

} // namespace
