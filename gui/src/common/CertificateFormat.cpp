#include "common/CertificateText.hpp"

#include <ctime>

namespace OrvelGui {

std::optional<std::int64_t> daysRemaining(const CertificateDetails &details, std::int64_t now)
{
    if (!details.notAfterEpoch)
        return std::nullopt;
    const std::int64_t seconds = *details.notAfterEpoch - now;
    // Rounded down, also below zero: one second past the end is day -1.
    return seconds >= 0 ? seconds / 86400 : -((-seconds + 86399) / 86400);
}

std::string formatDate(std::int64_t epochSeconds)
{
    const auto time = static_cast<std::time_t>(epochSeconds);
    struct tm tm{};
    if (!gmtime_r(&time, &tm))
        return "?";
    char buffer[32];
    std::strftime(buffer, sizeof buffer, "%Y-%m-%d", &tm);
    return buffer;
}

std::string hexPreview(std::string_view bytes, std::size_t limit)
{
    static const char digits[] = "0123456789abcdef";
    std::string out;
    for (std::size_t i = 0; i < bytes.size() && i < limit; ++i) {
        if (i)
            out.push_back(' ');
        const auto b = static_cast<unsigned char>(bytes[i]);
        out.push_back(digits[b >> 4]);
        out.push_back(digits[b & 0x0F]);
    }
    return out;
}

} // namespace OrvelGui
