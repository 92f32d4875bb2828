// The Base64 alphabet (RFC 4648, section 4) and the encoder that both Base64
// codecs of the library share; their decoders differ and stay apart.
#pragma once

#include <array>
#include <cstddef>
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

// Encodes with the 64 characters at `alphabet` and "=" padding, no line
// breaks: 4 * ceil(length / 3) characters.
std::string encode(const unsigned char *bytes, size_t length, const char *alphabet);

} // namespace OrvelDialogs::Base64
