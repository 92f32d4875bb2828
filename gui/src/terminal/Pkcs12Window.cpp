// "SelectPKCS12": a path field filled with `-filename`, then a password field
// shown as "*"; the file and the password are checked before the reply.
#include "common/PasswordMemory.hpp"
#include "common/Pkcs12Check.hpp"
#include "terminal/Menu.hpp"
#include "terminal/Paths.hpp"
#include "terminal/TerminalWindows.hpp"

namespace OrvelGui {

Outcome selectPkcs12Window(Console &console, const Request &request, Answer &answer)
{
    if (!console.begin(request))
        return Outcome::NoUserInterface;
    const Texts &t = console.texts();
    std::string typed = offeredAsShown(request.fileName);
    std::string problem;
    for (;;) {
        Page page;
        page.title = t.titlePkcs12;
        if (!problem.empty())
            page.text.push_back(bold(problem));
        const auto path = readLine(console, page, t.pkcs12File, typed);
        if (!path)
            return Outcome::Cancelled;
        typed = *path;
        const std::string file = absolutePath(typed);
        // The file is checked before the password is asked for, so that a
        // wrong file is not blamed on the password.
        const Pkcs12Check fileCheck = checkPkcs12(file, "");
        if (fileCheck == Pkcs12Check::CannotRead || fileCheck == Pkcs12Check::NotPkcs12) {
            problem = fill(fileCheck == Pkcs12Check::CannotRead ? t.pkcs12CannotRead : t.pkcs12NotPkcs12,
                           {oneLine(file)});
            console.log().add(fileCheck == Pkcs12Check::CannotRead ? "PKCS#12 file cannot be read." : "Not a PKCS#12 file.");
            continue;
        }
        Page passwordPage;
        passwordPage.title = t.titlePkcs12;
        passwordPage.text = {oneLine(file)};
        for (;;) {
            auto password = readLine(console, passwordPage, t.password, "", true);
            if (!password)
                return Outcome::Cancelled;
            const WipedOnExit typed(*password);
            if (checkPkcs12(file, *password) == Pkcs12Check::WrongPassword) {
                passwordPage.text = {oneLine(file), bold(t.pkcs12WrongPassword)};
                console.log().add("Wrong PKCS#12 password.");
                continue;
            }
            answer.path = file;
            answer.secondValue = *password;
            console.log().add("PKCS#12 file chosen.");
            return Outcome::Answered;
        }
    }
}

} // namespace OrvelGui
