// OrvelGUI: the reference GUI application of libOrvelGUIDialogs. The library
// starts it with "-window NAME" and option pairs; it asks the user, writes
// its reply to standard output and exits with one of the statuses of
// protocol/Reply.hpp.
#include "common/PasswordMemory.hpp"
#include "protocol/FrontEnd.hpp"
#include "protocol/ImmediateExit.hpp"
#include "protocol/Protocol.hpp"
#include "FrontEndChoice.hpp"

#include <signal.h>
#include <unistd.h>

#include <exception>
#include <new>
#include <string>
#include <vector>

namespace {

using namespace OrvelGui;

Outcome show(FrontEnd &frontEnd, const Request &request, Answer &answer, GuiLog &log)
{
    switch (request.window) {
    case Window::MessageBox:
        return frontEnd.showMessage(request);
    case Window::YesNoDialog:
        return frontEnd.askYesNo(request, answer);
    case Window::FileOpen:
    case Window::FileSave:
        return frontEnd.chooseFile(request, answer);
    case Window::ReinsertCard: {
        ReinsertCommandReader commands(STDIN_FILENO, log);
        return frontEnd.reinsertCard(request, commands);
    }
    case Window::DisplayCert:
        return frontEnd.showCertificate(request);
    case Window::CertificateSelect:
        return frontEnd.selectCertificate(request, answer);
    case Window::SignatureConfirm:
        return frontEnd.confirmSignature(request, answer);
    case Window::SelectPKCS12:
        return frontEnd.selectPkcs12(request, answer);
    }
    return Outcome::Cancelled;
}

int finish(const std::string &windowName, const Request *request, Outcome outcome, Answer &answer, GuiLog &log)
{
    int status = kAnswered;
    switch (outcome) {
    case Outcome::Answered:
        break;
    case Outcome::Cancelled:
        log.add("Cancelled by the user.");
        status = kCancelled;
        break;
    case Outcome::NoUserInterface:
        status = kNoUserInterface;
        break;
    }
    std::string reply = formatReply(windowName, request, outcome == Outcome::Answered, answer, log);
    writeReply(reply);
    // The password has gone to the host; no copy of it stays here.
    wipeSecret(reply);
    wipeSecret(answer.secondValue);
    return status;
}

} // namespace

int main(int argc, char **argv)
{
    // A host that stops reading must not kill us in the middle of a reply.
    ::signal(SIGPIPE, SIG_IGN);
    GuiLog log;
    std::string windowName;
    try {
        const std::vector<std::string> arguments(argv + (argc > 0 ? 1 : 0), argv + argc);
        ParseResult parsed = parseCommandLine(arguments, log);
        windowName = parsed.windowName;
        if (!parsed.request) {
            writeReply(formatReply(windowName, nullptr, false, {}, log));
            return kBadCommandLine;
        }
        prepareImmediateExit(windowName, log);
        if (parsed.request->window == Window::SelectPKCS12) {
            // This window asks for a password: no core dump or debugger of
            // the same user may read it from here on.
            if (std::string why; !keepOutOfCoreDumps(why))
                log.add("The password may appear in a core dump: " + why);
        }
        Answer answer;
        Outcome outcome;
        {
            // The front end gives the terminal or the display back before the
            // reply is written.
            FrontEndChoice choice(log);
            outcome = show(choice.frontEnd(), *parsed.request, answer, log);
        }
        return finish(windowName, &*parsed.request, outcome, answer, log);
    } catch (const std::exception &error) {
        log.add(std::string("Internal failure: ") + error.what());
    } catch (...) {
        log.add("Internal failure.");
    }
    try {
        writeReply(formatReply(windowName, nullptr, false, {}, log));
    } catch (...) {
    }
    return kInternalFailure;
}
