#include "terminal/TerminalText.hpp"

namespace OrvelGui {

std::string bold(const std::string &text)
{
    return kBold + text + kNormal;
}

std::string label(const char *text)
{
    return bold(std::string(text) + ":");
}

std::string styled(const VisibleText &text)
{
    std::string out;
    out.reserve(text.text.size() + text.marks.size() * 10);
    forEachPiece(text, [&](std::string_view piece, bool mark) {
        if (mark)
            out += kMarkOn;
        for (const char c : piece)
            out.push_back(c == '\t' ? ' ' : c);
        if (mark)
            out += kMarkOff;
    });
    return out;
}

std::string oneLine(std::string_view outside)
{
    return styled(visibleText(outside, LineBreaks::Mark));
}

void addLines(Lines &lines, const VisibleText &text)
{
    const std::string all = styled(text);
    std::size_t start = 0;
    for (;;) {
        const std::size_t end = all.find('\n', start);
        if (end == std::string::npos) {
            lines.push_back(all.substr(start));
            return;
        }
        lines.push_back(all.substr(start, end - start));
        start = end + 1;
    }
}

void addHiddenWarning(Lines &lines, const Texts &t, std::size_t hiddenCharacters)
{
    if (hiddenCharacters > 0)
        lines.push_back(bold(fill(t.hiddenCharacters, {std::to_string(hiddenCharacters)})));
}

} // namespace OrvelGui
