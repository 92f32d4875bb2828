// OrvelDialogs::Util's Base64 codec. Its decoder stops at the first "=" or
// byte outside the alphabet and decodes an unpadded last group; it reads the
// GUI application's log.
#include <OrvelGUIDialogs/Util.hpp>

#include "util/Base64Alphabet.hpp"
#include "util/LargeBuffer.hpp"

#include <array>
#include <cctype>
#include <cstdint>

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
