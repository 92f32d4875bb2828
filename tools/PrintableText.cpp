#include "PrintableText.hpp"

#include "common/SignedData.hpp"

#include <cstdio>

namespace OrvelTool {
namespace {

std::string hexEscape(const char *format, unsigned value)
{
    char buffer[8];
    std::snprintf(buffer, sizeof buffer, format, value);
    return buffer;
}

} // namespace

std::string escapeForTerminal(std::string_view text)
{
    std::string out;
    out.reserve(text.size());
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = OrvelGui::utf8SequenceLength(text, at);
        if (length == 0) {
            out += hexEscape("\\x%02X", byte(at));
            ++at;
            continue;
        }
        const unsigned char lead = byte(at);
        if (length == 1 && ((lead < 0x20 && lead != '\t' && lead != '\n') || lead == 0x7F))
            out += hexEscape("\\x%02X", lead);
        else if (length == 2 && lead == 0xC2 && byte(at + 1) < 0xA0) // C1: U+0080 to U+009F
            out += hexEscape("\\u%04X", byte(at + 1));
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
