// "DisplayCert", and the details behind the certificate lists: what the
// certificate says (CertificateDescription.hpp); bytes that are no
// certificate as their first bytes in hexadecimal.
#include "common/CertificateDescription.hpp"
#include "terminal/Menu.hpp"
#include "terminal/TerminalWindows.hpp"

#include <ctime>

namespace OrvelGui {

Lines certificateLines(const Texts &t, const std::string &bytes)
{
    const CertificateDetails details = readCertificate(bytes);
    Lines lines;
    if (!details.isCertificate) {
        lines.push_back(fill(t.notCertificate, {std::to_string(bytes.size())}));
        lines.push_back(hexPreview(bytes, 64) + (bytes.size() > 64 ? " ..." : ""));
        return lines;
    }
    const std::vector<CertificateField> fields =
        describeCertificate(details, t, static_cast<std::int64_t>(std::time(nullptr)), NameLayout::OneLine);
    std::size_t hidden = 0;
    for (const CertificateField &field : fields)
        hidden += field.value.hiddenCharacters;
    addHiddenWarning(lines, t, hidden);
    for (const CertificateField &field : fields)
        lines.push_back(label(field.label) + " " + styled(field.value));
    return lines;
}

Outcome showCertificateWindow(Console &console, const Request &request)
{
    if (!console.begin(request))
        return Outcome::NoUserInterface;
    console.log().add(readCertificate(request.certificate).isCertificate ? "Certificate shown."
                                                                         : "The -cert bytes are no certificate.");
    return viewText(console, console.texts().titleCertificate, certificateLines(console.texts(), request.certificate))
               ? Outcome::Answered
               : Outcome::Cancelled;
}

} // namespace OrvelGui
