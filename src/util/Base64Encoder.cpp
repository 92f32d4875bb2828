#include "util/Base64Alphabet.hpp"

namespace OrvelDialogs::Base64 {

std::string encode(const unsigned char *bytes, size_t length, const char *alphabet)
{
    std::string text;
    if (length == 0)
        return text;
    text.resize((length + 2) / 3 * 4);
    char *out = text.data();
    size_t i = 0;
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
    return text;
}

} // namespace OrvelDialogs::Base64
