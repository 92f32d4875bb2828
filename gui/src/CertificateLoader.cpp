// readCertificate() and checkPkcs12() for the executable: they load the
// certificate plug-in on first use and call into it.
#include "PlugIns.hpp"
#include "common/CertificatePlugIn.hpp"

#include <dlfcn.h>

#include <cstdio>

namespace OrvelGui {
namespace {

const CertificateFunctions *certificateFunctions()
{
    static const CertificateFunctions *const loaded = [] {
        std::string error;
        void *handle = openPlugIn(ORVEL_GUI_CERTIFICATES_MODULE, error);
        const auto get =
            handle ? reinterpret_cast<GetCertificateFunctions>(dlsym(handle, kGetCertificateFunctions)) : nullptr;
        if (!get) {
            // Said once; the windows then show the bytes as no certificate.
            std::fprintf(stderr, "OrvelGUI: certificates cannot be read: %s\n",
                         handle ? "the plug-in has no entry point" : error.c_str());
            return static_cast<const CertificateFunctions *>(nullptr);
        }
        return get();
    }();
    return loaded;
}

} // namespace

CertificateDetails readCertificate(std::string_view bytes)
{
    const CertificateFunctions *functions = certificateFunctions();
    return functions ? functions->readCertificate(bytes) : CertificateDetails{};
}

Pkcs12Check checkPkcs12(const std::string &path, const std::string &password)
{
    const CertificateFunctions *functions = certificateFunctions();
    return functions ? functions->checkPkcs12(path, password) : Pkcs12Check::CannotRead;
}

} // namespace OrvelGui
