// "YesNoDialog": the question with Yes and No, `-button` chosen at first.
#include "terminal/Menu.hpp"
#include "terminal/TerminalWindows.hpp"

namespace OrvelGui {

Outcome askYesNoWindow(Console &console, const Request &request, Answer &answer)
{
    if (!console.begin(request))
        return Outcome::NoUserInterface;
    const Texts &t = console.texts();
    Page page;
    page.title = t.titleQuestion;
    page.keepLines = addMessage(page.text, t, request);
    page.items = {t.yes, t.no};
    page.selected = static_cast<std::size_t>(request.button);
    Scroll scroll;
    const MenuResult result = runMenu(console, page, scroll);
    if (result.action != MenuAction::Chosen)
        return Outcome::Cancelled;
    answer.yes = result.index == 0;
    console.log().add(answer.yes ? "Answer: yes." : "Answer: no.");
    return Outcome::Answered;
}

} // namespace OrvelGui
