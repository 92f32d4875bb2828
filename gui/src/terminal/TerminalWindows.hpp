// The terminal front end's windows, one file each, over the kit (Console,
// PageLayout, Menu: menu, text input, scroll view). Each returns what the
// desktop window of the same name returns, for the same request.
#pragma once

#include "common/CertificateDescription.hpp"
#include "protocol/FrontEnd.hpp"
#include "terminal/Console.hpp"
#include "terminal/TerminalText.hpp"

#include <optional>

namespace OrvelGui {

Outcome showMessageWindow(Console &console, const Request &request);
Outcome askYesNoWindow(Console &console, const Request &request, Answer &answer);
Outcome openFileWindow(Console &console, const Request &request, Answer &answer);
Outcome saveFileWindow(Console &console, const Request &request, Answer &answer);
Outcome reinsertCardWindow(Console &console, const Request &request, ReinsertCommandReader &commands);
Outcome showCertificateWindow(Console &console, const Request &request);
Outcome selectCertificateWindow(Console &console, const Request &request, Answer &answer);
Outcome confirmSignatureWindow(Console &console, const Request &request, Answer &answer);
Outcome selectPkcs12Window(Console &console, const Request &request, Answer &answer);

// What the certificate window shows of the bytes.
Lines certificateLines(const Texts &t, const std::string &bytes);
// The certificate list with details behind D; nothing when cancelled.
std::optional<std::size_t> pickCertificate(Console &console, const Request &request, std::size_t initial);
// A certificate of the host's list: its name, validity and renewal, then
// (after a line feed) its whole subject.
std::string certificateItem(const Texts &t, const CertificateEntry &entry, const ListedCertificate &listed);

// The message and the info, with the warning above them; the number of lines
// up to the message's first one.
std::size_t addMessage(Lines &lines, const Texts &t, const Request &request);

} // namespace OrvelGui
