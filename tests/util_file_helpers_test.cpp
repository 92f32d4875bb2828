#include <OrvelGUIDialogs/Util.hpp>

#include <gtest/gtest.h>

#include "support/TempDir.hpp"

#include <unistd.h>

#include <filesystem>

using OrvelDialogs::Util;
using OrvelTest::readFile;
using OrvelTest::writeFile;

namespace {

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
