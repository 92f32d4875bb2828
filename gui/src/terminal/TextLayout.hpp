// Text laid out in a terminal's cells: measured, wrapped at word boundaries
// and cut to a width. Widths count display cells as terminals draw them
// (terminalCells(): none for combining marks, two for East Asian wide
// characters and emoji, two where the width is not known) and none for our
// own escape sequences (bold, dim, reverse). Outside text reaches these only
// through VisibleText (see TerminalText.hpp), so it holds no control
// character that could steer the terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace OrvelGui {

std::size_t displayWidth(std::string_view text);

// One line (no line feed) broken into rows of at most `width` cells, at the
// spaces between words; a word wider than a row is broken inside. The spaces
// where a row ends are dropped, the others (such as the columns of a hex dump)
// kept. An empty line gives one empty row. A style (bold, dim, reverse) that
// is on where a row ends is switched off there and on again on the next row,
// so that each row can be drawn alone.
std::vector<std::string> wrapLine(const std::string &line, std::size_t width);

// The text cut to `width` cells, with "…" in place of what did not fit.
std::string fitWidth(const std::string &text, std::size_t width);
// The end of the text that fits in `width` cells, after a "…" when cut (for an
// input line, where the cursor is at the end).
std::string fitWidthFromEnd(const std::string &text, std::size_t width);

} // namespace OrvelGui
