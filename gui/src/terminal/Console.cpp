#include "terminal/Console.hpp"

#include "terminal/PageLayout.hpp"

#include <unistd.h>

namespace OrvelGui {

Console::Console(GuiLog &log) : log_(log), host_(STDIN_FILENO, log), texts_(&OrvelGui::texts(Language::English)) {}

bool Console::begin(const Request &request)
{
    texts_ = &OrvelGui::texts(request.language);
    if (!terminal_)
        terminal_ = Terminal::open(log_);
    return terminal_ != nullptr;
}

Key Console::nextKey()
{
    // Once the host is gone every window that is still open closes too.
    if (host_.ended())
        return {KeyType::Closed, {}};
    for (;;) {
        const Key key = terminal_->readKey(-1, host_.fd());
        if (key.type != KeyType::Watched)
            return key;
        if (host_.readAvailable())
            return {KeyType::Closed, {}};
    }
}

void Console::draw(const Page &page, Scroll &scroll)
{
    terminal_->write(layOutPage(page, scroll, terminal_->rows(), terminal_->columns(), *texts_));
}

} // namespace OrvelGui
