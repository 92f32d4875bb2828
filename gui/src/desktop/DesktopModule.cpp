// The entry point of the desktop module (libOrvelGUIDesktop).
#include "desktop/DesktopFrontEnd.hpp"
#include "desktop/DesktopSession.hpp"
#include "desktop/FirstPaintHook.hpp"

#include <QApplication>

#include <memory>

namespace OrvelGui {
namespace {

class QtDesktopSession final : public DesktopSession {
public:
    explicit QtDesktopSession(GuiLog &log) : application_(argc_, argv_), frontEnd_(log)
    {
        QApplication::setApplicationDisplayName(QStringLiteral("Orvel Dialogs"));
        FirstPaintHook::installIfRequested(&application_);
    }
    FrontEnd &frontEnd() override { return frontEnd_; }

private:
    // Qt reads options such as "-style" from its arguments; the dialog's own
    // arguments (any text the host sent) must never reach it.
    int argc_ = 1;
    char name_[9] = "OrvelGUI";
    char *argv_[2] = {name_, nullptr};
    QApplication application_;
    DesktopFrontEnd frontEnd_;
};

} // namespace
} // namespace OrvelGui

extern "C" __attribute__((visibility("default"))) OrvelGui::DesktopSession *
orvelGuiOpenDesktopSession(OrvelGui::GuiLog *log, std::string *why)
{
    if (!OrvelGui::displayReachable(*why))
        return nullptr;
    return new OrvelGui::QtDesktopSession(*log);
}
