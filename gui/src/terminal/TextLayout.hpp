// Text laid out in a terminal's cells: made safe to print, measured, wrapped
// at word boundaries and cut to a width. Widths count display cells: one for
// most characters, none for combining marks and for our own escape sequences
// (bold, reverse), two for East Asian wide characters.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace OrvelGui {

// Text from outside made safe to print: invalid UTF-8 and control characters
// (which could steer the terminal) become "?", a tab a space.
std::string printable(const std::string &text);

std::size_t displayWidth(std::string_view text);

// One line (no line feed) broken into rows of at most `width` cells, at the
// spaces between words; a word wider than a row is broken inside. The spaces
// where a row ends are dropped, the others (such as the columns of a hex dump)
// kept. An empty line gives one empty row.
std::vector<std::string> wrapLine(const std::string &line, std::size_t width);

// The text cut to `width` cells, with "…" in place of what did not fit.
std::string fitWidth(const std::string &text, std::size_t width);
// The end of the text that fits in `width` cells, after a "…" when cut (for an
// input line, where the cursor is at the end).
std::string fitWidthFromEnd(const std::string &text, std::size_t width);

} // namespace OrvelGui
