#include "terminal/TerminalFrontEnd.hpp"

#include "terminal/TerminalWindows.hpp"

namespace OrvelGui {

Outcome TerminalFrontEnd::showMessage(const Request &request)
{
    return showMessageWindow(console_, request);
}

Outcome TerminalFrontEnd::askYesNo(const Request &request, Answer &answer)
{
    return askYesNoWindow(console_, request, answer);
}

Outcome TerminalFrontEnd::chooseFile(const Request &request, Answer &answer)
{
    return request.window == Window::FileSave ? saveFileWindow(console_, request, answer)
                                              : openFileWindow(console_, request, answer);
}

Outcome TerminalFrontEnd::showCertificate(const Request &request)
{
    return showCertificateWindow(console_, request);
}

Outcome TerminalFrontEnd::selectCertificate(const Request &request, Answer &answer)
{
    return selectCertificateWindow(console_, request, answer);
}

Outcome TerminalFrontEnd::confirmSignature(const Request &request, Answer &answer)
{
    return confirmSignatureWindow(console_, request, answer);
}

Outcome TerminalFrontEnd::selectPkcs12(const Request &request, Answer &answer)
{
    return selectPkcs12Window(console_, request, answer);
}

Outcome TerminalFrontEnd::reinsertCard(const Request &request, ReinsertCommandReader &commands)
{
    return reinsertCardWindow(console_, request, commands);
}

} // namespace OrvelGui
