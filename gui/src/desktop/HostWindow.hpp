// Keeps our windows above the host's own window, which the host names through
// the library (ORV_SetParentWindow, ORVEL_GUI_PARENT_WINDOW here): each
// top-level window without a parent of its own is made transient for it
// before it is shown, so that a click on the host's window does not bury
// the dialog the host is waiting for. X11 only: with a Wayland handle
// (xdg-foreign) Qt 6.4 offers no way to import it. Every case where the
// window cannot follow the host's is said in the log, once.
#pragma once

#include "protocol/GuiLog.hpp"

#include <QObject>

#include <string>

class QWindow;

namespace OrvelGui {

class HostWindow : public QObject {
public:
    // Watches the application's windows when the host named a window.
    explicit HostWindow(GuiLog &log);
    ~HostWindow() override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    // The host's window as a foreign QWindow; null (and logged) when it
    // cannot be one.
    QWindow *hostWindow();

    GuiLog &log_;
    std::string handle_;
    QWindow *host_ = nullptr;
    bool looked_ = false;
};

} // namespace OrvelGui
