// The kit's line of text input.
#include "terminal/Menu.hpp"

namespace OrvelGui {
namespace {

constexpr std::size_t kMaxInput = 4096;

} // namespace

std::optional<std::string> readLine(Console &console, Page page, const std::string &prompt, std::string text,
                                    bool secret)
{
    Scroll scroll;
    page.input = true;
    page.prompt = prompt;
    page.hint = console.texts().hintInput;
    for (;;) {
        page.typed.clear();
        if (secret) {
            for (std::size_t i = 0; i < text.size(); ++i)
                if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80)
                    page.typed.push_back('*');
        } else {
            page.typed = oneLine(text); // what the user typed or pasted, markers and all
        }
        const Key key = readKeyScrolling(console, page, scroll);
        switch (key.type) {
        case KeyType::Enter:
            return text;
        case KeyType::Escape:
        case KeyType::Interrupt:
        case KeyType::Closed:
            return std::nullopt;
        case KeyType::Backspace:
            while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xC0) == 0x80)
                text.pop_back();
            if (!text.empty())
                text.pop_back();
            break;
        case KeyType::ClearLine:
            text.clear();
            break;
        case KeyType::Text:
            if (text.size() + key.text.size() <= kMaxInput)
                text += key.text;
            break;
        default:
            break;
        }
    }
}

} // namespace OrvelGui
