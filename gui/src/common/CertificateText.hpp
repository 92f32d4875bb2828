// What a certificate says, read with OpenSSL for people to see. Used by the
// GUI application to show "-cert" and by the host tool to fill its records.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace OrvelGui {

// One attribute of an X.509 name, read by its type.
struct NameAttribute {
    std::string type;  // OpenSSL's short name ("CN", "O", "OU"), else the OID in digits
    std::string value; // UTF-8 as the certificate holds it; may hold any character
    bool commonName = false;
    bool sameSetAsPrevious = false; // a multi-valued RDN ("CN = a + UID = b")
};
using DistinguishedName = std::vector<NameAttribute>;

struct CertificateDetails {
    bool isCertificate = false; // false: the bytes are no X.509 certificate
    std::string der;            // the certificate in DER
    // OpenSSL's one-line form (control characters escaped), as the host tool
    // passes it on; the windows read subjectName and issuerName instead.
    std::string subject;
    std::string issuer;
    std::string serial;         // hexadecimal, bytes separated by ":"
    std::string notBefore;      // "YYYY-MM-DD HH:MM:SS UTC"
    std::string notAfter;
    std::optional<std::int64_t> notAfterEpoch; // seconds since 1970, UTC
    DistinguishedName subjectName; // in the certificate's order
    DistinguishedName issuerName;
    std::string sha256;         // fingerprint of the DER, "AB:CD:..."
    std::string sha1;
    std::string publicKey;          // "RSA, 2048 bits"
    std::string signatureAlgorithm; // "sha256WithRSAEncryption"
    std::vector<std::string> subjectAltNames; // "DNS:example.org", "email:a@b.cz"
    bool keyUsageRestricted = false;
    std::vector<std::string> keyUsage;         // RFC 5280 names
    std::vector<std::string> extendedKeyUsage; // short names
};

// Accepts DER or PEM; any other bytes give isCertificate false. Never throws
// for any input (std::bad_alloc aside).
CertificateDetails readCertificate(std::string_view bytes);

// Whole days from `now` to the end of validity, rounded down; negative once
// expired. Nothing when the certificate does not say.
std::optional<std::int64_t> daysRemaining(const CertificateDetails &details, std::int64_t now);

// "YYYY-MM-DD" of a time in seconds since 1970 (UTC).
std::string formatDate(std::int64_t epochSeconds);

// Up to `limit` bytes as hexadecimal pairs separated by spaces.
std::string hexPreview(std::string_view bytes, std::size_t limit);

} // namespace OrvelGui
