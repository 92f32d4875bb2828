#include "common/CertificateDescription.hpp"

namespace OrvelGui {
namespace {

// Characters that separate attributes in a one-line name (RFC 4514's, and
// the quote itself), and the spaces that a reader cannot see at either end.
bool needsQuotes(std::string_view value)
{
    if (value.empty() || value.front() == ' ' || value.back() == ' ' || value.front() == '#')
        return true;
    return value.find_first_of(",+;\"\\<>=") != std::string_view::npos;
}

void appendValue(VisibleTextBuilder &builder, std::string_view value, bool quoteIfNeeded)
{
    if (!quoteIfNeeded || !needsQuotes(value)) {
        builder.append(value, LineBreaks::Mark);
        return;
    }
    std::string quoted;
    quoted.reserve(value.size() + 2);
    for (const char c : value) {
        if (c == '"' || c == '\\')
            quoted.push_back('\\');
        quoted.push_back(c);
    }
    builder.appendOwn("\"");
    builder.append(quoted, LineBreaks::Mark);
    builder.appendOwn("\"");
}

std::string joined(const std::vector<std::string> &parts)
{
    std::string out;
    for (const auto &part : parts)
        out += (out.empty() ? "" : ", ") + part;
    return out;
}

} // namespace

VisibleText nameText(const DistinguishedName &name, NameLayout layout, bool withoutCommonName)
{
    VisibleTextBuilder builder;
    const bool oneLine = layout == NameLayout::OneLine;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (withoutCommonName && name[i].commonName)
            continue;
        if (builder.size() > 0)
            builder.appendOwn(name[i].sameSetAsPrevious ? " + " : oneLine ? ", " : "\n");
        builder.append(name[i].type, LineBreaks::Mark);
        builder.appendOwn(" = ");
        appendValue(builder, name[i].value, oneLine);
    }
    return builder.take();
}

VisibleText commonNameText(const DistinguishedName &name)
{
    std::size_t count = 0;
    for (const NameAttribute &attribute : name)
        count += attribute.commonName ? 1 : 0;
    VisibleTextBuilder builder;
    bool first = true;
    for (const NameAttribute &attribute : name) {
        if (!attribute.commonName)
            continue;
        if (!first)
            builder.appendOwn(", ");
        first = false;
        // Several of them are quoted as needed, so that they stay apart.
        appendValue(builder, attribute.value, count > 1);
    }
    return builder.take();
}

std::vector<CertificateField> describeCertificate(const CertificateDetails &details, const Texts &t,
                                                  std::int64_t now, NameLayout layout)
{
    std::vector<CertificateField> fields;
    if (!details.isCertificate)
        return fields;
    const auto add = [&](const char *label, VisibleText value, bool monospace = false) {
        fields.push_back({label, std::move(value), monospace});
    };
    const auto list = [&](const std::vector<std::string> &values) {
        return visibleText(joined(values), LineBreaks::Mark);
    };
    add(t.subject, nameText(details.subjectName, layout));
    add(t.issuer, nameText(details.issuerName, layout));
    add(t.serial, visibleText(details.serial), true);
    add(t.validFrom, visibleText(details.notBefore));
    add(t.validUntil, visibleText(details.notAfter));
    if (const auto days = daysRemaining(details, now))
        add(t.daysLeft, visibleText(fill(t.daysRemaining, {std::to_string(*days)})));
    add(t.publicKey, visibleText(details.publicKey, LineBreaks::Mark));
    add(t.signatureAlgorithm, visibleText(details.signatureAlgorithm, LineBreaks::Mark));
    add(t.keyUsage, details.keyUsageRestricted ? list(details.keyUsage) : visibleText(t.keyUsageAny));
    if (!details.extendedKeyUsage.empty())
        add(t.extendedKeyUsage, list(details.extendedKeyUsage));
    if (!details.subjectAltNames.empty())
        add(t.subjectAltNames, list(details.subjectAltNames));
    add(t.fingerprint, visibleText(details.sha256), true);
    add(t.fingerprintSha1, visibleText(details.sha1), true);
    return fields;
}

std::size_t ListedCertificate::hiddenCharacters() const
{
    return subject.hiddenCharacters + issuerLines.hiddenCharacters;
}

ListedCertificate listedCertificate(const std::string &hostSubject, const CertificateDetails &details)
{
    ListedCertificate listed;
    listed.isCertificate = details.isCertificate;
    if (!details.isCertificate) {
        listed.name = visibleText(hostSubject, LineBreaks::Mark);
        listed.label = listed.name;
        listed.subject = listed.name;
        listed.subjectLines = listed.name;
        return listed;
    }
    listed.subject = nameText(details.subjectName, NameLayout::OneLine);
    listed.subjectLines = nameText(details.subjectName, NameLayout::LinePerAttribute);
    listed.name = commonNameText(details.subjectName);
    if (listed.name.text.empty()) {
        listed.name = listed.subject;
        listed.label = listed.subject;
    } else {
        // The name first, so that eliding a long subject in the middle
        // keeps it; the rest tells two people of one name apart.
        VisibleTextBuilder label;
        label.append(listed.name);
        const VisibleText rest = nameText(details.subjectName, NameLayout::OneLine, true);
        if (!rest.text.empty()) {
            label.appendOwn(" \xC2\xB7 "); // " · "
            label.append(rest);
        }
        listed.label = label.take();
    }
    listed.issuerLines = nameText(details.issuerName, NameLayout::LinePerAttribute);
    listed.issuerName = commonNameText(details.issuerName);
    if (listed.issuerName.text.empty())
        listed.issuerName = nameText(details.issuerName, NameLayout::OneLine);
    return listed;
}

} // namespace OrvelGui
