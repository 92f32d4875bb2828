// "MessageBox": the icon's name, the message and the info; Enter or Escape
// closes it.
#include "terminal/Menu.hpp"
#include "terminal/TerminalWindows.hpp"

namespace OrvelGui {

std::size_t addMessage(Lines &lines, const Texts &t, const Request &request)
{
    VisibleTextBuilder builder;
    builder.append(request.message);
    if (!request.info.empty()) {
        builder.appendOwn("\n\n");
        builder.append(request.info);
    }
    const VisibleText message = builder.take();
    addHiddenWarning(lines, t, message.hiddenCharacters);
    const std::size_t firstLine = lines.size();
    addLines(lines, message);
    return firstLine + 1;
}

Outcome showMessageWindow(Console &console, const Request &request)
{
    if (!console.begin(request))
        return Outcome::NoUserInterface;
    Lines lines;
    addMessage(lines, console.texts(), request);
    return viewText(console, console.texts().iconNames[request.icon], lines) ? Outcome::Answered : Outcome::Cancelled;
}

} // namespace OrvelGui
