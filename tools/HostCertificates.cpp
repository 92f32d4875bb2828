#include "HostCertificates.hpp"

#include "common/CertificateText.hpp"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <ctime>

namespace OrvelTool {
namespace {

constexpr std::int64_t kDay = 86400;

std::int64_t floorDays(std::int64_t seconds)
{
    std::int64_t days = seconds / kDay;
    if (seconds % kDay < 0)
        --days;
    return days;
}

} // namespace

bool readFile(const std::string &path, std::string &content, std::string &error)
{
    const bool standardInput = path == "-";
    std::FILE *file = standardInput ? stdin : std::fopen(path.c_str(), "rb");
    if (!file) {
        error = path + ": cannot read: " + std::strerror(errno);
        return false;
    }
    content.clear();
    char buffer[65536];
    std::size_t n = 0;
    while ((n = std::fread(buffer, 1, sizeof buffer, file)) > 0)
        content.append(buffer, n);
    const int readError = std::ferror(file) ? (errno != 0 ? errno : EIO) : 0;
    if (!standardInput)
        std::fclose(file);
    if (readError != 0)
        error = path + ": cannot read: " + std::strerror(readError);
    return readError == 0;
}

CertificateRecord makeRecord(const std::string &der, const std::string &subject, std::int64_t notAfterEpoch,
                             std::int64_t now, const RenewalRules &rules)
{
    CertificateRecord record;
    record.der = der;
    record.subject = subject;
    record.notAfter = OrvelGui::formatDate(notAfterEpoch);
    record.renewDeadline = OrvelGui::formatDate(notAfterEpoch - rules.renewDays * kDay);
    const std::int64_t days = floorDays(notAfterEpoch - now);
    record.daysRemaining = static_cast<std::int32_t>(days < INT_MIN ? INT_MIN : days > INT_MAX ? INT_MAX : days);
    record.warnRenew = days < rules.warnDays;
    record.forceRenew = days < rules.forceDays;
    return record;
}

bool HostCertificates::load(const std::vector<std::string> &files, const RenewalRules &rules, std::string &error)
{
    const std::int64_t now = static_cast<std::int64_t>(std::time(nullptr));
    for (const std::string &path : files) {
        std::string content;
        if (!readFile(path, content, error))
            return false;
        const OrvelGui::CertificateDetails details = OrvelGui::readCertificate(content);
        if (!details.isCertificate || details.der.empty() || !details.notAfterEpoch) {
            error = path + ": not a PEM or DER certificate";
            return false;
        }
        stored_.push_back(std::make_unique<CertificateRecord>(
            makeRecord(details.der, details.subject, *details.notAfterEpoch, now, rules)));
    }
    records_.clear();
    for (const auto &stored : stored_) {
        ORV_Certificate record{};
        record.data = stored->der.data();
        record.dataLength = static_cast<unsigned>(stored->der.size());
        record.subjectStr = stored->subject.data();
        record.notAfterStr = stored->notAfter.data();
        record.renewDeadlineStr = stored->renewDeadline.data();
        record.validDaysRemaining = stored->daysRemaining;
        record.forceRenew = stored->forceRenew;
        record.warnRenew = stored->warnRenew;
        records_.push_back(record);
    }
    return true;
}

} // namespace OrvelTool
