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
    for (const unsigned int length : {1u, 3u, 1000u}) {
        EXPECT_EQ(ORV_DisplayCertificate(bytes, length), 0);
        const std::string sent = OrvelTest::base64(std::string(reinterpret_cast<char *>(bytes), length));
        EXPECT_EQ(gui.arguments(), (std::vector<std::string>{"-window", "DisplayCert", "-cert", sent}));
    }
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
