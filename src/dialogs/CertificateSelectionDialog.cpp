// The user chooses one of the host's certificates.
#include "dialogs/CertificateList.hpp"
#include "dialogs/DialogExchange.hpp"
#include "state/Language.hpp"

namespace OrvelDialogs {

using namespace Dialogs;

long Dialog::displaySelectCertificateDialog(const ORV_Certificate *certs, unsigned int count, unsigned int *selected)
{
    State::resolveLanguage();
    if (!appPathIsSet())
        return kPathNotSet;
    if (const long refused = checkCertificateArguments(certs, count, selected))
        return refused;

    return withExceptionPath([&]() -> long {
        std::string listText;
        if (const long failed = makeCertificateList(certs, count, listText))
            return failed;
        const auto arguments = argumentList({"-window", "CertificateSelect", "-lang", languageCode(), "-selectedCert",
                                             decimal(*selected), "-certs", std::move(listText)});
        const ExchangeResult exchange = runExchange("CertificateSelect", arguments);
        if (const auto settled = exchange.settledBeforeInterpretation())
            return *settled;
        return readChosenIndex(exchange.reply, 1, count,
                               "Neočekávaný formát odpovědi z okna SelectCertificate\n", *selected);
    });
}

} // namespace OrvelDialogs

extern "C" long ORV_SelectCertificate(const ORV_Certificate *certs, unsigned int count, unsigned int *selected)
{
    return OrvelDialogs::Dialogs::callFromC(
        [&] { return OrvelDialogs::Dialog::displaySelectCertificateDialog(certs, count, selected); });
}
