// The two Base64 codecs: Util's, which stops at the first byte outside the
// alphabet, and the certificate list's, which skips such bytes. They encode
// alike.
#include <OrvelGUIDialogs/Certificate.hpp>
#include <OrvelGUIDialogs/Util.hpp>

#include <gtest/gtest.h>

#include <clocale>
#include <string>

using OrvelDialogs::Util;

namespace {

std::string encode(const std::string &bytes)
{
    return Util::Base64Encode(reinterpret_cast<const unsigned char *>(bytes.data()),
                              static_cast<unsigned int>(bytes.size()));
}

struct Case {
    std::string input;
    std::string expected;
};

TEST(UtilBase64, EncodesWithPaddingAndNothingElse)
{
    const Case cases[] = {
        {"A", "QQ=="}, {"AB", "QUI="}, {"ABC", "QUJD"}, {"ABCD", "QUJDRA=="},
        {"\xFF\xFE", "//4="}, {"", ""}, {std::string("\0\0\0", 3), "AAAA"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(encode(c.input), c.expected) << c.input;
}

TEST(UtilBase64, EncodedLengthIsFourPerStartedGroup)
{
    EXPECT_EQ(Util::Base64Encode(nullptr, 0), ""); // the pointer is never read
    for (unsigned n : {1u, 2u, 3u, 999u, 1000u, 1001u})
        EXPECT_EQ(encode(std::string(n, 'x')).size(), 4 * ((n + 2) / 3)) << n;
}

TEST(UtilBase64, DecodeStopsAtTheFirstCharacterOutsideTheAlphabet)
{
    const Case cases[] = {
        {"QUJD", "ABC"},        {"QUI=", "AB"},         {"QUI", "AB"},        {"QQ==", "A"},
        {"QQ", "A"},            {"Q", ""},              {"QUJDRA", "ABCD"},   {"QUJDR", "ABC"},
        {"QUJD\nREVG", "ABC"},  {"QUJD REVG", "ABC"},   {"=QUJD", ""},        {"QUJD=REVG", "ABC"},
        {"QUJ-", "AB"},         {"////", "\xFF\xFF\xFF"}, {"", ""},           {"QUJD_REVG", "ABC"},
        {"AAAA", std::string("\0\0\0", 3)},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Util::Base64Decode(c.input), c.expected) << c.input;
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

TEST(Base64, BothRoundTripEveryByteValueAndEncodeAlike)
{
    std::string bytes;
    for (int i = 0; i < 256; ++i)
        bytes.push_back(static_cast<char>(i));
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

TEST(UtilClass, InstancesCanBeMadeAndDestroyed)
{
    delete new Util();
}

} // namespace
