// "DisplayCert", and the details behind the certificate lists: what the
// certificate says, read with OpenSSL; bytes that are no certificate are shown
// as bytes.
#pragma once

#include "desktop/DesktopWindow.hpp"

namespace OrvelGui {

class CertificateViewer : public DesktopWindow {
    Q_OBJECT
public:
    CertificateViewer(const Request &request, const std::string &bytes, QWidget *parent = nullptr);
};

} // namespace OrvelGui
