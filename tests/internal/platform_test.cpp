// The library's inner parts that the public interface cannot reach alone:
// strict UTF-8, bundle lookup, the argument list, reply tokens and numbers,
// room for large buffers, and the fuzzers' stand-in for the GUI application.
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "dialogs/DialogExchange.hpp"
#include "launcher/ArgumentList.hpp"
#include "launcher/ReplyBuffer.hpp"
#include "launcher/ReplyTokens.hpp"
#include "launcher/ScriptedChild.hpp"
#include "platform/Bundle.hpp"
#include "platform/HostText.hpp"
#include "platform/PlatformException.hpp"
#include "util/LargeBuffer.hpp"

#include "support/Host.hpp"

#include <gtest/gtest.h>

#include <plist/plist.h>

#include <filesystem>
#include <limits>

namespace {

using OrvelDialogs::Platform::PlatformException;

TEST(HostText, AcceptsOnlyStrictUtf8)
{
    // Czech, U+1F511, U+10FFFF, U+FFFD, a zero byte inside.
    for (const std::string &valid :
         {std::string(), std::string("plain ASCII"), std::string("\xC5\xBD" "lu\xC5\xA5ou\xC4\x8Dk\xC3\xBD"),
          std::string("\xF0\x9F\x94\x91"), std::string("\xF4\x8F\xBF\xBF"), std::string("\xEF\xBF\xBD"),
          std::string("a\0b", 3)})
        EXPECT_TRUE(OrvelDialogs::Platform::isValidUtf8(valid)) << testing::PrintToString(valid);
    // A bad continuation, cut short twice, overlong three times, a surrogate
    // (U+D800), above U+10FFFF twice, 0xFF, a lone continuation.
    for (const char *invalid : {"\xC3\x28", "\xC3", "\xE2\x82", "\xC0\xAF", "\xE0\x80\xAF", "\xF0\x80\x80\xAF", "\xED\xA0\x80",
                                "\xF4\x90\x80\x80", "\xF5\x80\x80\x80", "\xFF", "\x80"})
        EXPECT_FALSE(OrvelDialogs::Platform::isValidUtf8(invalid)) << testing::PrintToString(invalid);
    EXPECT_FALSE(OrvelDialogs::Platform::textFromHost(nullptr).has_value());
    EXPECT_EQ(OrvelDialogs::Platform::textReplacingInvalidUtf8("a\xC3\x28" "b\xF0\x9F"), "a\xEF\xBF\xBD(b\xEF\xBF\xBD\xEF\xBF\xBD");
}

class Bundles : public testing::Test {
protected:
    std::string path(const std::string &relative) const { return root_ / relative; }
    void writeFile(const std::string &relative, const std::string &bytes) const { OrvelTest::writeFile(path(relative), bytes); }
    void writeInfoPlist(const std::string &relative, const std::string &executable, bool binary) const
    {
        plist_t dict = plist_new_dict();
        plist_dict_set_item(dict, "CFBundleExecutable", plist_new_string(executable.c_str()));
        char *bytes = nullptr;
        uint32_t length = 0;
        binary ? plist_to_bin(dict, &bytes, &length) : plist_to_xml(dict, &bytes, &length);
        writeFile(relative, std::string(bytes, length));
        free(bytes);
        plist_free(dict);
    }

