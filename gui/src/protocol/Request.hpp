// What the library asks for and what the user answered: the request decoded
// from the command line and the answer that goes into the reply.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace OrvelGui {

enum class Window {
    MessageBox,
    YesNoDialog,
    FileOpen,
    FileSave,
    ReinsertCard,
    DisplayCert,
    CertificateSelect,
    SignatureConfirm,
    SelectPKCS12,
};

enum class Language { Czech, Slovak, English };

// One certificate of "-certs", decoded.
struct CertificateEntry {
    std::string data; // the certificate's bytes as the host gave them
    std::string subject;
    std::string notAfter;
    std::string renewDeadline;
    std::int32_t daysRemaining = 0;
    bool forceRenew = false;
    bool warnRenew = false;
};

// Everything a window needs, decoded and checked. Only the fields of the
// requested window are filled.
struct Request {
    Window window = Window::MessageBox;
    std::string windowName;
    Language language = Language::English;
    std::string message;
    std::string info;
    int icon = 0;   // 0 information, 1 warning, 2 error
    int button = 0; // the preselected answer: 0 yes, 1 no
    std::string fileFilter;
    std::string fileName;
    std::string certificate; // DisplayCert: the bytes of "-cert"
    std::vector<CertificateEntry> certificates;
    unsigned selected = 0;
    std::string version;
    std::string data;
    std::optional<std::string> rtf;
    std::string hashAlg;
    std::string hashVal;
};

// What the user answered; only the fields of the window are used.
struct Answer {
    bool yes = false;
    std::string path;
    std::string secondValue;
    unsigned selected = 0;
    bool confirmed = false;
};

} // namespace OrvelGui
