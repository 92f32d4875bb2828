// What a certificate says, read with OpenSSL for people to see. Used by the
// GUI application to show "-cert" and by the host tool to fill its records.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace OrvelGui {

struct CertificateDetails {
    bool isCertificate = false; // false: the bytes are no X.509 certificate
    std::string der;            // the certificate in DER
    std::string subject;        // one line, UTF-8
    std::string issuer;
    std::string serial;         // hexadecimal, bytes separated by ":"
    std::string notBefore;      // "YYYY-MM-DD HH:MM:SS UTC"
    std::string notAfter;
    std::optional<std::int64_t> notAfterEpoch; // seconds since 1970, UTC
    std::vector<std::string> subjectParts; // one "CN = ..." per attribute, most specific last
    std::vector<std::string> issuerParts;
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
