#include "terminal/TextLayout.hpp"

#include "common/SignedData.hpp"

#include <algorithm>

namespace OrvelGui {
namespace {

char32_t codePoint(std::string_view text, std::size_t i, std::size_t length)
{
    static constexpr unsigned char kLeadMask[] = {0, 0x7F, 0x1F, 0x0F, 0x07};
    char32_t value = static_cast<unsigned char>(text[i]) & kLeadMask[length];
    for (std::size_t k = 1; k < length; ++k)
        value = (value << 6) | (static_cast<unsigned char>(text[i + k]) & 0x3F);
    return value;
}

// Cells of one character. The common ranges only; enough for Latin,
// Cyrillic, Greek and the usual East Asian text.
std::size_t cellsOf(char32_t c)
{
    if ((c >= 0x300 && c <= 0x36F) || (c >= 0x200B && c <= 0x200F) || (c >= 0xFE00 && c <= 0xFE0F))
        return 0;
    if ((c >= 0x1100 && c <= 0x115F) || (c >= 0x2E80 && c <= 0xA4CF) || (c >= 0xAC00 && c <= 0xD7A3) ||
        (c >= 0xF900 && c <= 0xFAFF) || (c >= 0xFE30 && c <= 0xFE4F) || (c >= 0xFF00 && c <= 0xFF60) ||
        (c >= 0xFFE0 && c <= 0xFFE6) || (c >= 0x1F300 && c <= 0x1F64F) || (c >= 0x1F900 && c <= 0x1F9FF) ||
        (c >= 0x20000 && c <= 0x3FFFD))
        return 2;
    return 1;
}

// One step through laid-out text: the bytes of the next character or escape
// sequence at text[i], and its cells.
struct Piece {
    std::size_t length;
    std::size_t cells;
};

Piece pieceAt(std::string_view text, std::size_t i)
{
    if (text[i] == '\x1b') {
        std::size_t end = i + 1;
        if (end < text.size() && text[end] == '[') {
            ++end;
            while (end < text.size() && !(text[end] >= 0x40 && text[end] <= 0x7E))
                ++end;
            if (end < text.size())
                ++end;
        }
        return {end - i, 0};
    }
    const std::size_t length = utf8SequenceLength(text, i);
    if (length == 0)
        return {1, 1}; // printed as one replacement
    return {length, cellsOf(codePoint(text, i, length))};
}

} // namespace

std::string printable(const std::string &text)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t length = utf8SequenceLength(text, i);
        if (length == 0) {
            out.push_back('?');
            ++i;
            continue;
        }
        const auto lead = static_cast<unsigned char>(text[i]);
        const bool c1 = lead == 0xC2 && static_cast<unsigned char>(text[i + 1]) < 0xA0;
        if (lead == '\t')
            out.push_back(' ');
        else if (lead < 0x20 || lead == 0x7F || c1)
            out.push_back('?');
        else
            out.append(text, i, length);
        i += length;
    }
    return out;
}

std::size_t displayWidth(std::string_view text)
{
    std::size_t cells = 0;
    for (std::size_t i = 0; i < text.size();) {
        const Piece piece = pieceAt(text, i);
        cells += piece.cells;
        i += piece.length;
    }
    return cells;
}

std::vector<std::string> wrapLine(const std::string &line, std::size_t width)
{
    if (width == 0)
        width = 1;
    std::vector<std::string> rows;
    std::string row;
    std::size_t rowCells = 0;
    std::size_t i = 0;
    const auto endRow = [&] {
        rows.push_back(row);
        row.clear();
        rowCells = 0;
    };
    while (i < line.size()) {
        // The spaces before the next word, then the word.
        const std::size_t wordStart = std::min(line.find_first_not_of(' ', i), line.size());
        const std::size_t spaces = wordStart - i;
        const std::size_t wordEnd = std::min(line.find(' ', wordStart), line.size());
        const std::string_view word(line.data() + wordStart, wordEnd - wordStart);
        const std::size_t wordCells = displayWidth(word);
        i = wordEnd;
        if (rowCells + spaces + wordCells <= width) {
            row.append(spaces, ' ');
            row.append(word);
            rowCells += spaces + wordCells;
            continue;
        }
        if (rowCells > 0 && wordCells <= width) {
            endRow();
            row.append(word);
            rowCells = wordCells;
            continue;
        }
        // Wider than a row: fill the rest of this row, then whole rows.
        if (rowCells > 0 && rowCells + 1 < width) {
            row.push_back(' ');
            ++rowCells;
        } else if (rowCells > 0) {
            endRow();
        }
        for (std::size_t k = 0; k < word.size();) {
            const Piece piece = pieceAt(word, k);
            if (rowCells + piece.cells > width)
                endRow();
            row.append(word.substr(k, piece.length));
            rowCells += piece.cells;
            k += piece.length;
        }
    }
    endRow();
    return rows;
}

std::string fitWidth(const std::string &text, std::size_t width)
{
    if (displayWidth(text) <= width)
        return text;
    std::string out;
    std::size_t cells = 0;
    for (std::size_t i = 0; i < text.size();) {
        const Piece piece = pieceAt(text, i);
        if (cells + piece.cells + 1 > width)
            break;
        out.append(text, i, piece.length);
        cells += piece.cells;
        i += piece.length;
    }
    return out + (width > 0 ? "…" : "");
}

std::string fitWidthFromEnd(const std::string &text, std::size_t width)
{
    if (displayWidth(text) <= width)
        return text;
    std::size_t cells = 0;
    std::size_t start = text.size();
    // Walk back to the start of each character (UTF-8 continuation bytes
    // belong to the character before them).
    while (start > 0) {
        std::size_t begin = start - 1;
        while (begin > 0 && (static_cast<unsigned char>(text[begin]) & 0xC0) == 0x80)
            --begin;
        const std::size_t pieceCells = pieceAt(text, begin).cells;
        if (cells + pieceCells + 1 > width)
            break;
        cells += pieceCells;
        start = begin;
    }
    return (width > 0 ? "…" : "") + text.substr(start);
}

} // namespace OrvelGui
