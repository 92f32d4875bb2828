#include "desktop/DesktopFrontEnd.hpp"

#include "common/CertificateText.hpp"
#include "desktop/CertificateSelectWindow.hpp"
#include "desktop/CertificateViewer.hpp"
#include "desktop/FileChooserWindow.hpp"
#include "desktop/MessageWindow.hpp"
#include "desktop/Pkcs12Window.hpp"
#include "desktop/ReinsertCardWindow.hpp"
#include "desktop/SignatureConfirmWindow.hpp"
#include "desktop/YesNoWindow.hpp"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

#include <dlfcn.h>
#include <sys/stat.h>

#include <cstdlib>
#include <string>

namespace OrvelGui {

DesktopFrontEnd::DesktopFrontEnd(GuiLog &log) : log_(log) {}
DesktopFrontEnd::~DesktopFrontEnd() = default;

void DesktopFrontEnd::translate(Language language)
{
    if (translator_) {
        QCoreApplication::removeTranslator(translator_.get());
        translator_.reset();
    }
    if (language == Language::English)
        return;
    auto translator = std::make_unique<QTranslator>();
    const QString name = language == Language::Czech ? QStringLiteral("qtbase_cs") : QStringLiteral("qtbase_sk");
    // Without the translation package Qt's words stay English; ours are not affected.
    if (translator->load(name, QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(translator.get());
        translator_ = std::move(translator);
    }
}

Outcome DesktopFrontEnd::showMessage(const Request &request)
{
    MessageWindow window(request);
    window.exec();
    // Closing the message counts as having read it; only a host that went
    // away is no answer.
    return window.hostGone() ? Outcome::Cancelled : Outcome::Answered;
}

Outcome DesktopFrontEnd::askYesNo(const Request &request, Answer &answer)
{
    YesNoWindow window(request);
    if (window.exec() != QDialog::Accepted)
        return Outcome::Cancelled;
    answer.yes = window.yes();
    log_.add(answer.yes ? "Answer: yes." : "Answer: no.");
    return Outcome::Answered;
}

Outcome DesktopFrontEnd::chooseFile(const Request &request, Answer &answer)
{
    translate(request.language);
    FileChooserWindow window(request);
    if (window.exec() != QDialog::Accepted || window.chosenPath().empty())
        return Outcome::Cancelled;
    answer.path = window.chosenPath();
    log_.add(request.window == Window::FileSave ? "File name chosen." : "File chosen.");
    return Outcome::Answered;
}

Outcome DesktopFrontEnd::showCertificate(const Request &request)
{
    CertificateViewer window(request, request.certificate);
    log_.add(readCertificate(request.certificate).isCertificate ? "Certificate shown."
                                                                : "The -cert bytes are no certificate.");
    window.exec();
    return window.hostGone() ? Outcome::Cancelled : Outcome::Answered;
}

Outcome DesktopFrontEnd::selectCertificate(const Request &request, Answer &answer)
{
    CertificateSelectWindow window(request, request.selected);
    if (window.exec() != QDialog::Accepted)
        return Outcome::Cancelled;
    answer.selected = window.selected();
    log_.add("Certificate " + std::to_string(answer.selected) + " chosen.");
    return Outcome::Answered;
}

Outcome DesktopFrontEnd::confirmSignature(const Request &request, Answer &answer)
{
    SignatureConfirmWindow window(request);
    if (window.exec() != QDialog::Accepted)
        return Outcome::Cancelled;
    answer.confirmed = window.confirmed();
    answer.selected = window.selected();
    log_.add(std::string(answer.confirmed ? "Signature confirmed" : "Signature declined") + " with certificate " +
             std::to_string(answer.selected) + ".");
    return Outcome::Answered;
}

Outcome DesktopFrontEnd::selectPkcs12(const Request &request, Answer &answer)
{
    translate(request.language);
    Pkcs12Window window(request);
    if (window.exec() != QDialog::Accepted)
        return Outcome::Cancelled;
    answer.path = window.path();
    answer.secondValue = window.password();
    log_.add("PKCS#12 file chosen.");
    return Outcome::Answered;
}

Outcome DesktopFrontEnd::reinsertCard(const Request &request, ReinsertCommandReader &commands)
{
    ReinsertCardWindow window(request, commands, log_);
    return window.run();
}

namespace {

bool nonEmpty(const char *name)
{
    const char *value = std::getenv(name);
    return value && *value;
}

// Asks the X server itself, through the library Qt's own X11 support loads
// anyway; without that library Qt could not use X11 either.
bool xServerAnswers(std::string &why)
{
    void *xcb = dlopen("libxcb.so.1", RTLD_NOW | RTLD_LOCAL);
    if (!xcb) {
        why = "libxcb cannot be loaded";
        return false;
    }
    using Connect = void *(*)(const char *, int *);
    using HasError = int (*)(void *);
    using Disconnect = void (*)(void *);
    const auto connect = reinterpret_cast<Connect>(dlsym(xcb, "xcb_connect"));
    const auto hasError = reinterpret_cast<HasError>(dlsym(xcb, "xcb_connection_has_error"));
    const auto disconnect = reinterpret_cast<Disconnect>(dlsym(xcb, "xcb_disconnect"));
    bool answers = false;
    if (connect && hasError && disconnect) {
        void *connection = connect(nullptr, nullptr);
        answers = connection && hasError(connection) == 0;
        if (connection)
            disconnect(connection);
    }
    dlclose(xcb);
    if (!answers)
        why = std::string("the X display ") + std::getenv("DISPLAY") + " does not answer";
    return answers;
}

bool waylandSocketExists(std::string &why)
{
    const std::string display = std::getenv("WAYLAND_DISPLAY");
    std::string path = display;
    if (display.front() != '/') {
        const char *runtime = std::getenv("XDG_RUNTIME_DIR");
        path = std::string(runtime ? runtime : "") + "/" + display;
    }
    struct stat info{};
    if (::stat(path.c_str(), &info) == 0 && S_ISSOCK(info.st_mode))
        return true;
    why = "no Wayland socket at " + path;
    return false;
}

} // namespace

bool displayReachable(std::string &why)
{
#ifdef __APPLE__
    (void)why;
    return true;
#else
    if (nonEmpty("QT_QPA_PLATFORM"))
        return true; // the user chose the platform; Qt reports its own failure
    if (nonEmpty("WAYLAND_DISPLAY") && waylandSocketExists(why))
        return true;
    if (nonEmpty("DISPLAY"))
        return xServerAnswers(why);
    if (why.empty())
        why = "neither DISPLAY nor WAYLAND_DISPLAY is set";
    return false;
#endif
}

} // namespace OrvelGui
