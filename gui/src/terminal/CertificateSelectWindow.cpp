// "CertificateSelect": one entry per certificate, named from its own fields
// (the common name, then the whole subject on a row of its own), with its
// validity and renewal; D shows the highlighted certificate's details.
#include "common/CertificateDescription.hpp"
#include "terminal/Menu.hpp"
#include "terminal/TerminalWindows.hpp"

namespace OrvelGui {

std::string certificateItem(const Texts &t, const CertificateEntry &entry, const ListedCertificate &listed)
{
    std::string text = fill(t.certificateListItem,
                            {styled(listed.name), oneLine(entry.notAfter), std::to_string(entry.daysRemaining)});
    if (entry.forceRenew)
        text += " | " + fill(t.renewForced, {oneLine(entry.renewDeadline)});
    else if (entry.warnRenew)
        text += " | " + fill(t.renewWarned, {oneLine(entry.renewDeadline)});
    if (listed.isCertificate)
        text += "\n" + styled(listed.subject);
    return text;
}

std::optional<std::size_t> pickCertificate(Console &console, const Request &request, std::size_t initial)
{
    const Texts &t = console.texts();
    Page page;
    page.title = t.titleSelectCertificate;
    page.list = true;
    std::size_t hidden = 0;
    for (const CertificateEntry &entry : request.certificates) {
        const ListedCertificate listed = listedCertificate(entry.subject, readCertificate(entry.data));
        hidden += listed.hiddenCharacters();
        page.items.push_back(certificateItem(t, entry, listed));
    }
    addHiddenWarning(page.text, t, hidden);
    page.selected = initial;
    Scroll scroll;
    for (;;) {
        const MenuResult result = runMenu(console, page, scroll, true);
        page.selected = result.index;
        if (result.action == MenuAction::Cancelled)
            return std::nullopt;
        if (result.action == MenuAction::Chosen)
            return result.index;
        if (!viewText(console, t.titleCertificate, certificateLines(t, request.certificates[result.index].data)))
            return std::nullopt;
    }
}

Outcome selectCertificateWindow(Console &console, const Request &request, Answer &answer)
{
    if (!console.begin(request))
        return Outcome::NoUserInterface;
    const auto chosen = pickCertificate(console, request, request.selected);
    if (!chosen)
        return Outcome::Cancelled;
    answer.selected = static_cast<unsigned>(*chosen);
    console.log().add("Certificate " + std::to_string(*chosen) + " chosen.");
    return Outcome::Answered;
}

} // namespace OrvelGui
