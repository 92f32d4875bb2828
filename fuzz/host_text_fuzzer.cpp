// The strict UTF-8 reading of host texts. isValidUtf8 is checked against a
// decoder written apart from it (code points, not byte ranges), and the
// conversions that build on it against each other.
#include "FuzzCheck.hpp"

#include "platform/HostText.hpp"

namespace {

using namespace OrvelDialogs::Platform;

// Decodes every sequence to its code point and refuses overlong forms,
// surrogates and anything above U+10FFFF.
bool decodesStrictly(std::string_view bytes)
{
    static constexpr uint32_t kShortest[] = {0, 0, 0x80, 0x800, 0x10000};
    size_t i = 0;
    while (i < bytes.size()) {
        const auto lead = static_cast<unsigned char>(bytes[i]);
        size_t length;
        uint32_t point;
        if (lead < 0x80) {
            length = 1;
            point = lead;
        } else if ((lead & 0xE0) == 0xC0) {
            length = 2;
            point = lead & 0x1F;
        } else if ((lead & 0xF0) == 0xE0) {
            length = 3;
            point = lead & 0x0F;
        } else if ((lead & 0xF8) == 0xF0) {
            length = 4;
            point = lead & 0x07;
        } else {
            return false;
        }
        if (bytes.size() - i < length)
            return false;
        for (size_t k = 1; k < length; ++k) {
            const auto next = static_cast<unsigned char>(bytes[i + k]);
            if ((next & 0xC0) != 0x80)
                return false;
            point = point << 6 | (next & 0x3F);
        }
        if (point < kShortest[length] || (point >= 0xD800 && point <= 0xDFFF) || point > 0x10FFFF)
            return false;
        i += length;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string bytes = OrvelFuzz::bytesOf(data, size);
    const bool valid = isValidUtf8(bytes);
    FUZZ_CHECK(valid == decodesStrictly(bytes));

    const auto text = textFromBytes(bytes);
    FUZZ_CHECK(text.has_value() == valid);
    FUZZ_CHECK(!text || *text == bytes);

    // A host text is the bytes up to the first zero byte.
    const std::string hostBytes = bytes.substr(0, bytes.find('\0'));
    const auto hostText = textFromHost(hostBytes.c_str());
    FUZZ_CHECK(hostText.has_value() == decodesStrictly(hostBytes));
    FUZZ_CHECK(!hostText || *hostText == hostBytes);
    FUZZ_CHECK(!textFromHost(nullptr));

    // For the log: always text, the bytes themselves when they are text, and
    // a second pass changes nothing.
    const std::string replaced = textReplacingInvalidUtf8(bytes);
    FUZZ_CHECK(decodesStrictly(replaced));
    FUZZ_CHECK(valid ? replaced == bytes : replaced.find("\xEF\xBF\xBD") != std::string::npos);
    FUZZ_CHECK(textReplacingInvalidUtf8(replaced) == replaced);
    FUZZ_CHECK(replaced.size() <= 3 * bytes.size());
    return 0;
}
