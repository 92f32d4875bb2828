// What the certificate windows of both front ends show of a certificate:
// names read from its X.509 fields by attribute type (never searched for in
// a formatted string), each value on one line with its control and hidden
// characters as markers, and the other fields in one order.
#pragma once

#include "common/CertificateText.hpp"
#include "common/Texts.hpp"
#include "common/VisibleText.hpp"

#include <cstdint>
#include <vector>

namespace OrvelGui {

enum class NameLayout {
    OneLine,          // "C = CZ, O = "Firma, a.s.", CN = Jiří Novák"
    LinePerAttribute, // "C = CZ", "O = Firma, a.s.", "CN = Jiří Novák"
};

// A name as the user reads it. On one line, a value that holds a separator
// (",", "+", ";", a quote, ...) is quoted, so that a value cannot pass for
// attributes of its own.
VisibleText nameText(const DistinguishedName &name, NameLayout layout, bool withoutCommonName = false);
// The values of the name's common name attributes, on one line; empty when
// it has none.
VisibleText commonNameText(const DistinguishedName &name);

struct CertificateField {
    const char *label;
    VisibleText value;
    bool monospace = false;
};

// The fields of a certificate in the order the windows show them; none for
// bytes that are no certificate.
std::vector<CertificateField> describeCertificate(const CertificateDetails &details, const Texts &t,
                                                  std::int64_t now, NameLayout layout);

// A certificate of the host's list as the lists and the signature window
// name it, read from its own bytes. Bytes that are no certificate have only
// the host's subject text, shown as it is (with its markers).
struct ListedCertificate {
    bool isCertificate = false;
    VisibleText name;    // the common name, else the whole subject
    VisibleText label;   // the common name, then the rest of the subject
    VisibleText subject; // the whole subject on one line
    VisibleText subjectLines;
    VisibleText issuerName; // the issuer's common name, else the whole issuer
    VisibleText issuerLines;
    std::size_t hiddenCharacters() const;
};
ListedCertificate listedCertificate(const std::string &hostSubject, const CertificateDetails &details);

} // namespace OrvelGui
