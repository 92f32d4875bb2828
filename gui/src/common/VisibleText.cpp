#include "common/VisibleText.hpp"

#include "common/SignedData.hpp"

#include <utf8proc.h>

namespace OrvelGui {
namespace {

// Variation selectors change how the character before them is drawn and are
// not seen themselves; Unicode files them as combining marks (Mn), so they
// are named here: the Mongolian free variation selectors, VS1 to VS16 and the
// supplement VS17 to VS256.
bool isVariationSelector(char32_t c)
{
    return (c >= 0x180B && c <= 0x180D) || c == 0x180F || (c >= 0xFE00 && c <= 0xFE0F) ||
           (c >= 0xE0100 && c <= 0xE01EF);
}

bool isHidden(char32_t c)
{
    if (c < 0x20 || (c >= 0x7F && c <= 0x9F))
        return true;
    switch (utf8proc_category(static_cast<utf8proc_int32_t>(c))) {
    case UTF8PROC_CATEGORY_CF: // format: bidi controls, zero-width characters, tags, ...
    case UTF8PROC_CATEGORY_CO: // private use
    case UTF8PROC_CATEGORY_CN: // unassigned, noncharacters
    case UTF8PROC_CATEGORY_ZL: // U+2028
    case UTF8PROC_CATEGORY_ZP: // U+2029
        return true;
    default:
        return isVariationSelector(c);
    }
}

constexpr char kOpen[] = "\xE2\x9F\xA8";  // ⟨
constexpr char kClose[] = "\xE2\x9F\xA9"; // ⟩

} // namespace

char32_t decodeUtf8(std::string_view text, std::size_t i, std::size_t length)
{
    static constexpr unsigned char kLeadMask[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    char32_t value = static_cast<unsigned char>(text[i]) & kLeadMask[length];
    for (std::size_t k = 1; k < length; ++k)
        value = (value << 6) | (static_cast<unsigned char>(text[i + k]) & 0x3F);
    return value;
}

void VisibleTextBuilder::mark(std::size_t begin)
{
    std::vector<TextSpan> &marks = result_.marks;
    if (!marks.empty() && marks.back().end == begin)
        marks.back().end = result_.text.size();
    else
        marks.push_back({begin, result_.text.size()});
}

void VisibleTextBuilder::marker(const char *prefix, unsigned value, int digits)
{
    static constexpr char kHex[] = "0123456789ABCDEF";
    const std::size_t begin = result_.text.size();
    std::string &out = result_.text;
    out += kOpen;
    out += prefix;
    int shown = digits;
    while (shown < 6 && (value >> (4 * shown)) != 0)
        ++shown;
    for (int k = shown - 1; k >= 0; --k)
        out.push_back(kHex[(value >> (4 * k)) & 0xF]);
    out += kClose;
    mark(begin);
    ++result_.hiddenCharacters;
}

void VisibleTextBuilder::append(std::string_view outside, LineBreaks breaks)
{
    std::string &out = result_.text;
    out.reserve(out.size() + outside.size());
    const bool keepBreaks = breaks == LineBreaks::Keep;
    std::size_t i = 0;
    while (i < outside.size()) {
        // Printable ASCII, the bulk of most texts, is copied in one piece.
        std::size_t plain = i;
        while (plain < outside.size()) {
            const auto byte = static_cast<unsigned char>(outside[plain]);
            if (!((byte >= 0x20 && byte < 0x7F) || (keepBreaks && (byte == '\n' || byte == '\t'))))
                break;
            ++plain;
        }
        out.append(outside.data() + i, plain - i);
        i = plain;
        if (i == outside.size())
            break;
        const std::size_t length = utf8SequenceLength(outside, i);
        if (length == 0) {
            marker("0x", static_cast<unsigned char>(outside[i]), 2);
            ++i;
            continue;
        }
        const char32_t c = decodeUtf8(outside, i, length);
        if (c == '\r' && keepBreaks && i + 1 < outside.size() && outside[i + 1] == '\n') {
            ++i; // the line feed follows as it is
            continue;
        }
        if (isHidden(c))
            marker("U+", static_cast<unsigned>(c), 4);
        else
            out.append(outside.data() + i, length);
        i += length;
    }
}

void VisibleTextBuilder::append(const VisibleText &visible)
{
    const std::size_t offset = result_.text.size();
    result_.text += visible.text;
    for (const TextSpan &span : visible.marks) {
        if (!result_.marks.empty() && result_.marks.back().end == span.begin + offset)
            result_.marks.back().end = span.end + offset;
        else
            result_.marks.push_back({span.begin + offset, span.end + offset});
    }
    result_.hiddenCharacters += visible.hiddenCharacters;
}

void VisibleTextBuilder::appendOwn(std::string_view own)
{
    result_.text.append(own);
}

void VisibleTextBuilder::appendNote(std::string_view own)
{
    const std::size_t begin = result_.text.size();
    result_.text.append(own);
    if (!own.empty())
        mark(begin);
}

VisibleText visibleText(std::string_view outside, LineBreaks breaks)
{
    VisibleTextBuilder builder;
    builder.append(outside, breaks);
    return builder.take();
}

std::string offeredAsShown(std::string_view outside)
{
    return visibleText(outside, LineBreaks::Mark).text;
}

VisibleText fillVisible(std::string_view pattern, std::initializer_list<std::string_view> outside)
{
    VisibleTextBuilder builder;
    auto next = outside.begin();
    for (std::size_t at = 0;;) {
        const std::size_t slot = pattern.find("{}", at);
        if (slot == std::string_view::npos || next == outside.end()) {
            builder.appendOwn(pattern.substr(at));
            break;
        }
        builder.appendOwn(pattern.substr(at, slot - at));
        builder.append(*next++, LineBreaks::Mark);
        at = slot + 2;
    }
    return builder.take();
}

bool showsNothing(std::string_view text)
{
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = utf8SequenceLength(text, i);
        if (length == 0)
            return false;
        const char32_t c = decodeUtf8(text, i, length);
        const auto category = utf8proc_category(static_cast<utf8proc_int32_t>(c));
        const bool space = (c >= '\t' && c <= '\r') || c == 0x85 || category == UTF8PROC_CATEGORY_ZS ||
                           category == UTF8PROC_CATEGORY_ZL || category == UTF8PROC_CATEGORY_ZP;
        if (!space)
            return false;
        i += length;
    }
    return true;
}

std::size_t terminalCells(char32_t c)
{
    const utf8proc_property_t *property = utf8proc_get_property(static_cast<utf8proc_int32_t>(c));
    if (property->category == UTF8PROC_CATEGORY_MN || property->category == UTF8PROC_CATEGORY_ME)
        return 0;
    // Regional indicators: one cell or two, as the terminal sees fit.
    if (property->boundclass == UTF8PROC_BOUNDCLASS_REGIONAL_INDICATOR)
        return 2;
    const int width = utf8proc_charwidth(static_cast<utf8proc_int32_t>(c));
    return width == 1 ? 1 : 2;
}

} // namespace OrvelGui
