// OrvelDialogs::Util's Base64 codec. Its decoder stops at the first "=" or
// byte outside the alphabet and decodes an unpadded last group; it reads the
// GUI application's log.
#include <OrvelGUIDialogs/Util.hpp>

#include "util/Base64Alphabet.hpp"
#include "util/LargeBuffer.hpp"

#include <array>
#include <cctype>
#include <cstdint>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace {

// Built when the library is loaded: the library's only dynamic initialiser.
const std::string base64_chars(OrvelDialogs::Base64::kAlphabet);

// The encoder's pairs of characters, made of the same 64 characters.
constexpr OrvelDialogs::Base64::PairTable kPairs =
    OrvelDialogs::Base64::pairTable(OrvelDialogs::Base64::kAlphabet);

// Every ASCII byte that may stand in Base64 text; bytes above 0x7F depend on
// the current locale and are asked at run time.
constexpr auto kAsciiBase64 = [] {
    std::array<bool, 128> accepted{};
    for (unsigned char c : OrvelDialogs::Base64::kAlphabet)
        accepted[c] = true;
    return accepted;
}();

// A character's value is its position in base64_chars; 255 if it has none
// (a byte above 0x7F that the locale calls alphanumeric).
unsigned valueOf(unsigned char c)
{
    return OrvelDialogs::Base64::kValues[c];
}

// Per position in a group of four, each byte's value shifted to its place in
// the group's 24 bits; bytes outside the alphabet carry kOutsideAlphabet.
constexpr std::uint32_t kOutsideAlphabet = 1u << 31;
constexpr auto kShifted = [] {
    std::array<std::array<std::uint32_t, 256>, 4> shifted{};
    for (int position = 0; position < 4; ++position)
        for (int c = 0; c < 256; ++c) {
            const unsigned value = OrvelDialogs::Base64::kValues[static_cast<size_t>(c)];
            shifted[position][c] = value == OrvelDialogs::Base64::kNotInAlphabet
                                       ? kOutsideAlphabet
                                       : static_cast<std::uint32_t>(value) << (18 - 6 * position);
        }
    return shifted;
}();

#ifdef ORVEL_BASE64_AVX2
// Whole blocks of 32 alphabet characters, 24 bytes each, with AVX2; stops
// before the first block that holds anything else (or before the last 32
// characters, so that the scalar rules decide the end). Advances both
// pointers past what it decoded.
// All ones in the bytes of `c` from `first` to `last`.
__attribute__((target("avx2"))) inline __m256i inRange(__m256i c, char first, char last)
{
    return _mm256_and_si256(_mm256_cmpgt_epi8(c, _mm256_set1_epi8(static_cast<char>(first - 1))),
                            _mm256_cmpgt_epi8(_mm256_set1_epi8(static_cast<char>(last + 1)), c));
}

__attribute__((target("avx2"))) void decodeBlocksAvx2(const unsigned char *&text, const unsigned char *end,
                                                      unsigned char *&out)
{
    // Within each 128-bit half, the three bytes of each group's 24 bits in
    // order, high byte first; the last four bytes are not used.
    const __m256i order = _mm256_setr_epi8(2, 1, 0, 6, 5, 4, 10, 9, 8, 14, 13, 12, -1, -1, -1, -1, 2, 1, 0, 6, 5, 4,
                                           10, 9, 8, 14, 13, 12, -1, -1, -1, -1);
    const __m256i joinHalves = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7);
    while (end - text >= 64) {
        const __m256i c = _mm256_loadu_si256(reinterpret_cast<const __m256i *>(text));
        // Bytes above 0x7F are negative here and fall in no range.
        const __m256i upper = inRange(c, 'A', 'Z'), lower = inRange(c, 'a', 'z'), digit = inRange(c, '0', '9');
        const __m256i plus = _mm256_cmpeq_epi8(c, _mm256_set1_epi8('+'));
        const __m256i slash = _mm256_cmpeq_epi8(c, _mm256_set1_epi8('/'));
        const __m256i valid =
            _mm256_or_si256(_mm256_or_si256(upper, lower), _mm256_or_si256(digit, _mm256_or_si256(plus, slash)));
        if (_mm256_movemask_epi8(valid) != -1)
            return;
        // Each character's value: its code plus the offset of its range.
        __m256i offset = _mm256_and_si256(upper, _mm256_set1_epi8(-'A'));
        offset = _mm256_or_si256(offset, _mm256_and_si256(lower, _mm256_set1_epi8(26 - 'a')));
        offset = _mm256_or_si256(offset, _mm256_and_si256(digit, _mm256_set1_epi8(52 - '0')));
        offset = _mm256_or_si256(offset, _mm256_and_si256(plus, _mm256_set1_epi8(62 - '+')));
        offset = _mm256_or_si256(offset, _mm256_and_si256(slash, _mm256_set1_epi8(63 - '/')));
        const __m256i values = _mm256_add_epi8(c, offset);
        // a * 64 + b and c * 64 + d in 16 bits, then the group's 24 bits in 32.
        const __m256i pairs = _mm256_maddubs_epi16(values, _mm256_set1_epi32(0x01400140));
        const __m256i groups = _mm256_madd_epi16(pairs, _mm256_set1_epi32(0x00011000));
        const __m256i bytes = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(groups, order), joinHalves);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out), _mm256_castsi256_si128(bytes));
        _mm_storel_epi64(reinterpret_cast<__m128i *>(out + 16), _mm256_extracti128_si256(bytes, 1));
        text += 32;
        out += 24;
    }
}
#endif

} // namespace

