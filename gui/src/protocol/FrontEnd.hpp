// The part of the GUI application that talks to the user. The protocol layer
// (Protocol.hpp, main.cpp) decodes the request, calls one of these, and turns
// the outcome into the reply and the exit status. The terminal front end is
// one implementation; a desktop one can sit beside it.
#pragma once

#include "protocol/Protocol.hpp"

namespace OrvelGui {

enum class Outcome {
    Answered,        // the answer's fields for the window are filled
    Cancelled,       // the user backed out
    NoUserInterface, // there is no user to ask
};

class FrontEnd {
public:
    virtual ~FrontEnd() = default;

    // Closing the message or the certificate counts as answered.
    virtual Outcome showMessage(const Request &request) = 0;
    virtual Outcome askYesNo(const Request &request, Answer &answer) = 0;
    // FileOpen and FileSave: answer.path.
    virtual Outcome chooseFile(const Request &request, Answer &answer) = 0;
    virtual Outcome showCertificate(const Request &request) = 0;
    virtual Outcome selectCertificate(const Request &request, Answer &answer) = 0;
    virtual Outcome confirmSignature(const Request &request, Answer &answer) = 0;
    // answer.path and answer.secondValue (the password).
    virtual Outcome selectPkcs12(const Request &request, Answer &answer) = 0;
    // Runs until the close command or the end of the commands; switches the
    // text on the insert and remove commands. Cancelled when the user hid
    // the notice before that (the commands are still consumed to the end).
    virtual Outcome reinsertCard(const Request &request, ReinsertCommandReader &commands) = 0;
};

} // namespace OrvelGui
