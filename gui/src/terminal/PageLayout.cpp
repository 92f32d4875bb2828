#include "terminal/PageLayout.hpp"

#include "terminal/TextLayout.hpp"

#include <algorithm>
#include <iterator>

namespace OrvelGui {
namespace {

// Below this many rows the blank rows around the text are left out.
constexpr int kRoomyRows = 16;
// Autowrap off while drawing: should a terminal draw a character wider than
// it was measured, the row is cut at the edge instead of spilling over and
// scrolling the screen.
constexpr const char *kDrawStart = "\x1b[?7l\x1b[H\x1b[2J";
constexpr const char *kDrawEnd = "\x1b[?7h";

std::vector<std::string> wrapAll(const Lines &lines, std::size_t width, std::size_t keepLines, std::size_t &keepRows)
{
    std::vector<std::string> rows;
    keepRows = 0;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        auto wrapped = wrapLine(lines[i], width);
        rows.insert(rows.end(), std::make_move_iterator(wrapped.begin()), std::make_move_iterator(wrapped.end()));
        if (i + 1 == keepLines)
            keepRows = rows.size();
    }
    return rows;
}

// A marker in the selected item, which is all reverse video, is drawn the
// other way round.
std::string invertMarks(const std::string &item)
{
    std::string out;
    out.reserve(item.size());
    for (std::size_t i = 0; i < item.size();) {
        if (item.compare(i, kMarkOn.size(), kMarkOn) == 0) {
            out += kMarkOff;
            i += kMarkOn.size();
        } else if (item.compare(i, kMarkOff.size(), kMarkOff) == 0) {
            out += kMarkOn;
            i += kMarkOff.size();
        } else {
            out.push_back(item[i++]);
        }
    }
    return out;
}

// Each item wrapped under its number: "> " marks (and reverse video shows)
// the selected one, a locked one is dim and says why.
std::vector<std::vector<std::string>> wrapItems(const Page &page, const char *lockedNote, std::size_t width)
{
    std::vector<std::vector<std::string>> itemRows;
    for (std::size_t i = 0; i < page.items.size(); ++i) {
        const bool selected = i == page.selected;
        const std::string number = i < 9 ? std::to_string(i + 1) + ". " : "   ";
        std::string item = page.items[i];
        if (i == page.locked)
            item += std::string(" ") + lockedNote;
        if (selected)
            item = invertMarks(item);
        const char *style = selected ? kReverse : i == page.locked ? kDim : "";
        std::vector<std::string> rows;
        std::size_t start = 0;
        for (bool first = true;; first = false) {
            const std::size_t end = std::min(item.find('\n', start), item.size());
            auto wrapped = wrapLine((first ? number : "   ") + item.substr(start, end - start), width - 2);
            rows.insert(rows.end(), std::make_move_iterator(wrapped.begin()), std::make_move_iterator(wrapped.end()));
            if (end == item.size())
                break;
            start = end + 1;
        }
        for (std::size_t r = 0; r < rows.size(); ++r)
            rows[r] = style + std::string(r == 0 && selected ? "> " : "  ") + rows[r] + (*style ? kNormal : "");
        itemRows.push_back(std::move(rows));
    }
    return itemRows;
}

} // namespace

