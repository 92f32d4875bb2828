// The Base64 alphabet (RFC 4648, section 4) and the encoder that both Base64
// codecs of the library share; their decoders differ and stay apart.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace OrvelDialogs::Base64 {

inline constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// kNotInAlphabet for every byte that is not one of the 64 characters.
inline constexpr unsigned char kNotInAlphabet = 255;
inline constexpr std::array<unsigned char, 256> kValues = [] {
    std::array<unsigned char, 256> values{};
    values.fill(kNotInAlphabet);
    for (size_t i = 0; i < kAlphabet.size(); ++i)
        values[static_cast<unsigned char>(kAlphabet[i])] = static_cast<unsigned char>(i);
    return values;
}();

// The characters of every 12 bits, two per entry, the first in the low byte
// of its memory: the encoders' main loop takes two lookups per three bytes.
using PairTable = std::array<std::uint16_t, 4096>;
constexpr PairTable pairTable(std::string_view alphabet)
{
    PairTable pairs{};
    for (size_t bits = 0; bits < pairs.size(); ++bits) {
        const auto first = static_cast<unsigned char>(alphabet[bits >> 6]);
        const auto second = static_cast<unsigned char>(alphabet[bits & 0x3F]);
        pairs[bits] = static_cast<std::uint16_t>(std::endian::native == std::endian::little ? first | second << 8
                                                                                             : first << 8 | second);
    }
    return pairs;
}

// Encodes with the 64 characters at `alphabet` (and `pairs` made of them)
// and "=" padding, no line breaks: 4 * ceil(length / 3) characters.
std::string encode(const unsigned char *bytes, size_t length, const char *alphabet, const PairTable &pairs);
// The same text in `text`, whose room is reused.
void encodeInto(const unsigned char *bytes, size_t length, const char *alphabet, const PairTable &pairs,
                std::string &text);

#if defined(__x86_64__) && (defined(__GNUC__) || defined(__clang__))
// Both codecs take 24 bytes (32 characters) at a time with AVX2 where the
// processor has it.
#define ORVEL_BASE64_AVX2 1
bool processorHasAvx2();
#endif

// Util::Base64Decode of `text`, appended to `out`: for a log section of many
// MiB decoded straight to its place in the log.
void appendUtilDecoded(std::string_view text, std::string &out);

} // namespace OrvelDialogs::Base64
