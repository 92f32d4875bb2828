// Certificate display against the fake GUI.
#include <OrvelGUIDialogs/LibraryState.hpp>

#include "support/DialogFixture.hpp"

using OrvelTest::replyWithLog;

namespace {

class DisplayCertificate : public OrvelTest::DialogTest {};

TEST_F(DisplayCertificate, MissingDataIsFourBeforeThePathTest)
{
    unsigned char byte = 0x41;
    ORV_SetAppPath(nullptr);
    EXPECT_EQ(ORV_DisplayCertificate(nullptr, 10), 4);
    EXPECT_EQ(ORV_DisplayCertificate(&byte, 0), 4);
    EXPECT_EQ(ORV_DisplayCertificate(&byte, 1), 9);
    EXPECT_FALSE(gui.ran());
    EXPECT_EQ(newLog(), "");
    EXPECT_EQ(appLchr, nullptr);
}

TEST_F(DisplayCertificate, PassesExactlyLengthBytesAsBase64)
{
    gui.reply(replyWithLog("DisplayCert"));
    unsigned char bytes[1001];
    for (size_t i = 0; i < sizeof bytes; ++i)
        bytes[i] = static_cast<unsigned char>(i * 7);
    struct Case {
        unsigned int length;
        size_t encodedLength;
    };
    for (const Case c : {Case{1, 4}, Case{3, 4}, Case{1000, 1336}}) {
        EXPECT_EQ(ORV_DisplayCertificate(bytes, c.length), 0);
        const auto arguments = gui.arguments();
        ASSERT_EQ(arguments.size(), 4u);
        EXPECT_EQ(arguments[0], "-window");
        EXPECT_EQ(arguments[1], "DisplayCert");
        EXPECT_EQ(arguments[2], "-cert");
        EXPECT_EQ(arguments[3], OrvelTest::base64(std::string(reinterpret_cast<char *>(bytes), c.length)));
        EXPECT_EQ(arguments[3].size(), c.encodedLength);
    }
    unsigned char a = 0x41;
    ORV_DisplayCertificate(&a, 1);
    EXPECT_EQ(gui.arguments().back(), "QQ==");
}

TEST_F(DisplayCertificate, ResultIgnoresTheLogSection)
{
    unsigned char byte = 0;
    gui.reply("DisplayCert");
    EXPECT_EQ(ORV_DisplayCertificate(&byte, 1), 0);
    EXPECT_EQ(newLog(), "Odpověď z GUI neobsahovala log.\n\n");
    gui.reply(replyWithLog("MessageBox"));
    EXPECT_EQ(ORV_DisplayCertificate(&byte, 1), 7);
    EXPECT_EQ(newLog(), "Chybná odpověď od DisplayCert okna.\n\nOdpověď z GUI neobsahovala log.\n\n");
    gui.reply(replyWithLog("DisplayCert")).exitStatus(4);
    EXPECT_EQ(ORV_DisplayCertificate(&byte, 1), 4);
}

} // namespace
