// The kit's pieces that take keys: a menu of items under a text, a line of
// text input, and a text to read through. Each draws its page through the
// console at every key and at every change of the terminal's size.
#pragma once

#include "terminal/Console.hpp"
#include "terminal/PageLayout.hpp"

#include <optional>
#include <string>

namespace OrvelGui {

enum class MenuAction { Chosen, Cancelled, Details };
struct MenuResult {
    MenuAction action;
    std::size_t index;
};

// Up/Down (Left/Right, Tab, Home/End, PageUp/PageDown) or a digit move the
// choice, Enter takes it, Escape cancels, D asks for details (`details`).
// Below a text that does not fit, Up/Down and the page keys scroll the text.
// A locked item becomes choosable once the end of the text has been seen.
MenuResult runMenu(Console &console, Page page, Scroll &scroll, bool details = false);

// A line of text under the page; nothing when cancelled. `secret` shows "*"
// for each character.
std::optional<std::string> readLine(Console &console, Page page, const std::string &prompt, std::string text,
                                    bool secret = false);

// Shows the text until Enter or Escape; false when the terminal or the host
// is gone.
bool viewText(Console &console, const std::string &title, const Lines &text);

// Moves the text for a scrolling key; false when the key is not one.
bool scrollText(const Key &key, Scroll &scroll, bool arrows);
// Draws the page and reads keys until one that does not scroll its text.
Key readKeyScrolling(Console &console, const Page &page, Scroll &scroll);

} // namespace OrvelGui
