#include <OrvelGUIDialogs/Util.hpp>

#include <gtest/gtest.h>

#include <string>

using OrvelDialogs::Util;

namespace {

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

} // namespace
