#include "protocol/Reply.hpp"

#include "common/PasswordMemory.hpp"
#include "protocol/Base64.hpp"

#include <unistd.h>

#include <cerrno>

namespace OrvelGui {
namespace {

void addToken(std::string &reply, const std::string &token)
{
    reply.push_back(' ');
    reply.append(token);
}

} // namespace

std::string formatReply(const std::string &windowName, const Request *request, bool answered,
                        const Answer &answer, const GuiLog &log)
{
    std::string reply = windowName;
    // Room for all of it at once: a reply that grew would leave copies of
    // the password behind in the room it gave up.
    reply.reserve(windowName.size() + (answer.path.size() + answer.secondValue.size() + log.text().size()) / 3 * 4 +
                  64);
    if (answered && request) {
        switch (request->window) {
        case Window::YesNoDialog:
            addToken(reply, answer.yes ? "yes" : "no");
            break;
        case Window::FileOpen:
        case Window::FileSave:
            addToken(reply, encodeBase64(answer.path));
            break;
        case Window::CertificateSelect:
            addToken(reply, "-selectedCert");
            addToken(reply, std::to_string(answer.selected));
            break;
        case Window::SignatureConfirm:
            addToken(reply, "-result");
            addToken(reply, answer.confirmed ? "1" : "0");
            addToken(reply, "-selectedCert");
            addToken(reply, std::to_string(answer.selected));
            break;
        case Window::SelectPKCS12: {
            addToken(reply, encodeBase64(answer.path));
            std::string password = encodeBase64(answer.secondValue);
            addToken(reply, password);
            wipeSecret(password);
            break;
        }
        default:
            break;
        }
    }
    addToken(reply, "-log");
    addToken(reply, encodeBase64(log.text()));
    reply.push_back('\n');
    return reply;
}

bool writeReply(const std::string &reply)
{
    std::size_t done = 0;
    while (done < reply.size()) {
        const ssize_t n = ::write(STDOUT_FILENO, reply.data() + done, reply.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n <= 0)
            return false;
        done += static_cast<std::size_t>(n);
    }
    return true;
}

} // namespace OrvelGui
