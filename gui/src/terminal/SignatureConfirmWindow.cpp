// "SignatureConfirm": the data to be signed (a hex dump under a warning when
// they are no text), the formatted text as the same plain reading that the
// desktop shows, the hash, the certificate and the version; every outside
// text with its hidden characters as markers under a warning. Decline is
// chosen at first, and Sign can be chosen only once every row of the text has
// been on screen; with nothing to sign, only Decline is offered.
#include "common/SignedData.hpp"
#include "terminal/Menu.hpp"
#include "terminal/TerminalWindows.hpp"

#include <vector>

namespace OrvelGui {
namespace {

enum class Action { Sign, Decline, ChangeCertificate, ShowCertificate };

const char *actionName(const Texts &t, Action action)
{
    switch (action) {
    case Action::Sign:
        return t.sign;
    case Action::Decline:
        return t.decline;
    case Action::ChangeCertificate:
        return t.changeCertificate;
    case Action::ShowCertificate:
        break;
    }
    return t.showCertificate;
}

// The data under their label and warnings; the number of lines up to the
// first line of the data.
std::size_t addSignedData(Lines &lines, Console &console, const char *name, const std::string &bytes)
{
    const Texts &t = console.texts();
    lines.push_back(label(name));
    if (bytes.empty()) {
        lines.emplace_back(t.noData);
        return lines.size();
    }
    const SignedDataView view = viewSignedData(bytes);
    if (!view.isText) {
        lines.push_back(bold(t.notText));
        console.log().add(std::string(name) + ": not UTF-8 text, shown as a hex dump.");
    }
    const VisibleText shown = visibleText(view.text);
    addHiddenWarning(lines, t, shown.hiddenCharacters);
    const std::size_t first = lines.size();
    addLines(lines, shown);
    // Trailing line breaks (and the dump's closing one) show nothing, as in
    // the desktop's view.
    while (lines.size() > first + 1 && lines.back().empty())
        lines.pop_back();
    return first + 1;
}

void addFormattedText(Lines &lines, const Texts &t, const RtfText &formatted)
{
    lines.push_back(label(t.formattedText));
    if (!formatted.readable)
        lines.push_back(bold(t.rtfUnreadable));
    const VisibleText shown = visibleRtf(formatted, t.concealedStart, t.concealedEnd);
    addHiddenWarning(lines, t, shown.hiddenCharacters);
    if (!formatted.concealed.empty())
        lines.push_back(bold(fill(t.concealedText, {std::to_string(formatted.concealed.size())})));
    addLines(lines, shown);
}

} // namespace

Outcome confirmSignatureWindow(Console &console, const Request &request, Answer &answer)
{
    if (!console.begin(request))
        return Outcome::NoUserInterface;
    const Texts &t = console.texts();
    std::optional<RtfText> formatted;
    if (request.rtf)
        formatted = readRtf(*request.rtf);
    const bool nothing = nothingToSign(request.data, formatted);

    Lines data;
    std::size_t keepLines = 0;
    if (nothing) {
        data.push_back(bold(t.nothingToSign));
        keepLines = 1;
        console.log().add("Nothing to sign: only Decline is offered.");
    }
    keepLines = std::max(keepLines, addSignedData(data, console, t.data, request.data));
    if (formatted) {
        data.emplace_back();
        addFormattedText(data, t, *formatted);
    }
    const VisibleText hashAlg = visibleText(request.hashAlg, LineBreaks::Mark);
    const VisibleText hashVal = visibleText(request.hashVal, LineBreaks::Mark);
    const VisibleText version = visibleText(request.version, LineBreaks::Mark);

    // Decline is preselected, and Sign can be chosen only once every row of
    // the text has been on screen; the scroll state lives across the
    // certificate windows so that this holds only once.
    std::vector<Action> actions = {Action::Sign, Action::Decline, Action::ChangeCertificate, Action::ShowCertificate};
    if (nothing)
        actions = {Action::Decline};
    Page page;
    page.title = t.titleSignature;
    page.keepLines = keepLines;
    for (const Action action : actions)
        page.items.push_back(actionName(t, action));
    page.selected = nothing ? 0 : 1;
    page.locked = nothing ? kNone : 0;
    std::vector<std::optional<ListedCertificate>> listed(request.certificates.size());
    std::size_t certificate = request.selected;
    Scroll scroll;
    for (;;) {
        const CertificateEntry &entry = request.certificates[certificate];
        if (!listed[certificate])
            listed[certificate] = listedCertificate(entry.subject, readCertificate(entry.data));
        page.text = data;
        page.text.emplace_back();
        addHiddenWarning(page.text, t,
                         hashAlg.hiddenCharacters + hashVal.hiddenCharacters + version.hiddenCharacters +
                             listed[certificate]->hiddenCharacters());
        page.text.push_back(label(t.hashAlg) + " " + styled(hashAlg));
        page.text.push_back(label(t.hashVal) + " " + styled(hashVal));
        const std::string item = certificateItem(t, entry, *listed[certificate]);
        const std::size_t newline = item.find('\n');
        page.text.push_back(label(t.certificate) + " " + item.substr(0, newline));
        if (newline != std::string::npos)
            page.text.push_back(item.substr(newline + 1));
        page.text.push_back(label(t.version) + " " + styled(version));
        if (scroll.seenEnd)
            page.locked = kNone;
        const MenuResult result = runMenu(console, page, scroll);
        if (result.action == MenuAction::Cancelled)
            return Outcome::Cancelled;
        page.selected = result.index;
        const Action action = actions[result.index];
        if (action == Action::Sign || action == Action::Decline) {
            answer.confirmed = action == Action::Sign;
            answer.selected = static_cast<unsigned>(certificate);
            console.log().add(std::string(answer.confirmed ? "Signature confirmed" : "Signature declined") +
                              " with certificate " + std::to_string(certificate) + ".");
            return Outcome::Answered;
        }
        if (action == Action::ChangeCertificate) {
            if (const auto chosen = pickCertificate(console, request, certificate))
                certificate = *chosen;
        } else if (!viewText(console, t.titleCertificate, certificateLines(t, entry.data))) {
            return Outcome::Cancelled;
        }
    }
}

} // namespace OrvelGui
