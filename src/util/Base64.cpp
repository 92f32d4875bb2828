// OrvelDialogs::Util's Base64 codec. Its decoder stops at the first "=" or
// byte outside the alphabet and decodes an unpadded last group; it reads the
// GUI application's log.
#include <OrvelGUIDialogs/Util.hpp>

#include "util/Base64Alphabet.hpp"

#include <cctype>

namespace {

// Built when the library is loaded: the library's only dynamic initialiser.
const std::string base64_chars(OrvelDialogs::Base64::kAlphabet);

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
    return Base64::encode(bytes, length, base64_chars.data());
}

std::string Util::Base64Decode(const std::string &encoded)
{
    const auto *text = reinterpret_cast<const unsigned char *>(encoded.data());
    size_t usable = 0;
    while (usable < encoded.size() && text[usable] != '=' && is_base64(text[usable]))
        ++usable;

    std::string bytes;
    bytes.resize(usable / 4 * 3 + 2);
    auto *out = reinterpret_cast<unsigned char *>(bytes.data());
    size_t i = 0;
    for (; i + 4 <= usable; i += 4) {
        const unsigned a = valueOf(text[i]), b = valueOf(text[i + 1]);
        const unsigned c = valueOf(text[i + 2]), d = valueOf(text[i + 3]);
        out[0] = static_cast<unsigned char>((a << 2) | ((b >> 4) & 0x03));
        out[1] = static_cast<unsigned char>((b << 4) | ((c >> 2) & 0x0F));
        out[2] = static_cast<unsigned char>((c << 6) + d);
        out += 3;
    }
    // A short last group is completed with characters outside the alphabet;
    // of its bytes only those that its real characters determine are kept.
    const size_t remaining = usable - i;
    if (remaining >= 2) {
        const unsigned a = valueOf(text[i]), b = valueOf(text[i + 1]);
        const unsigned c = remaining == 3 ? valueOf(text[i + 2]) : Base64::kNotInAlphabet;
        *out++ = static_cast<unsigned char>((a << 2) | ((b >> 4) & 0x03));
        if (remaining == 3)
            *out++ = static_cast<unsigned char>((b << 4) | ((c >> 2) & 0x0F));
    }
    bytes.resize(static_cast<size_t>(out - reinterpret_cast<unsigned char *>(bytes.data())));
    return bytes;
}

} // namespace OrvelDialogs
