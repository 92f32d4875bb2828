// Room for large buffers, and the reply's room kept across dialogs.
#include "launcher/ReplyBuffer.hpp"
#include "util/LargeBuffer.hpp"

#include <gtest/gtest.h>

#include <string>

namespace {

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

} // namespace
