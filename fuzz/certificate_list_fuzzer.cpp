// The certificate list decoder on arbitrary text, and on the Base64 of
// arbitrary bytes (so that the property-list parsers see every byte): it
// either fails and leaves the out array alone, or appends certificates whose
// texts are text, and which encode and decode again to the same certificates.
#include "FuzzCheck.hpp"

#include <OrvelGUIDialogs/Certificate.hpp>

#include "platform/HostText.hpp"

#include <vector>

namespace {

bool textOk(const std::optional<std::string> &text)
{
    return !text || OrvelDialogs::Platform::isValidUtf8(*text);
}

bool same(const Certificate &a, const Certificate &b)
{
    return a.data() == b.data() && a.subjectStr() == b.subjectStr() && a.notAfterStr() == b.notAfterStr() &&
           a.renewDeadlineStr() == b.renewDeadlineStr() && a.validDaysRemaning() == b.validDaysRemaning() &&
           a.forceRenew() == b.forceRenew() && a.warnRenew() == b.warnRenew();
}

// Texts that the list's XML carries unchanged: no zero byte (a C string
// ends there) and none of the characters that XML 1.0 cannot hold.
bool xmlCarries(const std::optional<std::string> &text)
{
    if (!text || text->find("\xEF\xBF\xBE") != std::string::npos || text->find("\xEF\xBF\xBF") != std::string::npos)
        return false;
    for (const char c : *text) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte < 0x20 && byte != '\t' && byte != '\n' && byte != '\r')
            return false;
    }
    return true;
}

void decode(const std::string &text)
{
    // Already there: the decoder appends and must not touch it.
    std::vector<Certificate> certificates(1);
    const int result = Certificate::decodeCertificateArrayFromPropertyList(text, certificates);
    FUZZ_CHECK(result == 0 || result == 7);
    if (result == 7) {
        FUZZ_CHECK(certificates.size() == 1);
        return;
    }
    FUZZ_CHECK(certificates.size() > 1);
    certificates.erase(certificates.begin());

    std::vector<Certificate> carried;
    for (const Certificate &certificate : certificates) {
        FUZZ_CHECK(textOk(certificate.subjectStr()) && textOk(certificate.notAfterStr()) &&
                   textOk(certificate.renewDeadlineStr()));
        if (xmlCarries(certificate.subjectStr()) && xmlCarries(certificate.notAfterStr()) &&
            xmlCarries(certificate.renewDeadlineStr()))
            carried.push_back(certificate);
    }
    if (carried.empty())
        return;
    std::string listText;
    FUZZ_CHECK(Certificate::encodeCertificateArrayToPropertyList(carried, listText) == 0);
    std::vector<Certificate> again;
    FUZZ_CHECK(Certificate::decodeCertificateArrayFromPropertyList(listText, again) == 0);
    FUZZ_CHECK(again.size() == carried.size());
    for (size_t i = 0; i < carried.size(); ++i)
        FUZZ_CHECK(same(again[i], carried[i]));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const std::string bytes = OrvelFuzz::bytesOf(data, size);
    decode(bytes);
    decode(Certificate::dataToBase64String(bytes));
    return 0;
}
