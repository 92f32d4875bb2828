#include "platform/HostText.hpp"

#include <cstdint>
#include <cstring>

namespace OrvelDialogs::Platform {

namespace {

// The length of the valid UTF-8 sequence at p, or 0 if there is none.
size_t validSequenceLength(const unsigned char *p, const unsigned char *end)
{
    const unsigned char lead = *p;
    if (lead < 0x80)
        return 1;
    // The second byte's allowed range excludes overlong forms (E0, F0),
    // surrogates (ED) and code points above U+10FFFF (F4).
    size_t length = 0;
    unsigned char low = 0x80, high = 0xBF;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        if (lead == 0xE0)
            low = 0xA0;
        else if (lead == 0xED)
            high = 0x9F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        if (lead == 0xF0)
            low = 0x90;
        else if (lead == 0xF4)
            high = 0x8F;
    } else {
        return 0;
    }
    if (static_cast<size_t>(end - p) < length || p[1] < low || p[1] > high)
        return 0;
    for (size_t i = 2; i < length; ++i)
        if (p[i] < 0x80 || p[i] > 0xBF)
            return 0;
    return length;
}

// Past the ASCII bytes at p, eight at a time: replies and logs are mostly
// ASCII and may run to many MiB.
const unsigned char *skipAscii(const unsigned char *p, const unsigned char *end)
{
    constexpr std::uint64_t kHighBits = 0x8080808080808080u;
    // Four words tested together first, which the compiler turns into
    // vector instructions.
    for (std::uint64_t words[4]; end - p >= 32; p += 32) {
        std::memcpy(words, p, sizeof words);
        if (((words[0] | words[1] | words[2] | words[3]) & kHighBits) != 0)
            break;
    }
    for (std::uint64_t word; end - p >= 8; p += 8) {
        std::memcpy(&word, p, sizeof word);
        if ((word & kHighBits) != 0)
            break;
    }
    while (p < end && *p < 0x80)
        ++p;
    return p;
}

} // namespace

bool isValidUtf8(std::string_view bytes)
{
    const auto *p = reinterpret_cast<const unsigned char *>(bytes.data());
    const auto *end = p + bytes.size();
    while ((p = skipAscii(p, end)) < end) {
        const size_t length = validSequenceLength(p, end);
        if (length == 0)
            return false;
        p += length;
    }
    return true;
}

std::string textReplacingInvalidUtf8(std::string_view bytes)
{
    const auto *begin = reinterpret_cast<const unsigned char *>(bytes.data());
    const auto *end = begin + bytes.size();
    std::string text;
    text.reserve(bytes.size());
    // Runs of valid sequences are copied whole; each byte that starts none
    // becomes U+FFFD.
    const unsigned char *run = begin;
    const unsigned char *p = begin;
    while ((p = skipAscii(p, end)) < end) {
        const size_t length = validSequenceLength(p, end);
        if (length != 0) {
            p += length;
            continue;
        }
        text.append(reinterpret_cast<const char *>(run), static_cast<size_t>(p - run));
        text += "\xEF\xBF\xBD";
        run = ++p;
    }
    text.append(reinterpret_cast<const char *>(run), static_cast<size_t>(end - run));
    return text;
}

std::optional<std::string> textFromHost(const char *text)
{
    if (text == nullptr)
        return std::nullopt;
    return textFromBytes(std::string_view(text));
}

std::optional<std::string> textFromBytes(std::string_view bytes)
{
    if (!isValidUtf8(bytes))
        return std::nullopt;
    return std::string(bytes);
}

} // namespace OrvelDialogs::Platform
