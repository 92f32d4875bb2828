// What the certificate windows show of arbitrary bytes given as a
// certificate: every field and name is text that hides nothing, a name on one
// line holds no line break, and each attribute of a name is on one line.
#include "VisibleTextCheck.hpp"

#include "common/CertificateDescription.hpp"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string bytes = OrvelFuzz::bytesOf(data, size);
    const OrvelGui::CertificateDetails details = OrvelGui::readCertificate(bytes);
    const OrvelGui::Texts &t = OrvelGui::texts(OrvelGui::Language::English);
    for (const auto layout : {OrvelGui::NameLayout::OneLine, OrvelGui::NameLayout::LinePerAttribute}) {
        const auto fields = OrvelGui::describeCertificate(details, t, 1767225600, layout);
        FUZZ_CHECK(fields.empty() == !details.isCertificate);
        for (const OrvelGui::CertificateField &field : fields) {
            OrvelFuzz::checkVisible(field.value);
            if (layout == OrvelGui::NameLayout::OneLine)
                FUZZ_CHECK(field.value.text.find('\n') == std::string::npos);
        }
    }
    const std::size_t attributes = details.subjectName.size();
    const OrvelGui::VisibleText lines =
        OrvelGui::nameText(details.subjectName, OrvelGui::NameLayout::LinePerAttribute);
    FUZZ_CHECK(static_cast<std::size_t>(std::count(lines.text.begin(), lines.text.end(), '\n')) <=
               (attributes ? attributes - 1 : 0));
    const OrvelGui::ListedCertificate listed = OrvelGui::listedCertificate("C = CZ, CN = host\n", details);
    for (const OrvelGui::VisibleText *text : {&listed.name, &listed.label, &listed.subject, &listed.issuerName}) {
        OrvelFuzz::checkVisible(*text);
        FUZZ_CHECK(text->text.find('\n') == std::string::npos);
    }
    OrvelFuzz::checkVisible(listed.subjectLines);
    OrvelFuzz::checkVisible(listed.issuerLines);
    return 0;
}
