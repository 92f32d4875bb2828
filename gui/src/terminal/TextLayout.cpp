#include "terminal/TextLayout.hpp"

#include "common/SignedData.hpp"
#include "common/VisibleText.hpp"

#include <algorithm>

namespace OrvelGui {
namespace {

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
        return {1, 2}; // never there (VisibleText marks such bytes); counted wide
    return {length, terminalCells(decodeUtf8(text, i, length))};
}

// The styles of our escape sequences that are on at a point of a line.
class StyleState {
public:
    // Follows the sequences in `text`.
    void follow(std::string_view text)
    {
        for (std::size_t i = text.find('\x1b'); i != std::string_view::npos; i = text.find('\x1b', i + 1)) {
            if (i + 2 >= text.size() || text[i + 1] != '[')
                continue;
            int code = 0;
            for (std::size_t k = i + 2; k < text.size(); ++k) {
                const char c = text[k];
                if (c >= '0' && c <= '9') {
                    code = code * 10 + (c - '0');
                    continue;
                }
                apply(code);
                code = 0;
                if (c != ';')
                    break;
            }
        }
    }
    bool on() const { return bold_ || dim_ || reverse_; }
    // What switches the styles on again on a new row.
    std::string sequence() const
    {
        std::string out;
        if (bold_)
            out += "\x1b[1m";
        if (dim_)
            out += "\x1b[2m";
        if (reverse_)
            out += "\x1b[7m";
        return out;
    }

private:
    void apply(int code)
    {
        switch (code) {
        case 0:
            bold_ = dim_ = reverse_ = false;
            break;
        case 1:
            bold_ = true;
            break;
        case 2:
            dim_ = true;
            break;
        case 22:
            bold_ = dim_ = false;
            break;
        case 7:
            reverse_ = true;
            break;
        case 27:
            reverse_ = false;
            break;
        default:
            break;
        }
    }

    bool bold_ = false;
    bool dim_ = false;
    bool reverse_ = false;
};

constexpr const char *kReset = "\x1b[0m";

} // namespace

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
    StyleState style;
    const auto endRow = [&] {
        style.follow(row);
        if (style.on())
            row += kReset;
        rows.push_back(std::move(row));
        row = style.sequence();
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
            if (rowCells + piece.cells > width && rowCells > 0)
                endRow();
            row.append(word.substr(k, piece.length));
            rowCells += piece.cells;
            k += piece.length;
        }
    }
    style.follow(row);
    if (style.on())
        row += kReset;
    rows.push_back(std::move(row));
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
    StyleState style;
    style.follow(out);
    if (style.on())
        out += kReset;
    return out + (width > 0 ? "…" : "");
}

std::string fitWidthFromEnd(const std::string &text, std::size_t width)
{
    const std::size_t total = displayWidth(text);
    if (total <= width)
        return text;
    // Drop whole pieces (characters, escape sequences) from the front until
    // the rest and the "…" fit; the styles dropped with them are put back.
    std::size_t cells = total;
    std::size_t start = 0;
    while (start < text.size() && cells + 1 > width) {
        const Piece piece = pieceAt(text, start);
        cells -= piece.cells;
        start += piece.length;
    }
    StyleState style;
    style.follow(std::string_view(text).substr(0, start));
    return (width > 0 ? "…" : "") + style.sequence() + text.substr(start);
}

} // namespace OrvelGui
