// The layout every terminal window shares: the title on the first row, the
// hint and the input line at the bottom, the text between them (it scrolls
// when it does not fit, with its position under it) and the items to choose
// from. Laid out anew for the terminal's size at each draw; no row is ever
// wider than the terminal.
#pragma once

#include "common/Texts.hpp"
#include "terminal/TerminalText.hpp"

#include <cstddef>
#include <string>

namespace OrvelGui {

inline constexpr std::size_t kNone = static_cast<std::size_t>(-1);

struct Page {
    std::string title;
    Lines text; // styled lines (TerminalText.hpp), wrapped at draw time
    // The first lines of the text that the first screen always shows (the
    // label, the warnings and the first line of the data), even when the
    // items must scroll for them.
    std::size_t keepLines = 0;
    Lines items; // an item may hold line feeds: rows of its own
    std::size_t selected = 0;
    std::size_t locked = kNone; // an item shown but not choosable yet
    // A list (files, certificates) scrolls itself and keeps the text to at
    // most half the rows; answers keep their rows and the text scrolls.
    bool list = false;
    std::string hint;       // when the text fits
    std::string scrollHint; // when it does not
    bool input = false;
    std::string prompt;
    std::string typed; // styled, or masked
};

struct Scroll {
    std::size_t top = 0;   // first text row shown
    std::size_t rows = 0;  // text rows in all, as last laid out
    std::size_t shown = 0; // text rows on screen
    bool seenEnd = false;  // every text row has been on screen
    std::size_t listTop = 0;
    std::size_t listShown = 1;
    bool fits() const { return rows <= shown; }
};

// The bytes that draw the page on a terminal of `rows` by `columns`; updates
// the scroll state (what is shown, whether the end has been seen).
std::string layOutPage(const Page &page, Scroll &scroll, int rows, int columns, const Texts &t);

} // namespace OrvelGui
