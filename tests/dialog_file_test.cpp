// File open, file save and PKCS#12 selection: host buffers are allocated to
// their exact size, so that under AddressSanitizer a one-byte overrun fails.
#include <OrvelGUIDialogs/OrvelDialogs.hpp>

#include "support/DialogFixture.hpp"

#include <algorithm>
#include <cstring>
#include <memory>

using OrvelTest::base64;
using OrvelTest::replyWithLog;
using Args = std::vector<std::string>;

namespace {

// A heap buffer of exactly `size` bytes, filled with 'x'.
struct HostBuffer {
    explicit HostBuffer(unsigned int size) : size(size), bytes(new char[size])
    {
        std::fill(bytes.get(), bytes.get() + size, 'x');
    }
    std::string text() const { return std::string(bytes.get()); }
    bool clearedExceptLast() const
    {
        return std::all_of(bytes.get(), bytes.get() + size - 1, [](char c) { return c == 0; }) &&
               bytes[size - 1] == 'x';
    }
    bool allZero() const { return std::all_of(bytes.get(), bytes.get() + size, [](char c) { return c == 0; }); }
    bool untouched() const { return std::all_of(bytes.get(), bytes.get() + size, [](char c) { return c == 'x'; }); }
    unsigned int size;
    std::unique_ptr<char[]> bytes;
};

class FileDialogs : public OrvelTest::DialogTest {};

TEST_F(FileDialogs, ChecksComeBeforeTheBufferIsTouched)
{
    HostBuffer buffer(8), value(8);
    ORV_SetAppPath(nullptr);
    EXPECT_EQ(ORV_FileOpenDialog("m", nullptr, nullptr, 8, nullptr), 9);
    EXPECT_EQ(ORV_SelectPKCS12(nullptr, 0, nullptr, 0), 9);
    ORV_SetAppPath(OrvelTest::FakeGui::bundlePath().c_str());
    EXPECT_EQ(ORV_FileOpenDialog("m", nullptr, buffer.bytes.get(), 0, nullptr), 1);
    EXPECT_EQ(ORV_FileSaveDialog("m", nullptr, nullptr, 8, nullptr), 1);
    EXPECT_EQ(ORV_SelectPKCS12(buffer.bytes.get(), 8, value.bytes.get(), 0), 1);
    EXPECT_EQ(ORV_SelectPKCS12(buffer.bytes.get(), 0, value.bytes.get(), 8), 1);
    EXPECT_EQ(ORV_SelectPKCS12(buffer.bytes.get(), 8, nullptr, 8), 1);
    EXPECT_TRUE(buffer.untouched());
    EXPECT_TRUE(value.untouched());
    EXPECT_FALSE(gui.ran());
    EXPECT_EQ(newLog(), "");
}

TEST_F(FileDialogs, PassExactlyTheirArgumentLists)
{
    gui.reply(replyWithLog("File " + base64("/p") + " " + base64("v")));
    ORV_SetLanguage(2);
    HostBuffer buffer(64), value(64);
    ORV_FileOpenDialog("Open it", "ignored.txt", buffer.bytes.get(), buffer.size, "Docs (pdf)");
    EXPECT_EQ(gui.arguments(), (Args{"-window", "FileOpen", "-lang", "2", "-message", "Open it", "-fileFilter", "Docs (pdf)"}));
    ORV_FileOpenDialog("Open it", nullptr, buffer.bytes.get(), buffer.size, nullptr);
    EXPECT_EQ(gui.arguments(), (Args{"-window", "FileOpen", "-lang", "2", "-message", "Open it", "-fileFilter", ""}));
    ORV_FileSaveDialog("Save", nullptr, buffer.bytes.get(), buffer.size, nullptr);
    EXPECT_EQ(gui.arguments(),
              (Args{"-window", "FileSave", "-lang", "2", "-message", "Save", "-fileFilter", "", "-filename", ""}));
    ORV_FileSaveDialog("Save", "out.pdf", buffer.bytes.get(), buffer.size, "All (*)");
    EXPECT_EQ(gui.arguments(), (Args{"-window", "FileSave", "-lang", "2", "-message", "Save", "-fileFilter", "All (*)",
                                     "-filename", "out.pdf"}));
    // The PKCS#12 buffer is both the starting name and the answer.
    std::strcpy(buffer.bytes.get(), "cert.p12");
    ORV_SelectPKCS12(buffer.bytes.get(), buffer.size, value.bytes.get(), value.size);
    EXPECT_EQ(gui.arguments(), (Args{"-window", "SelectPKCS12", "-lang", "2", "-filename", "cert.p12"}));
    buffer.bytes[0] = 0;
    ORV_SelectPKCS12(buffer.bytes.get(), buffer.size, value.bytes.get(), value.size);
    EXPECT_EQ(gui.arguments(), (Args{"-window", "SelectPKCS12", "-lang", "2", "-filename", ""}));
    // A name filling the buffer with no zero is read within the buffer only.
    HostBuffer full(4);
    ORV_SelectPKCS12(full.bytes.get(), full.size, value.bytes.get(), value.size);
    EXPECT_EQ(gui.arguments().back(), "xxxx");
}

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

TEST_F(FileDialogs, BadTextsTakeTheExceptionPathWithTheBufferCleared)
{
    HostBuffer buffer(8);
    EXPECT_EQ(ORV_FileOpenDialog(nullptr, nullptr, buffer.bytes.get(), buffer.size, nullptr), 7);
    EXPECT_TRUE(buffer.clearedExceptLast());
    EXPECT_EQ(ORV_FileSaveDialog("m", "\xFF", buffer.bytes.get(), buffer.size, nullptr), 7);
    EXPECT_EQ(ORV_FileOpenDialog("m", nullptr, buffer.bytes.get(), buffer.size, "\xC3\x28"), 7);
    HostBuffer value(8);
    char name[] = "\xFF.p12";
    EXPECT_EQ(ORV_SelectPKCS12(name, sizeof name, value.bytes.get(), value.size), 7);
    EXPECT_FALSE(gui.ran());
    EXPECT_TRUE(OrvelTest::isExceptionEntry(newLog()));
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