    const OrvelTest::TempFolder root_;
};

TEST_F(Bundles, FindTheExecutableInEitherLayout)
{
    writeInfoPlist("Mac.app/Contents/Info.plist", "Runner", false);
    writeFile("Mac.app/Contents/MacOS/Runner", "");
    writeInfoPlist("Flat.app/Info.plist", "flat-runner", true);
    writeFile("Flat.app/flat-runner", "");
    writeFile("Bare.app/Contents/MacOS/Bare", "");
    writeFile("Plain/Plain", "");
    const std::pair<std::string, std::string> found[] = {
        {"Mac.app", "Mac.app/Contents/MacOS/Runner"}, {"Mac.app/", "Mac.app/Contents/MacOS/Runner"},
        {"Flat.app", "Flat.app/flat-runner"}, {"Bare.app", "Bare.app/Contents/MacOS/Bare"}, {"Plain", "Plain/Plain"},
    };
    for (const auto &[bundle, executable] : found)
        EXPECT_EQ(OrvelDialogs::Platform::bundleExecutablePath(path(bundle)), path(executable)) << bundle;
}

TEST_F(Bundles, NothingForWhatIsNoBundleWithAnExecutable)
{
    writeInfoPlist("Missing.app/Contents/Info.plist", "Gone", false);
    writeInfoPlist("Escape.app/Contents/Info.plist", "../../../bin/sh", false);
    std::filesystem::create_directories(path("Escape.app/Contents/MacOS"));
    writeFile("Broken.app/Contents/Info.plist", "not a property list");
    writeFile("Broken.app/Contents/MacOS/Broken", "");
    std::filesystem::create_directories(path("Empty.app"));
    writeFile("file.app", "");
    for (const std::string bundle : {"Missing.app", "Escape.app", "Broken.app", "Empty.app", "file.app", "nowhere.app"})
        EXPECT_FALSE(OrvelDialogs::Platform::bundleExecutablePath(path(bundle)).has_value()) << bundle;
    EXPECT_FALSE(OrvelDialogs::Platform::bundleExecutablePath("").has_value());
}

TEST(ArgumentList, RaisesForAnAbsentValue)
{
    using OrvelDialogs::Launcher::argumentList;
    EXPECT_EQ(argumentList({"-window", "X", ""}), (std::vector<std::string>{"-window", "X", ""}));
    try {
        argumentList({"-window", "X", "-message", std::nullopt});
        FAIL();
    } catch (const PlatformException &exception) {
        EXPECT_EQ(exception.reason(), "argument list: no value at position 3 (after \"-message\")");
        const std::string description = exception.callStackDescription();
        EXPECT_EQ(description.rfind(exception.reason() + "\n", 0), 0u);
        EXPECT_FALSE(exception.callStackSymbols().empty());
    }
}

TEST(ReplyTokens, SplitAtEverySingleSpace)
{
    using OrvelDialogs::Launcher::findToken;
    using OrvelDialogs::Launcher::tokenAt;
    EXPECT_EQ(tokenAt("a b  c", 0), "a");
    EXPECT_EQ(tokenAt("a b  c", 2), "");
    EXPECT_EQ(tokenAt("a b  c", 3), "c");
    EXPECT_EQ(tokenAt("", 0), "");
    EXPECT_EQ(tokenAt("a ", 1), "");
    EXPECT_THROW(tokenAt("a b", 2), PlatformException);
    EXPECT_EQ(findToken("W -log x -log y", "-log"), 1u);
    EXPECT_EQ(findToken("W x\n-log", "-log"), std::nullopt);
    EXPECT_EQ(findToken("-log", "-log"), 0u);
}

TEST(IntegerValue, ReadsLikeThePlatformsIntegerValue)
{
    using OrvelDialogs::Dialogs::integerValue;
    constexpr long long kMax = std::numeric_limits<long long>::max();
    constexpr long long kMin = std::numeric_limits<long long>::min();
    const std::pair<std::string, long long> cases[] = {
        {"2", 2},      {"-1", -1},   {"+7", 7},     {"  12", 12},   {"\t\n3", 3},  {"12abc", 12},
        {"abc", 0},    {"", 0},      {"-", 0},      {"+-1", 0},     {"1 2", 1},    {"0x10", 0},
        {"007", 7},    {"99999999999999999999", kMax}, {"-99999999999999999999", kMin},
        {"9223372036854775807", kMax}, {"-9223372036854775808", kMin}, {"9223372036854775808", kMax},
    };
    for (const auto &[text, value] : cases)
        EXPECT_EQ(integerValue(text), value) << text;
}

// Room for large buffers, and the reply's room kept across dialogs.
using OrvelDialogs::LargeBuffer::kLargeBytes;

std::string pattern(size_t size, char seed)
{
    std::string bytes(size, '\0');
    for (size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<char>(seed + i * 7);
    return bytes;
}

TEST(LargeBuffer, ExtendsKeepingTheContentsAcrossSmallAndHugeRoom)
{
    std::string text = "start";
    std::string expected = text;
    // Each step crosses from small room into huge-page room or grows it.
    for (const size_t added : {size_t{10}, kLargeBytes - 100, size_t{1}, 3 * kLargeBytes + 5, size_t{0}}) {
        const size_t oldCapacity = text.capacity();
        const std::string more = pattern(added, static_cast<char>(added));
        char *at = OrvelDialogs::LargeBuffer::extendUninitialized(text, text.size() + added);
        ASSERT_EQ(at, text.data() + expected.size());
        std::copy(more.begin(), more.end(), at);
        expected += more;
        ASSERT_EQ(text, expected);
        if (text.capacity() != oldCapacity) {
            EXPECT_GE(text.capacity(), 2 * oldCapacity) << "room grows geometrically";
        }
    }
    const std::string before = text;
    OrvelDialogs::LargeBuffer::reserve(text, text.size() + 10 * kLargeBytes);
    EXPECT_GE(text.capacity(), before.size() + 10 * kLargeBytes);
    EXPECT_EQ(text, before);
}

TEST(ReplyBuffer, KeepsALargeReplysRoomUntilEightDialogsHadNone)
{
    std::string reply = OrvelDialogs::Launcher::takeReplyBuffer();
    EXPECT_EQ(reply.capacity(), std::string().capacity());
    reply = pattern(2 * kLargeBytes, 'a');
    const size_t room = reply.capacity();
    OrvelDialogs::Launcher::keepReplyBuffer(std::move(reply));

    for (int dialog = 1; dialog <= 9; ++dialog) {
        std::string next = OrvelDialogs::Launcher::takeReplyBuffer();
        EXPECT_TRUE(next.empty());
        if (dialog <= 8) {
            EXPECT_EQ(next.capacity(), room) << "dialog " << dialog;
        } else {
            EXPECT_LT(next.capacity(), room) << "released after eight dialogs without a large reply";
        }
        next = "small reply";
        OrvelDialogs::Launcher::keepReplyBuffer(std::move(next));
    }
}

// The fuzzers' stand-in for the GUI application drives the same reply
// handling as a real child.
TEST(ScriptedChild, StandsInForTheGuiApplication)
{
    const OrvelDialogs::Launcher::ScriptedChild child{0, "YesNoDialog no -log aGVsbG8="};
    OrvelDialogs::Launcher::setScriptedChild(&child);
    ORV_SetAppPath("/no/bundle/needed");
    bool answer = true;
    EXPECT_EQ(ORV_YesNoDialog("Q", nullptr, 0, &answer), 0);
    EXPECT_FALSE(answer);
    EXPECT_EQ(OrvelTest::logText(), "log z GUI aplikace: hello \n\n");
    const OrvelDialogs::Launcher::ScriptedChild failing{12, ""};
    OrvelDialogs::Launcher::setScriptedChild(&failing);
    EXPECT_EQ(ORV_YesNoDialog("Q", nullptr, 0, &answer), 7);
    OrvelDialogs::Launcher::setScriptedChild(nullptr);
}

} // namespace
