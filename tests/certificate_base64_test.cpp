#include <OrvelGUIDialogs/Certificate.hpp>
#include <OrvelGUIDialogs/Util.hpp>

#include <gtest/gtest.h>

#include <string>

namespace {

struct Case {
    std::string input;
    std::string expected;
};

TEST(CertificateBase64, EncodesWithPaddingOnOneLine)
{
    const Case cases[] = {
        {"A", "QQ=="}, {"AB", "QUI="}, {"ABC", "QUJD"}, {"ABCD", "QUJDRA=="}, {"\xFF\xFE", "//4="}, {"", ""},
        {std::string("\0\0\0\0", 4), "AAAAAA=="},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Certificate::dataToBase64String(c.input), c.expected) << c.input;
}

TEST(CertificateBase64, DecodeSkipsForeignBytesStopsAtPaddingAndDropsAnOpenGroup)
{
    const Case cases[] = {
        {"QUJD", "ABC"},        {"QUI=", "AB"},          {"QUI", ""},          {"QQ==", "A"},
        {"QUJDRA", "ABC"},      {"QUJD\nREVG", "ABCDEF"}, {"QUJD REVG", "ABCDEF"}, {"QU-JD", "ABC"},
        {"=QUJD", ""},          {"QUJD=REVG", "ABC"},    {"QU=I", "A"},        {"////", "\xFF\xFF\xFF"},
        {"", ""},               {"Q\tU\rJ_D\x01", "ABC"}, {"QU\xC3\xA1JD", "ABC"}, {"AAAA", std::string("\0\0\0", 3)},
        // One value before "=": one byte, the value in its upper six bits
        // and zeros below ('Q' is 16, 'R' 17).
        {"Q=", "\x40"},         {"QUJDR=", "ABC\x44"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Certificate::b64StringToData(c.input), c.expected) << c.input;
}

TEST(CertificateBase64, RoundTripsEveryByteValueAndMatchesUtilsEncoder)
{
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        bytes.push_back(static_cast<char>(i));
    for (size_t cut = 0; cut < 3; ++cut) {
        const std::string part = bytes.substr(cut);
        const std::string text = Certificate::dataToBase64String(part);
        EXPECT_EQ(text, OrvelDialogs::Util::Base64Encode(reinterpret_cast<const unsigned char *>(part.data()),
                                                         static_cast<unsigned>(part.size())));
        EXPECT_EQ(Certificate::b64StringToData(text), part);
    }
}

TEST(CertificateBase64, DecoderIsNotUtilsDecoder)
{
    // Util stops at the line break and decodes the unpadded group; this one
    // does neither.
    EXPECT_EQ(OrvelDialogs::Util::Base64Decode("QUI"), "AB");
    EXPECT_EQ(Certificate::b64StringToData("QUI"), "");
    EXPECT_EQ(OrvelDialogs::Util::Base64Decode("QU\nJD"), "A");
    EXPECT_EQ(Certificate::b64StringToData("QU\nJD"), "ABC");
}

} // namespace
