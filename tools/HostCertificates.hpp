// Certificates of the host tool: PEM or DER files read with OpenSSL into the
// ORV_Certificate records that the certificate dialogs take.
#pragma once

#include <OrvelGUIDialogs/OrvelGUIDialogs.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace OrvelTool {

// When a certificate counts as due for renewal, in days before its end.
struct RenewalRules {
    int renewDays = 30; // the renewal deadline lies this many days before the end
    int warnDays = 30;  // warnRenew when fewer days than this remain
    int forceDays = 7;  // forceRenew when fewer days than this remain
};

// The record fields for one certificate; `now` in seconds since 1970.
struct CertificateRecord {
    std::string der;
    std::string subject;
    std::string notAfter;
    std::string renewDeadline;
    std::int32_t daysRemaining = 0;
    bool forceRenew = false;
    bool warnRenew = false;
};
CertificateRecord makeRecord(const std::string &der, const std::string &subject, std::int64_t notAfterEpoch,
                             std::int64_t now, const RenewalRules &rules);

class HostCertificates {
public:
    // Reads each file; false with a message in `error` when one cannot be read
    // or holds no certificate.
    bool load(const std::vector<std::string> &files, const RenewalRules &rules, std::string &error);
    // The records; they point into this object, which must outlive their use.
    const ORV_Certificate *records() const { return records_.data(); }
    unsigned count() const { return static_cast<unsigned>(records_.size()); }

private:
    std::vector<std::unique_ptr<CertificateRecord>> stored_;
    std::vector<ORV_Certificate> records_;
};

// The whole file ("-": standard input), or false with "PATH: cannot read: why"
// in `error`, the one wording for every file the tool reads.
bool readFile(const std::string &path, std::string &content, std::string &error);

} // namespace OrvelTool
