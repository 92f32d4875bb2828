// The kit's menu.
#include "terminal/Menu.hpp"

#include <algorithm>

namespace OrvelGui {

MenuResult runMenu(Console &console, Page page, Scroll &scroll, bool details)
{
    const std::size_t count = page.items.size();
    page.hint = details ? console.texts().hintMenuDetails : console.texts().hintMenu;
    page.scrollHint = page.list ? std::string() : console.texts().hintScroll;
    // Steps over the locked item; stays put when there is nowhere to go.
    const auto move = [&](std::size_t from, bool forward, bool wrap) {
        std::size_t at = from;
        for (std::size_t step = 0; step < count; ++step) {
            if (forward)
                at = at + 1 < count ? at + 1 : wrap ? 0 : at;
            else
                at = at > 0 ? at - 1 : at;
            if (at != page.locked)
                return at;
        }
        return from;
    };
    page.selected = std::min(page.selected, count - 1);
    if (page.selected == page.locked)
        page.selected = move(page.selected, true, true);
    for (;;) {
        console.draw(page, scroll);
        if (page.locked != kNone && scroll.seenEnd) {
            page.locked = kNone;
            continue; // draw it choosable
        }
        const Key key = console.nextKey();
        // A list takes every moving key; answers leave the arrows up and
        // down, and the page keys, to a text that does not fit.
        if (!page.list && scrollText(key, scroll, true))
            continue;
        const std::size_t pageStep = page.list ? std::max<std::size_t>(scroll.listShown, 1) : count;
        switch (key.type) {
        case KeyType::Up:
        case KeyType::Left:
            page.selected = move(page.selected, false, false);
            break;
        case KeyType::Down:
        case KeyType::Right:
            page.selected = move(page.selected, true, false);
            break;
        case KeyType::Tab:
            page.selected = move(page.selected, true, true);
            break;
        case KeyType::Home:
            page.selected = page.locked == 0 ? move(0, true, false) : 0;
            break;
        case KeyType::End:
            page.selected = page.locked == count - 1 ? move(count - 1, false, false) : count - 1;
            break;
        case KeyType::PageUp:
            page.selected = page.selected > pageStep ? page.selected - pageStep : 0;
            if (page.selected == page.locked)
                page.selected = move(page.selected, true, false);
            break;
        case KeyType::PageDown:
            page.selected = std::min(page.selected + pageStep, count - 1);
            if (page.selected == page.locked)
                page.selected = move(page.selected, false, false);
            break;
        case KeyType::Enter:
            return {MenuAction::Chosen, page.selected};
        case KeyType::Escape:
        case KeyType::Interrupt:
        case KeyType::Closed:
            return {MenuAction::Cancelled, page.selected};
        case KeyType::Text:
            if (key.text[0] >= '1' && key.text[0] <= '9' && static_cast<std::size_t>(key.text[0] - '1') < count &&
                static_cast<std::size_t>(key.text[0] - '1') != page.locked)
                page.selected = static_cast<std::size_t>(key.text[0] - '1');
            else if (details && (key.text == "d" || key.text == "D"))
                return {MenuAction::Details, page.selected};
            break;
        default:
            break;
        }
    }
}

} // namespace OrvelGui
