// "ReinsertCard": the message and, once a command has come, the insert or
// remove text; Escape hides the notice, which still follows the commands.
#include "terminal/Menu.hpp"
#include "terminal/TerminalWindows.hpp"

namespace OrvelGui {

Outcome reinsertCardWindow(Console &console, const Request &request, ReinsertCommandReader &commands)
{
    if (!console.begin(request)) {
        // Nobody to show it to; still take the commands to their end so that
        // the host's writes do not fail.
        while (commands.waitForCommand() != ReinsertCommand::Close) {
        }
        return Outcome::NoUserInterface;
    }
    const Texts &t = console.texts();
    std::optional<ReinsertCommand> state;
    bool hidden = false;
    Scroll scroll;
    for (;;) {
        Page page;
        page.title = t.titleReinsert;
        if (hidden) {
            page.text = {t.reinsertHidden, t.reinsertHiddenHint};
        } else {
            addMessage(page.text, t, request);
            if (state) {
                page.text.emplace_back();
                page.text.push_back(std::string(kReverse) + "> " +
                                    (*state == ReinsertCommand::Insert ? t.reinsertInsert
                                                                       : t.reinsertRemove) +
                                    kNormal);
            }
            page.hint = t.reinsertHint;
        }
        console.draw(page, scroll);

        const Key key = console.terminal().readKey(-1, commands.fd(), !hidden);
        if (key.type == KeyType::Watched) {
            std::vector<ReinsertCommand> received;
            commands.readAvailable(received);
            for (ReinsertCommand command : received) {
                if (command == ReinsertCommand::Close) {
                    // The end of input without the close command: the host
                    // is gone.
                    if (commands.ended())
                        return Outcome::Cancelled;
                    console.log().add("Notice closed.");
                    return hidden ? Outcome::Cancelled : Outcome::Answered;
                }
                state = command;
                console.log().add(command == ReinsertCommand::Insert ? "Text: insert." : "Text: remove.");
            }
        } else if (scrollText(key, scroll, true)) {
        } else if (key.type == KeyType::Escape || key.type == KeyType::Interrupt || key.type == KeyType::Closed) {
            hidden = true;
            // Hidden, the notice takes no keys: Ctrl-C goes back to being
            // the terminal's interrupt, so that it ends the host and this
            // notice together as the user expects.
            console.terminal().passSignalKeys(true);
            console.log().add("The user hid the notice.");
        }
    }
}

} // namespace OrvelGui
