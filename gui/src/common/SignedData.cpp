#include "common/SignedData.hpp"

#include "common/VisibleText.hpp"

namespace OrvelGui {

std::size_t utf8SequenceLength(std::string_view bytes, std::size_t i)
{
    const auto lead = static_cast<unsigned char>(bytes[i]);
    std::size_t length = 0;
    unsigned char low = 0x80;
    unsigned char high = 0xBF;
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        length = 2;
    else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        low = lead == 0xE0 ? 0xA0 : 0x80;
        high = lead == 0xED ? 0x9F : 0xBF;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        low = lead == 0xF0 ? 0x90 : 0x80;
        high = lead == 0xF4 ? 0x8F : 0xBF;
    } else
        return 0;
    if (i + length > bytes.size())
        return 0;
    for (std::size_t k = 1; k < length; ++k) {
        const auto b = static_cast<unsigned char>(bytes[i + k]);
        if (b < (k == 1 ? low : 0x80) || b > (k == 1 ? high : 0xBF))
            return 0;
    }
    return length;
}

bool isUtf8(std::string_view bytes)
{
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t length = utf8SequenceLength(bytes, i);
        if (length == 0)
            return false;
        i += length;
    }
    return true;
}

std::string hexDump(std::string_view bytes)
{
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string out;
    out.reserve(bytes.size() / 16 * 79 + 79);
    for (std::size_t line = 0; line < bytes.size(); line += 16) {
        for (int shift = 28; shift >= 0; shift -= 4)
            out.push_back(kDigits[(line >> shift) & 0xF]);
        out += "  ";
        for (std::size_t k = 0; k < 16; ++k) {
            if (line + k < bytes.size()) {
                const auto b = static_cast<unsigned char>(bytes[line + k]);
                out.push_back(kDigits[b >> 4]);
                out.push_back(kDigits[b & 0xF]);
            } else {
                out += "  ";
            }
            out.push_back(' ');
            if (k == 7)
                out.push_back(' '); // two halves of eight, as hexdump -C
        }
        out.push_back('|');
        for (std::size_t k = 0; k < 16 && line + k < bytes.size(); ++k) {
            const auto b = static_cast<unsigned char>(bytes[line + k]);
            out.push_back(b >= 0x20 && b < 0x7F ? static_cast<char>(b) : '.');
        }
        out += "|\n";
    }
    return out;
}

bool nothingToSign(std::string_view data, const std::optional<RtfText> &formatted)
{
    return showsNothing(data) && (!formatted || showsNothing(formatted->text));
}

SignedDataView viewSignedData(std::string_view bytes)
{
    if (isUtf8(bytes))
        return {true, std::string(bytes)};
    return {false, hexDump(bytes)};
}

} // namespace OrvelGui
