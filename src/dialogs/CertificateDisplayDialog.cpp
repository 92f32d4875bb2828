// Shows one certificate, handed over as raw bytes.
#include "dialogs/DialogExchange.hpp"

namespace OrvelDialogs {

using namespace Dialogs;

long Dialog::displayCertificate(unsigned char *data, unsigned int length)
{
    if (data == nullptr || length == 0)
        return kNoCertificateData;
    if (!appPathIsSet())
        return kPathNotSet;

    const std::string certificate = Util::Base64Encode(data, length);

    return withExceptionPath([&] {
        const auto arguments = argumentList({"-window", "DisplayCert", "-cert", certificate});
        return resultIgnoringReply(runExchange("DisplayCert", arguments));
    });
}

} // namespace OrvelDialogs

extern "C" long ORV_DisplayCertificate(unsigned char *data, unsigned int length)
{
    return OrvelDialogs::Dialogs::callFromC([&] { return OrvelDialogs::Dialog::displayCertificate(data, length); });
}
