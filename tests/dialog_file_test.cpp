// File open, file save and PKCS#12 selection: what reaches the host's buffers
// of exact size; and the file filter's patterns.
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "support/DialogFixture.hpp"
#include "support/HostBuffer.hpp"

using OrvelTest::base64;
using OrvelTest::HostBuffer;
using OrvelTest::replyWithLog;

namespace {

class FileDialogs : public OrvelTest::DialogTest {};

TEST_F(FileDialogs, ThePathIsCopiedOnlyWhenItFits)
{
    struct Case {
        std::string reply;
        int exit;
        unsigned int size;
        long result;
        std::string path; // what the buffer then holds; "#" for cleared
    };
    const std::string path8 = "/tmp/a.b";
    const Case cases[] = {
        {replyWithLog("FileOpen " + base64(path8)), 0, 9, 0, path8},
        {replyWithLog("FileOpen " + base64(path8)), 0, 8, 11, "#"},
        {replyWithLog("FileOpen " + base64(std::string("/a\0/b", 5))), 0, 9, 0, "/a"},
        {replyWithLog("FileOpen " + base64("")), 0, 1, 0, ""},
        {replyWithLog("FileOpen " + base64("/")), 0, 1, 11, "#"},
        // "-log" stands where the path token would: it decodes to nothing.
        {replyWithLog("FileOpen"), 0, 9, 0, ""},
        {"FileOpen " + base64(path8), 0, 9, 0, "#"},
        {replyWithLog("FileOpen " + base64(path8)), 2, 9, 2, "#"},
        {replyWithLog("FileSave " + base64(path8)), 0, 9, 7, "#"},
        // Unpadded tokens lose their last group, as the value decoder does.
        {replyWithLog("FileOpen L3RtcC9hLmI"), 0, 9, 0, "/tmp/a"},
        {replyWithLog("FileOpen " + base64("\xC3\x28")), 0, 9, 7, "#"},
        {"FileOpen " + base64(path8) + " -log", 0, 9, 7, "#"},
    };
    for (const auto &c : cases) {
        gui.reply(c.reply).exitStatus(c.exit);
        HostBuffer buffer(c.size);
        EXPECT_EQ(ORV_FileOpenDialog("m", nullptr, buffer.bytes.get(), buffer.size, nullptr), c.result) << c.reply;
        if (c.path == "#")
            EXPECT_TRUE(buffer.size == 1 ? buffer.untouched() : buffer.clearedExceptLast()) << c.reply;
        else
            EXPECT_EQ(buffer.text(), c.path) << c.reply;
    }
}

TEST_F(FileDialogs, SaveLogsTheRawReplyBeforeTheGuiLog)
{
    const std::string reply = replyWithLog("FileSave " + base64("/x"), "gui said");
    gui.reply(reply);
    HostBuffer buffer(16);
    EXPECT_EQ(ORV_FileSaveDialog("m", nullptr, buffer.bytes.get(), buffer.size, nullptr), 0);
    EXPECT_EQ(newLog(), reply + "\nlog z GUI aplikace: gui said \n\n");
    gui.reply(replyWithLog("FileOpen " + base64("/x"), "gui said"));
    EXPECT_EQ(ORV_FileOpenDialog("m", nullptr, buffer.bytes.get(), buffer.size, nullptr), 0);
    EXPECT_EQ(newLog(), "log z GUI aplikace: gui said \n\n");
}

TEST_F(FileDialogs, Pkcs12CopiesBothValuesOnlyWhenTheyFit)
{
    struct Case {
        std::string reply;
        unsigned int pathSize, valueSize;
        long result;
        std::string path, value; // "#" for all zero
    };
    const std::string path = "/k.p12", secret = "heslo";
    const std::string both = replyWithLog("SelectPKCS12 " + base64(path) + " " + base64(secret));
    const Case cases[] = {
        {both, 7, 6, 0, path, secret},
        {both, 7, 5, 11, path, "#"},
        {both, 6, 64, 11, "#", "#"},
        {replyWithLog("SelectPKCS12 " + base64(path)), 7, 6, 0, path, ""},
        {replyWithLog("SelectPKCS12 " + base64("") + " " + base64("")), 1, 1, 0, "", ""},
        {"SelectPKCS12 " + base64(path) + " " + base64(secret), 7, 6, 0, "#", "#"},
        {replyWithLog("SelectPKCS12 " + base64(path) + " " + base64("\xFF")), 7, 6, 7, "#", "#"},
    };
    for (const auto &c : cases) {
        gui.reply(c.reply);
        HostBuffer pathBuffer(c.pathSize), valueBuffer(c.valueSize);
        EXPECT_EQ(ORV_SelectPKCS12(pathBuffer.bytes.get(), pathBuffer.size, valueBuffer.bytes.get(), valueBuffer.size),
                  c.result)
            << c.reply;
        if (c.path == "#")
            EXPECT_TRUE(pathBuffer.allZero()) << c.reply;
        else
            EXPECT_EQ(pathBuffer.text(), c.path) << c.reply;
        if (c.value == "#")
            EXPECT_TRUE(valueBuffer.allZero()) << c.reply;
        else
            EXPECT_EQ(valueBuffer.text(), c.value) << c.reply;
        const std::string log = newLog();
        if (c.reply.find("-log") != std::string::npos) {
            EXPECT_EQ(log.rfind(c.reply + "\nlog z GUI aplikace: hello \n\n", 0), 0u) << log;
        }
    }
}

TEST(FileFilter, ReadsThePatternsOfEveryEntry)
{
    using Patterns = std::optional<std::vector<std::string>>;
    const std::pair<const char *, Patterns> cases[] = {
        {"Documents (pdf,doc)|Text (txt)", std::vector<std::string>{"pdf", "doc", "txt"}},
        {"Documents (pdf, doc)", std::vector<std::string>{"pdf", " doc"}},
        {"x (a)b(c)", std::vector<std::string>{"a"}},
        {"Any ()", std::vector<std::string>{""}},
        {"Docs (pdf", std::vector<std::string>{"pdf"}},
        {"Odd )pdf(", std::vector<std::string>{"pdf"}},
        {"Images (png,*)", std::nullopt},
        {"All files (*)", std::nullopt},
        {"All (*)|broken", std::nullopt},
        {"Dup (a,a)|Again (a)", std::vector<std::string>{"a", "a", "a"}},
        {nullptr, std::nullopt},
        {"Bad (\xFF)", std::nullopt},
    };
    for (const auto &[text, expected] : cases)
        EXPECT_EQ(getFileTypesFromString(text), expected) << (text ? text : "null");
    for (const char *broken : {"broken|All (*)", "", "Text (txt)|", "no patterns"})
        EXPECT_THROW(getFileTypesFromString(broken), std::runtime_error) << broken;
}

} // namespace
