// The front end for a text terminal: every window is drawn on /dev/tty for
// the terminal's current size and answered with the keyboard (arrows or
// digits choose, Enter confirms, Escape cancels). Text that does not fit
// scrolls. Every window also ends, cancelled, when the host is gone (see
// HostInput.hpp). The windows live in files of their own
// (TerminalWindows.hpp) over a small kit: Console, PageLayout, Menu.
#pragma once

#include "protocol/FrontEnd.hpp"
#include "terminal/Console.hpp"

namespace OrvelGui {

class TerminalFrontEnd final : public FrontEnd {
public:
    explicit TerminalFrontEnd(GuiLog &log) : console_(log) {}

    Outcome showMessage(const Request &request) override;
    Outcome askYesNo(const Request &request, Answer &answer) override;
    Outcome chooseFile(const Request &request, Answer &answer) override;
    Outcome showCertificate(const Request &request) override;
    Outcome selectCertificate(const Request &request, Answer &answer) override;
    Outcome confirmSignature(const Request &request, Answer &answer) override;
    Outcome selectPkcs12(const Request &request, Answer &answer) override;
    Outcome reinsertCard(const Request &request, ReinsertCommandReader &commands) override;

private:
    Console console_;
};

} // namespace OrvelGui
