// The OpenSSL half of the GUI application as a plug-in: reading certificates
// and checking PKCS#12 files. The executable loads it on the first call that
// needs it (CertificateLoader.cpp), so windows that show no certificate never
// load OpenSSL.
#pragma once

#include "common/CertificateText.hpp"
#include "common/Pkcs12Check.hpp"

namespace OrvelGui {

struct CertificateFunctions {
    CertificateDetails (*readCertificate)(std::string_view bytes);
    Pkcs12Check (*checkPkcs12)(const std::string &path, const std::string &password);
};

using GetCertificateFunctions = const CertificateFunctions *(*)();
inline constexpr const char *kGetCertificateFunctions = "orvelGuiCertificateFunctions";

} // namespace OrvelGui
