// The library as a host sees it: settings, language and the diagnostic log; and
// a dynamic symbol table that exports the interface and nothing else (no
// platform layer, no libplist, no standard-library instantiations), the C
// functions and the state under their plain names.
#include <OrvelGUIDialogs/LibraryState.hpp>
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "support/Host.hpp"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <set>

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

} // namespace
