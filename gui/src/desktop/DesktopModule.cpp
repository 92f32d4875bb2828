// The entry point of the desktop module (libOrvelGUIDesktop).
#include "desktop/DesktopFrontEnd.hpp"
#include "desktop/DesktopSession.hpp"
#include "desktop/DisplayLoss.hpp"
#include "desktop/HostWindow.hpp"
#include "desktop/SessionBus.hpp"
#include "desktop/FirstPaintHook.hpp"

#include <QApplication>
#include <QThread>

#include <cstdio>

#include <memory>

namespace OrvelGui {
namespace {

GuiLog *qtMessagesLog = nullptr;

// Qt's warnings (a missing XDG_RUNTIME_DIR, a font it lacks) belong in the
// application's log, not on the terminal the host was started from.
void logQtMessage(QtMsgType type, const QMessageLogContext &, const QString &message)
{
    if (type == QtDebugMsg || type == QtInfoMsg)
        return;
    endIfDisplayLost(message);
    if (qtMessagesLog && QThread::currentThread() == QCoreApplication::instance()->thread())
        qtMessagesLog->add("Qt: " + message.toStdString());
    else
        std::fprintf(stderr, "%s\n", message.toLocal8Bit().constData());
}

class QtDesktopSession final : public DesktopSession {
public:
    explicit QtDesktopSession(GuiLog &log)
        : messages_(log), application_(argc_, argv_), hostWindow_(log), frontEnd_(log)
    {
        QApplication::setApplicationDisplayName(QStringLiteral("Orvel Dialogs"));
        FirstPaintHook::installIfRequested(&application_);
    }
    ~QtDesktopSession() override
    {
        qInstallMessageHandler(nullptr);
        qtMessagesLog = nullptr;
    }
    FrontEnd &frontEnd() override { return frontEnd_; }

private:
    struct LogQtMessages {
        explicit LogQtMessages(GuiLog &log)
        {
            qtMessagesLog = &log;
            qInstallMessageHandler(logQtMessage);
        }
    } messages_;
    // Qt reads options such as "-style" from its arguments; the dialog's own
    // arguments (any text the host sent) must never reach it.
    int argc_ = 1;
    char name_[9] = "OrvelGUI";
    char *argv_[2] = {name_, nullptr};
    QApplication application_;
    HostWindow hostWindow_;
    DesktopFrontEnd frontEnd_;
};

} // namespace
} // namespace OrvelGui

extern "C" __attribute__((visibility("default"))) OrvelGui::DesktopSession *
orvelGuiOpenDesktopSession(OrvelGui::GuiLog *log, std::string *why)
{
    if (!OrvelGui::displayReachable(*why))
        return nullptr;
    OrvelGui::useOnlyARunningSessionBus(*log);
    return new OrvelGui::QtDesktopSession(*log);
}
