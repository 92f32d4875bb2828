#include "protocol/Base64.hpp"

#include <OrvelGUIDialogs/Util.hpp>

#include "util/Base64Alphabet.hpp"

namespace OrvelGui {

std::optional<std::string> decodeBase64Strict(std::string_view text)
{
    if (text.size() % 4 != 0)
        return std::nullopt;
    std::size_t padding = 0;
    while (padding < 3 && padding < text.size() && text[text.size() - 1 - padding] == '=')
        ++padding;
    if (padding > 2)
        return std::nullopt;
    // The library's decoder may take a byte above 0x7F for a letter, as the
    // locale says; this one never does. One pass that the compiler
    // vectorises.
    unsigned char highBits = 0;
    for (const char c : text)
        highBits |= static_cast<unsigned char>(c);
    if ((highBits & 0x80) != 0)
        return std::nullopt;
    // The library's fast decoder stops at the first "=" or byte outside the
    // alphabet, and every earlier stop yields fewer bytes: the text is strict
    // Base64 exactly when all the bytes its length promises come out.
    std::string bytes;
    OrvelDialogs::Base64::appendUtilDecoded(text, bytes);
    if (bytes.size() != text.size() / 4 * 3 - padding)
        return std::nullopt;
    return bytes;
}

std::string encodeBase64(std::string_view bytes)
{
    return OrvelDialogs::Util::Base64Encode(reinterpret_cast<const unsigned char *>(bytes.data()),
                                            static_cast<unsigned int>(bytes.size()));
}

} // namespace OrvelGui
