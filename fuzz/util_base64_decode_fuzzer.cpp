// OrvelDialogs::Util's Base64 decoder, which reads the GUI application's log:
// it stops at the first "=" or byte outside the alphabet, decodes a last
// group without padding, and gives back exactly what the encoder was given.
#include "FuzzCheck.hpp"

#include <OrvelGUIDialogs/Certificate.hpp>
#include <OrvelGUIDialogs/Util.hpp>

#include <algorithm>

using OrvelDialogs::Util;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string text = OrvelFuzz::bytesOf(data, size);
    const std::string decoded = Util::Base64Decode(text);

    // Nothing from the first "=" or byte outside the alphabet on counts.
    size_t usable = 0;
    while (usable < text.size() && text[usable] != '=' && Util::is_base64(static_cast<unsigned char>(text[usable])))
        ++usable;
    FUZZ_CHECK(Util::Base64Decode(text.substr(0, usable)) == decoded);
    // Four characters make three bytes; a last group of n (2 or 3) makes
    // n - 1, a lone character none.
    const size_t rest = usable % 4;
    FUZZ_CHECK(decoded.size() == usable / 4 * 3 + (rest > 1 ? rest - 1 : 0));

    // The same bytes as input to the encoder: they come back, padded or not,
    // and both encoders of the library write the same text.
    if (size > 0xFFFFFFFFu)
        return 0;
    const std::string encoded = Util::Base64Encode(data, static_cast<unsigned>(size));
    FUZZ_CHECK(encoded.size() == (size + 2) / 3 * 4);
    FUZZ_CHECK(encoded == Certificate::dataToBase64String(text));
    FUZZ_CHECK(Util::Base64Decode(encoded) == text);
    std::string unpadded = encoded;
    unpadded.erase(std::find(unpadded.begin(), unpadded.end(), '='), unpadded.end());
    FUZZ_CHECK(Util::Base64Decode(unpadded) == text);
    return 0;
}
