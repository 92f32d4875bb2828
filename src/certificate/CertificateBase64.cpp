// The Base64 codec of the certificate list text. Its encoder writes the same
// text as OrvelDialogs::Util's; its decoder is lenient in its own way (it
// skips bytes outside the alphabet and drops a last group that no "=" closes)
// because it also reads the value tokens of the GUI application's replies.
// Util::Base64Decode stops at the first such byte instead, so the two
// decoders are not interchangeable and stay apart.
#include <OrvelGUIDialogs/Certificate.hpp>

#include "certificate/CertificateBase64.hpp"

#include "util/Base64Alphabet.hpp"

#include <string_view>

namespace {

// This codec's own constant copy of the alphabet.
constexpr char kCertificateAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
static_assert(std::string_view(kCertificateAlphabet) == OrvelDialogs::Base64::kAlphabet,
              "both codecs must write the same text");
// The encoder's pairs of characters, made of this codec's alphabet.
constexpr OrvelDialogs::Base64::PairTable kCertificatePairs =
    OrvelDialogs::Base64::pairTable(kCertificateAlphabet);

constexpr int kSkipped = -1;
constexpr int kPadding = -2;

// A byte's value from its range, kPadding for "=", kSkipped for anything else
// (white space, "-", "_", control bytes, bytes above 0x7F).
constexpr int classify(unsigned char c)
{
    if (c >= 'A' && c <= 'Z')
        return c - 'A';
    if (c >= 'a' && c <= 'z')
        return c - 'a' + 26;
    if (c >= '0' && c <= '9')
        return c - '0' + 52;
    if (c == '+')
        return 62;
    if (c == '/')
        return 63;
    if (c == '=')
        return kPadding;
    return kSkipped;
}

void appendByte(std::string &bytes, unsigned value)
{
    bytes.push_back(static_cast<char>(static_cast<unsigned char>(value & 0xFF)));
}

} // namespace

std::string OrvelDialogs::CertificateCodec::encode(std::string_view bytes)
{
    std::string text;
    encodeInto(bytes, text);
    return text;
}

void OrvelDialogs::CertificateCodec::encodeInto(std::string_view bytes, std::string &text)
{
    OrvelDialogs::Base64::encodeInto(reinterpret_cast<const unsigned char *>(bytes.data()), bytes.size(),
                                     kCertificateAlphabet, kCertificatePairs, text);
}

std::string Certificate::dataToBase64String(const std::string &bytes)
{
    return OrvelDialogs::CertificateCodec::encode(bytes);
}

void OrvelDialogs::CertificateCodec::decodeInto(std::string_view text, std::string &bytes)
{
    bytes.clear();
    // Room for the most it can give, a last short group included: it never
    // grows (and leaves no copy behind) while it decodes.
    bytes.reserve((text.size() + 3) / 4 * 3);
    unsigned group[4] = {};
    size_t held = 0;
    for (const char ch : text) {
        const int value = classify(static_cast<unsigned char>(ch));
        if (value == kSkipped)
            continue;
        if (value == kPadding) {
            // The first "=" closes the open group and ends the text.
            if (held == 3) {
                appendByte(bytes, (group[0] << 2) | (group[1] >> 4));
                appendByte(bytes, ((group[1] & 0x0F) << 4) | (group[2] >> 2));
            } else if (held == 2) {
                appendByte(bytes, (group[0] << 2) | (group[1] >> 4));
            } else if (held == 1) {
                // Malformed: one value cannot make a byte. It still gives one,
                // its upper six bits the value and its lower two bits 0, as if
                // a second value of 0 followed.
                appendByte(bytes, group[0] << 2);
            }
            return;
        }
        group[held++] = static_cast<unsigned>(value);
        if (held == 4) {
            appendByte(bytes, (group[0] << 2) | (group[1] >> 4));
            appendByte(bytes, ((group[1] & 0x0F) << 4) | (group[2] >> 2));
            appendByte(bytes, ((group[2] & 0x03) << 6) | group[3]);
            held = 0;
        }
    }
    // A group still open when the text ends without "=" is dropped.
}

std::string Certificate::b64StringToData(const std::string &text)
{
    std::string bytes;
    OrvelDialogs::CertificateCodec::decodeInto(text, bytes);
    return bytes;
}
