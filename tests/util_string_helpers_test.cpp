#include <OrvelGUIDialogs/Util.hpp>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using OrvelDialogs::Util;

namespace {

struct Case { std::string input, expected; };

TEST(UtilStrings, ToUpperChangesOnlyAsciiLetters)
{
    const Case cases[] = {
        {"abc-xyz_09", "ABC-XYZ_09"}, {"\xC5\xA1\xC3\xA1`{", "\xC5\xA1\xC3\xA1`{"}, {std::string("a\0b", 3), std::string("A\0B", 3)},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Util::ToUpper(c.input), c.expected) << c.input;
}

TEST(UtilStrings, UnescapeResolvesEachPairOnce)
{
    const Case cases[] = {
        {"a\\nb", "a\nb"}, {"a\\tb", "a\tb"}, {"a\\\"b", "a\"b"}, {"a\\rb", "ab"}, {"\\\\n", "\\n"}, {"ab\\", "ab\\"},
        {"\\\\\\", "\\\\"}, {"\\x41\\101", "4101"}, {std::string("\\\0z", 3), "z"}, {"", ""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Util::Unescape(c.input), c.expected) << c.input;
}

TEST(UtilStrings, ApostrophiesQuotesWithoutEscaping)
{
    EXPECT_EQ(Util::Apostrophies(""), "\"\"");
    EXPECT_EQ(Util::Apostrophies("say \"hi\" it's"), "\"say \"hi\" it's\"");
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

TEST(UtilStrings, FolderPathEndsAtTheLastBackslash)
{
    const Case cases[] = {
        {"C:\\dir\\file.txt", "C:\\dir\\"}, {"/usr/local/file", ""}, {"C:\\dir\\", "C:\\dir\\"}, {"a\\b/c", "a\\"}, {"", ""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(Util::GetFolderPath(c.input.c_str()), c.expected) << c.input;
    EXPECT_EQ(Util::GetFolderPath(static_cast<const char *>(nullptr)), "");

    std::wstring czech = L"C:\\P\u0159\u00EDli\u0161\\\u017Dlu\u0165ou\u010Dk\u00FD.txt", plain = L"/home/\u017D";
    std::wstring surrogate = std::wstring(1, wchar_t(0xD800)) + L"\\x"; // no valid Unicode: conversion fails
    EXPECT_EQ(Util::GetFolderPath(czech.data()), "C:\\P\xC5\x99\xC3\xADli\xC5\xA1\\");
    EXPECT_EQ(Util::GetFolderPath(plain.data()) + Util::GetFolderPath(surrogate.data()), "");
    EXPECT_EQ(Util::GetFolderPath(static_cast<wchar_t *>(nullptr)), "");
}

} // namespace
