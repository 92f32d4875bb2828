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
    std::string sha256;         // fingerprint of the DER, "AB:CD:..."
    bool keyUsageRestricted = false;
    std::vector<std::string> keyUsage;         // RFC 5280 names
    std::vector<std::string> extendedKeyUsage; // short names
};

// Accepts DER or PEM; any other bytes give isCertificate false. Never throws
// for any input (std::bad_alloc aside).
CertificateDetails readCertificate(std::string_view bytes);

// "YYYY-MM-DD" of a time in seconds since 1970 (UTC).
std::string formatDate(std::int64_t epochSeconds);

// Up to `limit` bytes as hexadecimal pairs separated by spaces.
std::string hexPreview(std::string_view bytes, std::size_t limit);

} // namespace OrvelGui
