#include "util/Base64Alphabet.hpp"

#include "util/LargeBuffer.hpp"

#include <cstring>

namespace OrvelDialogs::Base64 {

std::string encode(const unsigned char *bytes, size_t length, const char *alphabet, const PairTable &pairs)
{
    std::string text;
    encodeInto(bytes, length, alphabet, pairs, text);
    return text;
}

void encodeInto(const unsigned char *bytes, size_t length, const char *alphabet, const PairTable &pairs,
                std::string &text)
{
    text.clear();
    if (length == 0)
        return;
    char *out = LargeBuffer::extendUninitialized(text, (length + 2) / 3 * 4);
    size_t i = 0;
    // Six bytes at a time, read as one word (of which the last two bytes
    // are not used yet), give eight characters written as one word.
    for (; i + 8 <= length; i += 6) {
        std::uint64_t word;
        std::memcpy(&word, bytes + i, sizeof word);
        if constexpr (std::endian::native == std::endian::little)
            word = __builtin_bswap64(word);
        const std::uint64_t p0 = pairs[(word >> 52) & 0xFFF], p1 = pairs[(word >> 40) & 0xFFF];
        const std::uint64_t p2 = pairs[(word >> 28) & 0xFFF], p3 = pairs[(word >> 16) & 0xFFF];
        const std::uint64_t chars = std::endian::native == std::endian::little
                                        ? p0 | p1 << 16 | p2 << 32 | p3 << 48
                                        : p0 << 48 | p1 << 32 | p2 << 16 | p3;
        std::memcpy(out, &chars, sizeof chars);
        out += 8;
    }
    for (; i + 3 <= length; i += 3) {
        const unsigned b0 = bytes[i], b1 = bytes[i + 1], b2 = bytes[i + 2];
        out[0] = alphabet[b0 >> 2];
        out[1] = alphabet[((b0 & 0x03) << 4) | (b1 >> 4)];
        out[2] = alphabet[((b1 & 0x0F) << 2) | (b2 >> 6)];
        out[3] = alphabet[b2 & 0x3F];
        out += 4;
    }
    const size_t remaining = length - i;
    if (remaining > 0) {
        const unsigned b0 = bytes[i];
        const unsigned b1 = remaining == 2 ? bytes[i + 1] : 0;
        out[0] = alphabet[b0 >> 2];
        out[1] = alphabet[((b0 & 0x03) << 4) | (b1 >> 4)];
        out[2] = remaining == 2 ? alphabet[(b1 & 0x0F) << 2] : '=';
        out[3] = '=';
    }
}

} // namespace OrvelDialogs::Base64
