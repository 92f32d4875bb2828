// The kit's text to read through, and the keys that scroll a text.
#include "terminal/Menu.hpp"

#include <algorithm>

namespace OrvelGui {

bool scrollText(const Key &key, Scroll &scroll, bool arrows)
{
    if (scroll.fits())
        return false;
    const std::size_t last = scroll.rows - scroll.shown;
    const std::size_t page = std::max<std::size_t>(scroll.shown - 1, 1);
    switch (key.type) {
    case KeyType::Up:
        if (!arrows)
            return false;
        scroll.top = scroll.top > 0 ? scroll.top - 1 : 0;
        return true;
    case KeyType::Down:
        if (!arrows)
            return false;
        scroll.top = std::min(scroll.top + 1, last);
        return true;
    case KeyType::PageUp:
        scroll.top = scroll.top > page ? scroll.top - page : 0;
        return true;
    case KeyType::PageDown:
        scroll.top = std::min(scroll.top + page, last);
        return true;
    case KeyType::Home:
        scroll.top = 0;
        return true;
    case KeyType::End:
        scroll.top = last;
        return true;
    default:
        return false;
    }
}

Key readKeyScrolling(Console &console, const Page &page, Scroll &scroll)
{
    for (;;) {
        console.draw(page, scroll);
        const Key key = console.nextKey();
        if (!scrollText(key, scroll, true))
            return key;
    }
}

bool viewText(Console &console, const std::string &title, const Lines &text)
{
    Page page;
    page.title = title;
    page.text = text;
    page.hint = console.texts().hintClose;
    page.scrollHint = console.texts().hintViewScroll;
    Scroll scroll;
    for (;;) {
        switch (readKeyScrolling(console, page, scroll).type) {
        case KeyType::Enter:
        case KeyType::Escape:
        case KeyType::Interrupt:
            return true;
        case KeyType::Closed:
            return false;
        default:
            break;
        }
    }
}

} // namespace OrvelGui