namespace OrvelDialogs {

bool Util::is_base64(unsigned char c)
{
    if (c < 0x80)
        return kAsciiBase64[c];
    return std::isalnum(c) != 0;
}

std::string Util::Base64Encode(const unsigned char *bytes, unsigned int length)
{
    return Base64::encode(bytes, length, base64_chars.data(), kPairs);
}

std::string Util::Base64Decode(const std::string &encoded)
{
    std::string bytes;
    Base64::appendUtilDecoded(encoded, bytes);
    return bytes;
}

void Base64::appendUtilDecoded(std::string_view encoded, std::string &out)
{
    const auto *text = reinterpret_cast<const unsigned char *>(encoded.data());
    const auto *end = text + encoded.size();
    // Room for every group; trimmed to what was written at the end.
    auto *o = reinterpret_cast<unsigned char *>(
        LargeBuffer::extendUninitialized(out, out.size() + encoded.size() / 4 * 3 + 2));

#ifdef ORVEL_BASE64_AVX2
    if (OrvelDialogs::Base64::processorHasAvx2())
        decodeBlocksAvx2(text, end, o);
#endif
    // The common case first: whole groups of alphabet characters, two at a
    // time, each character's value already shifted to its place.
    auto group = [](const unsigned char *p) {
        return kShifted[0][p[0]] | kShifted[1][p[1]] | kShifted[2][p[2]] | kShifted[3][p[3]];
    };
    while (end - text >= 8) {
        const std::uint32_t first = group(text), second = group(text + 4);
        if (((first | second) & kOutsideAlphabet) != 0)
            break;
        o[0] = static_cast<unsigned char>(first >> 16);
        o[1] = static_cast<unsigned char>(first >> 8);
        o[2] = static_cast<unsigned char>(first);
        o[3] = static_cast<unsigned char>(second >> 16);
        o[4] = static_cast<unsigned char>(second >> 8);
        o[5] = static_cast<unsigned char>(second);
        text += 8;
        o += 6;
    }

    // The rest by the general rule: it stops at the first "=" or byte that
    // is_base64 refuses. A byte above 0x7F that the locale calls alphanumeric
    // counts, with the value 255, as it has no place in the alphabet.
    size_t usable = 0;
    while (text + usable < end && text[usable] != '=' && Util::is_base64(text[usable]))
        ++usable;
    size_t i = 0;
    for (; i + 4 <= usable; i += 4) {
        const unsigned a = valueOf(text[i]), b = valueOf(text[i + 1]);
        const unsigned c = valueOf(text[i + 2]), d = valueOf(text[i + 3]);
        o[0] = static_cast<unsigned char>((a << 2) | ((b >> 4) & 0x03));
        o[1] = static_cast<unsigned char>((b << 4) | ((c >> 2) & 0x0F));
        o[2] = static_cast<unsigned char>((c << 6) + d);
        o += 3;
    }
    // A short last group is completed with characters outside the alphabet;
    // of its bytes only those that its real characters determine are kept.
    const size_t remaining = usable - i;
    if (remaining >= 2) {
        const unsigned a = valueOf(text[i]), b = valueOf(text[i + 1]);
        const unsigned c = remaining == 3 ? valueOf(text[i + 2]) : Base64::kNotInAlphabet;
        *o++ = static_cast<unsigned char>((a << 2) | ((b >> 4) & 0x03));
        if (remaining == 3)
            *o++ = static_cast<unsigned char>((b << 4) | ((c >> 2) & 0x0F));
    }
    out.resize(static_cast<size_t>(o - reinterpret_cast<unsigned char *>(out.data())));
}

} // namespace OrvelDialogs
