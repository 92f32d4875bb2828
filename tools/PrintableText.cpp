#include "PrintableText.hpp"

#include <cstdio>

namespace OrvelTool {
namespace {

// The length of the well-formed UTF-8 sequence at `at` (no overlong forms, no
// surrogates, nothing above U+10FFFF), or 0; `codePoint` gets its value.
std::size_t sequenceAt(std::string_view text, std::size_t at, char32_t &codePoint)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[at + i]); };
    const unsigned char lead = byte(0);
    std::size_t length = 0;
    char32_t minimum = 0;
    if (lead < 0x80) {
        codePoint = lead;
        return 1;
    }
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        codePoint = lead & 0x1F;
        minimum = 0x80;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        codePoint = lead & 0x0F;
        minimum = 0x800;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        codePoint = lead & 0x07;
        minimum = 0x10000;
    } else {
        return 0;
    }
    if (at + length > text.size())
        return 0;
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0) != 0x80)
            return 0;
        codePoint = (codePoint << 6) | (byte(i) & 0x3F);
    }
    if (codePoint < minimum || codePoint > 0x10FFFF || (codePoint >= 0xD800 && codePoint <= 0xDFFF))
        return 0;
    return length;
}

std::string hexEscape(const char *format, unsigned value)
{
    char buffer[8];
    std::snprintf(buffer, sizeof buffer, format, value);
    return buffer;
}

} // namespace

bool isValidUtf8(std::string_view text)
{
    char32_t codePoint = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = sequenceAt(text, at, codePoint);
        if (length == 0)
            return false;
        at += length;
    }
    return true;
}

std::string escapeForTerminal(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    char32_t codePoint = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = sequenceAt(text, at, codePoint);
        if (length == 0) {
            out += hexEscape("\\x%02X", static_cast<unsigned char>(text[at]));
            ++at;
            continue;
        }
        if ((codePoint < 0x20 && codePoint != '\t' && codePoint != '\n') || codePoint == 0x7F)
            out += hexEscape("\\x%02X", static_cast<unsigned>(codePoint));
        else if (codePoint >= 0x80 && codePoint <= 0x9F)
            out += hexEscape("\\u%04X", static_cast<unsigned>(codePoint));
        else
            out.append(text.substr(at, length));
        at += length;
    }
    return out;
}

std::string jsonString(std::string_view text)
{
    std::string out = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            out += '\\';
            out += c;
        } else if (c == '\n' || c == '\t' || c == '\r') {
            out += c == '\n' ? "\\n" : c == '\t' ? "\\t" : "\\r";
        } else if (static_cast<unsigned char>(c) < 0x20) {
            out += hexEscape("\\u%04x", static_cast<unsigned char>(c));
        } else {
            out += c;
        }
    }
    return out + "\"";
}

} // namespace OrvelTool
