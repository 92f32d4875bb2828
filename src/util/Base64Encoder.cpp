#include "util/Base64Alphabet.hpp"

#include "util/LargeBuffer.hpp"

#include <cstring>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace OrvelDialogs::Base64 {
namespace {

#ifdef ORVEL_BASE64_AVX2
// 24 bytes at a time to 32 characters of kAlphabet (both codecs' alphabet),
// with AVX2, while 28 bytes can be read. Advances both pointers.
__attribute__((target("avx2"))) void encodeBlocksAvx2(const unsigned char *&in, const unsigned char *end, char *&out)
{
    // Each group b0 b1 b2 as the 32 bits b1 b0 b2 b1, from which the four
    // 6-bit values are masked and moved to one byte each.
    const __m256i spread = _mm256_setr_epi8(1, 0, 2, 1, 4, 3, 5, 4, 7, 6, 8, 7, 10, 9, 11, 10, 1, 0, 2, 1, 4, 3, 5, 4, 7,
                                            6, 8, 7, 10, 9, 11, 10);
    // The offset from a value to its character, by range: 0 for 26..51
    // (lower case), 1..10 for 52..61 (digits), 11 for 62, 12 for 63, 13 for
    // 0..25 (upper case).
    const __m256i offsets = _mm256_setr_epi8('a' - 26, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52,
                                             '0' - 52, '0' - 52, '0' - 52, '0' - 52, '+' - 62, '/' - 63, 'A', 0, 0,
                                             'a' - 26, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52, '0' - 52,
                                             '0' - 52, '0' - 52, '0' - 52, '0' - 52, '+' - 62, '/' - 63, 'A', 0, 0);
    while (end - in >= 28) {
        const __m256i bytes = _mm256_setr_m128i(_mm_loadu_si128(reinterpret_cast<const __m128i *>(in)),
                                                _mm_loadu_si128(reinterpret_cast<const __m128i *>(in + 12)));
        const __m256i groups = _mm256_shuffle_epi8(bytes, spread);
        const __m256i firstThird = _mm256_mulhi_epu16(_mm256_and_si256(groups, _mm256_set1_epi32(0x0FC0FC00)),
                                                      _mm256_set1_epi32(0x04000040));
        const __m256i secondFourth = _mm256_mullo_epi16(_mm256_and_si256(groups, _mm256_set1_epi32(0x003F03F0)),
                                                        _mm256_set1_epi32(0x01000010));
        const __m256i values = _mm256_or_si256(firstThird, secondFourth);
        __m256i range = _mm256_subs_epu8(values, _mm256_set1_epi8(51));
        const __m256i upper = _mm256_cmpgt_epi8(_mm256_set1_epi8(26), values);
        range = _mm256_or_si256(range, _mm256_and_si256(upper, _mm256_set1_epi8(13)));
        const __m256i chars = _mm256_add_epi8(values, _mm256_shuffle_epi8(offsets, range));
        _mm256_storeu_si256(reinterpret_cast<__m256i *>(out), chars);
        in += 24;
        out += 32;
    }
}

#endif

} // namespace

#ifdef ORVEL_BASE64_AVX2
bool processorHasAvx2()
{
    static const bool available = __builtin_cpu_supports("avx2");
    return available;
}
#endif

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
#ifdef ORVEL_BASE64_AVX2
    if (processorHasAvx2()) {
        const unsigned char *in = bytes;
        encodeBlocksAvx2(in, bytes + length, out);
        i = static_cast<size_t>(in - bytes);
    }
#endif
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