std::string layOutPage(const Page &page, Scroll &scroll, int terminalRows, int terminalColumns, const Texts &t)
{
    const int height = std::max(terminalRows, 3);
    const std::size_t width = static_cast<std::size_t>(std::max(terminalColumns, 10));
    const bool roomy = height >= kRoomyRows;

    const std::vector<std::vector<std::string>> itemRows = wrapItems(page, t.signLocked, width);
    std::size_t itemsNeeded = 0;
    for (const auto &rows : itemRows)
        itemsNeeded += rows.size();

    std::size_t keepRows = 0;
    const std::vector<std::string> textRows = wrapAll(page.text, width, page.keepLines, keepRows);
    scroll.rows = textRows.size();
    const auto layOut = [&](const std::string &hint, std::vector<std::string> &bottom, std::size_t &textRoom,
                            std::size_t &itemRoom) {
        bottom = wrapLine(hint, width);
        if (page.input) {
            const std::size_t promptCells = std::min(displayWidth(page.prompt), width - 4);
            bottom.insert(bottom.begin(), bold(fitWidth(page.prompt, promptCells)) +
                                              fitWidthFromEnd(page.typed, width - promptCells - 1) + kNormal);
        }
        const int spacing = roomy ? (page.items.empty() ? 2 : 3) : 0; // the blank rows below
        const int room = std::max(height - 1 - static_cast<int>(bottom.size()) - spacing, 1);
        const auto total = static_cast<std::size_t>(room);
        if (page.items.empty()) {
            textRoom = total;
            itemRoom = 0;
        } else if (page.list) {
            textRoom = std::min(textRows.size(), std::max<std::size_t>(total / 2, 1));
            itemRoom = std::max<std::size_t>(total - std::min(textRoom, total), 1);
        } else {
            itemRoom = std::min(itemsNeeded, total > 1 ? total - 1 : 1);
            textRoom = std::max<std::size_t>(total - std::min(itemRoom, total), 1);
            // The kept lines and the position under them come first; the
            // items scroll in what is left.
            const std::size_t wanted = textRows.size() > textRoom ? keepRows + 1 : keepRows;
            if (textRoom < wanted && total > 1) {
                textRoom = std::min(wanted, total - 1);
                itemRoom = total - textRoom;
            }
        }
    };
    std::vector<std::string> bottom;
    std::size_t textRoom = 0;
    std::size_t itemRoom = 0;
    layOut(page.hint, bottom, textRoom, itemRoom);
    const bool fits = textRows.size() <= textRoom;
    if (!fits && !page.list && !page.scrollHint.empty())
        layOut(page.scrollHint, bottom, textRoom, itemRoom);

    // The text: a window onto its rows, with the position on its last row
    // when it does not fit. A list's text is cut instead (it holds the
    // window's prompt, not content to read through).
    std::vector<std::string> screen = {fitWidth(bold(page.title), width) + kNormal};
    if (roomy)
        screen.emplace_back();
    if (textRows.size() <= textRoom) {
        scroll.shown = textRows.size();
        scroll.top = 0;
        screen.insert(screen.end(), textRows.begin(), textRows.end());
    } else if (page.list) {
        scroll.shown = textRoom;
        scroll.top = 0;
        screen.insert(screen.end(), textRows.begin(), textRows.begin() + static_cast<long>(textRoom - 1));
        screen.emplace_back("…");
    } else {
        scroll.shown = std::max<std::size_t>(textRoom - 1, 1);
        scroll.top = std::min(scroll.top, textRows.size() - scroll.shown);
        for (std::size_t r = scroll.top; r < scroll.top + scroll.shown; ++r)
            screen.push_back(textRows[r]);
        if (textRoom > 1)
            screen.push_back(kDim +
                             fitWidth(fill(t.scrollPosition, {std::to_string(scroll.top + 1),
                                                              std::to_string(scroll.top + scroll.shown),
                                                              std::to_string(textRows.size())}),
                                      width) +
                             kNormal);
    }
    if (scroll.top + scroll.shown >= textRows.size())
        scroll.seenEnd = true;

    // The items from listTop on, as many as fit, the selected one among them.
    if (!page.items.empty()) {
        if (roomy)
            screen.emplace_back();
        const std::size_t selected = std::min(page.selected, itemRows.size() - 1);
        scroll.listTop = std::min(scroll.listTop, selected);
        const auto rowsFrom = [&](std::size_t first, std::size_t last) {
            std::size_t rows = 0;
            for (std::size_t i = first; i <= last; ++i)
                rows += itemRows[i].size();
            return rows;
        };
        while (scroll.listTop < selected && rowsFrom(scroll.listTop, selected) > itemRoom)
            ++scroll.listTop;
        std::size_t used = 0;
        std::size_t shownItems = 0;
        for (std::size_t i = scroll.listTop; i < itemRows.size(); ++i) {
            for (const auto &row : itemRows[i]) {
                if (used == itemRoom)
                    break;
                screen.push_back(row);
                ++used;
            }
            if (used == itemRoom && i != itemRows.size() - 1) {
                // Show that more follow on the last row of the list.
                if (i > selected)
                    screen.back() = "  …";
                ++shownItems;
                break;
            }
            ++shownItems;
        }
        scroll.listShown = std::max<std::size_t>(shownItems, 2) - 1;
    }
    if (roomy)
        screen.emplace_back();
    screen.insert(screen.end(), bottom.begin(), bottom.end());
    if (screen.size() > static_cast<std::size_t>(height))
        screen.resize(static_cast<std::size_t>(height));

    std::string out = kDrawStart;
    for (std::size_t i = 0; i < screen.size(); ++i) {
        if (i)
            out += "\r\n";
        out += screen[i];
    }
    out += kDrawEnd;
    out += page.input ? "\x1b[?25h" : "\x1b[?25l";
    return out;
}

} // namespace OrvelGui
