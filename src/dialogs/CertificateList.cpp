#include "dialogs/CertificateList.hpp"

#include <OrvelGUIDialogs/Certificate.hpp>

#include "dialogs/DialogExchange.hpp"
#include "launcher/ReplyTokens.hpp"

#include <cstdint>
#include <vector>

namespace OrvelDialogs::Dialogs {

long checkCertificateArguments(const ORV_Certificate *certs, unsigned int count, const unsigned int *selected)
{
    if (certs == nullptr || count == 0 || selected == nullptr || *selected >= count)
        return kBadArgument;
    for (unsigned int i = 0; i < count; ++i) {
        const ORV_Certificate &record = certs[i];
        if (record.data == nullptr || record.dataLength == 0 || record.notAfterStr == nullptr ||
            record.subjectStr == nullptr)
            return kBadArgument;
    }
    return kSuccess;
}

long makeCertificateList(const ORV_Certificate *certs, unsigned int count, std::string &listText)
{
    std::vector<Certificate> certificates(count);
    for (unsigned int i = 0; i < count; ++i)
        certificates[i].initWithCertificate(certs[i]);
    if (const int failed = Certificate::encodeCertificateArrayToPropertyList(certificates, listText))
        return failed;
    if (listText.empty()) {
        logMsg("Nepodařilo se serializovat pole certifikátů.");
        return kExchangeFailed;
    }
    return kSuccess;
}

long readChosenIndex(std::string_view reply, size_t at, unsigned int count, const std::string &formatEntry,
                     unsigned int &chosen)
{
    if (Launcher::tokenAt(reply, at) != "-selectedCert") {
        logMsg(formatEntry);
        return kExchangeFailed;
    }
    const long long index = integerValue(Launcher::tokenAt(reply, at + 1));
    // As an unsigned number every negative index is far above any count.
    if (static_cast<std::uint64_t>(index) >= count) {
        logMsg("Index vybraného certifikátu neodpovídá povolenému obsahu\n");
        return kExchangeFailed;
    }
    chosen = static_cast<unsigned int>(index);
    return kSuccess;
}

} // namespace OrvelDialogs::Dialogs
