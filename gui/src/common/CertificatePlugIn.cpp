// The entry point of the certificate plug-in (libOrvelGUICertificates).
#include "common/CertificatePlugIn.hpp"

extern "C" __attribute__((visibility("default"))) const OrvelGui::CertificateFunctions *orvelGuiCertificateFunctions()
{
    static const OrvelGui::CertificateFunctions functions = {&OrvelGui::readCertificate, &OrvelGui::checkPkcs12};
    return &functions;
}
