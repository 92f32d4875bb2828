// The certificate list's Base64 decoder, which also reads the value tokens of
// the file and PKCS#12 replies: it skips every byte outside the alphabet,
// stops at the first "=", and gives back exactly what the encoder was given,
// however the text was broken into lines.
#include "FuzzCheck.hpp"

#include <OrvelGUIDialogs/Certificate.hpp>

namespace {

bool inAlphabet(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' || c == '/';
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string text = OrvelFuzz::bytesOf(data, size);
    const std::string decoded = Certificate::b64StringToData(text);

    // Bytes outside the alphabet are skipped, and nothing after the first "="
    // is looked at: the alphabet characters before it decide alone.
    std::string kept;
    bool padded = false;
    for (const char c : text) {
        if (c == '=') {
            padded = true;
            break;
        }
        if (inAlphabet(c))
            kept.push_back(c);
    }
    FUZZ_CHECK(Certificate::b64StringToData(padded ? kept + "=" : kept) == decoded);
    // Without "=" an open last group is dropped; with it, it gives at most two bytes.
    if (padded)
        FUZZ_CHECK(decoded.size() >= kept.size() / 4 * 3 && decoded.size() <= kept.size() / 4 * 3 + 2);
    else
        FUZZ_CHECK(decoded.size() == kept.size() / 4 * 3);

    // The same bytes through the encoder come back, also with line breaks and
    // spaces put in.
    const std::string encoded = Certificate::dataToBase64String(text);
    FUZZ_CHECK(Certificate::b64StringToData(encoded) == text);
    std::string wrapped;
    for (size_t i = 0; i < encoded.size(); i += 76)
        wrapped += encoded.substr(i, 76) + "\r\n ";
    FUZZ_CHECK(Certificate::b64StringToData(wrapped) == text);
    return 0;
}
