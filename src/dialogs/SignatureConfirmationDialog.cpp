// Before signing, the user confirms the data, the hash and the certificate.
#include <OrvelGUIDialogs/LibraryState.hpp>

#include "dialogs/CertificateList.hpp"
#include "dialogs/DialogExchange.hpp"
#include "launcher/ReplyTokens.hpp"
#include "platform/HostText.hpp"
#include "state/Language.hpp"

#include <limits>

namespace OrvelDialogs {

using namespace Dialogs;

namespace {

const std::string kFormatEntry = "Neočekávaný formát odpovědi z okna ConfirmSignature\n";

// The Base64 of a host text's UTF-8 bytes; text that is not UTF-8 gives no
// bytes, and so the empty value. A null text cannot be converted at all.
// Checked where it lies: a document of many MiB is not copied first.
std::string base64OfText(const char *text, const char *name)
{
    if (text == nullptr)
        throw Platform::PlatformException(std::string("no text for ") + name);
    std::string_view bytes(text);
    if (!Platform::isValidUtf8(bytes))
        bytes = {};
    if (bytes.size() > std::numeric_limits<unsigned int>::max())
        throw Platform::PlatformException(std::string(name) + " is too long");
    return Util::Base64Encode(reinterpret_cast<const unsigned char *>(bytes.data()),
                              static_cast<unsigned int>(bytes.size()));
}

} // namespace

long Dialog::displayConfirmSignatureDialog(const ORV_Certificate *certs, unsigned int count, unsigned int *selected,
                                           const char *data, const char *rtf, const char *hashAlg,
                                           const char *hashVal, bool *confirmed)
{
    State::resolveLanguage();
    if (!appPathIsSet())
        return kPathNotSet;
    // A null `confirmed` is refused with the other pointers: a well-formed
    // reply is written through it.
    if (confirmed == nullptr)
        return kBadArgument;
    if (const long refused = checkCertificateArguments(certs, count, selected))
        return refused;
    logMsg("Input parameters checked");
    logMsg("Creating certificates array");

    return withExceptionPath([&]() -> long {
        std::string listText;
        if (const long failed = makeCertificateList(certs, count, listText))
            return failed;
        const std::string language = languageCode();
        const OptionalText version = g_orvelSignVersion;
        const std::string preselected = decimal(*selected);
        std::string dataValue = base64OfText(data, "-data");
        OptionalText rtfValue = rtf ? OptionalText(base64OfText(rtf, "-rtf")) : std::nullopt;
        const OptionalText hashAlgorithm = hostText(hashAlg);
        const OptionalText hashValue = hostText(hashVal);

        // The large values are moved, not copied, into the list.
        const auto arguments =
            rtfValue ? argumentList({"-window", "SignatureConfirm", "-lang", language, "-version", version, "-data",
                                     std::move(dataValue), "-hashAlg", hashAlgorithm, "-hashVal", hashValue,
                                     "-selectedCert", preselected, "-rtf", std::move(rtfValue), "-certs",
                                     std::move(listText)})
                     : argumentList({"-window", "SignatureConfirm", "-lang", language, "-version", version, "-data",
                                     std::move(dataValue), "-hashAlg", hashAlgorithm, "-hashVal", hashValue,
                                     "-selectedCert", preselected, "-certs", std::move(listText)});
        const ExchangeResult exchange = runExchange("SignatureConfirm", arguments, {.rawStatus = true});
        if (const auto settled = exchange.settledBeforeInterpretation())
            return *settled;

        if (Launcher::tokenAt(exchange.reply, 1) != "-result") {
            logMsg(kFormatEntry);
            return kExchangeFailed;
        }
        *confirmed = integerValue(Launcher::tokenAt(exchange.reply, 2)) != 0;
        return readChosenIndex(exchange.reply, 3, count, kFormatEntry, *selected);
    });
}

} // namespace OrvelDialogs

extern "C" long ORV_ConfirmSignature(const ORV_Certificate *certs, unsigned int count, unsigned int *selected,
                                     const char *data, const char *rtf, const char *hashAlg, const char *hashVal,
                                     bool *confirmed)
{
    return OrvelDialogs::Dialogs::callFromC([&] {
        return OrvelDialogs::Dialog::displayConfirmSignatureDialog(certs, count, selected, data, rtf, hashAlg,
                                                                   hashVal, confirmed);
    });
}
