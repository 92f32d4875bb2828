#include "desktop/HostWindow.hpp"

#include <QEvent>
#include <QGuiApplication>
#include <QWidget>
#include <QWindow>
#include <QtGui/qguiapplication_platform.h>

#ifdef ORVEL_HAVE_XCB
#include <xcb/xcb.h>
#endif

#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string_view>

namespace OrvelGui {
namespace {

constexpr std::string_view kX11 = "x11:";
constexpr std::string_view kWayland = "wayland:";

// "0x3a00007" or "60817415"; X11 ids are 32-bit and never 0.
std::optional<std::uint32_t> x11WindowId(std::string_view text)
{
    int base = 10;
    if (text.starts_with("0x") || text.starts_with("0X")) {
        text.remove_prefix(2);
        base = 16;
    }
    std::uint32_t id = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), id, base);
    if (text.empty() || error != std::errc() || end != text.data() + text.size() || id == 0)
        return std::nullopt;
    return id;
}

// Asked on Qt's own connection; true when it cannot be asked.
bool x11WindowExists(std::uint32_t id)
{
#ifdef ORVEL_HAVE_XCB
    const auto *x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (x11 == nullptr || x11->connection() == nullptr)
        return true;
    xcb_connection_t *connection = x11->connection();
    xcb_generic_error_t *error = nullptr;
    std::free(xcb_get_window_attributes_reply(connection, xcb_get_window_attributes(connection, id), &error));
    const bool exists = error == nullptr;
    std::free(error);
    return exists;
#else
    (void)id;
    return true;
#endif
}

} // namespace

HostWindow::HostWindow(GuiLog &log) : log_(log)
{
    const char *handle = std::getenv("ORVEL_GUI_PARENT_WINDOW");
    if (handle == nullptr || *handle == '\0')
        return;
    handle_ = handle;
    qApp->installEventFilter(this);
}

HostWindow::~HostWindow()
{
    delete host_;
}

QWindow *HostWindow::hostWindow()
{
    if (looked_)
        return host_;
    looked_ = true;
    const std::string platform = QGuiApplication::platformName().toStdString();
    const std::string cannot = "The window cannot stay above the host's window " + handle_ + ": ";
    const std::string_view handle = handle_;
    if (handle.starts_with(kX11)) {
        const auto id = x11WindowId(handle.substr(kX11.size()));
        if (!id)
            log_.add(cannot + "an X11 window id is a number, such as x11:0x3a00007.");
        else if (platform != "xcb")
            log_.add(cannot + "the display is " + platform + ", not X11.");
        else if (!x11WindowExists(*id))
            log_.add(cannot + "the X server has no such window.");
        else
            host_ = QWindow::fromWinId(static_cast<WId>(*id));
    } else if (handle.starts_with(kWayland)) {
        if (platform != "wayland")
            log_.add(cannot + "the display is " + platform + ", not Wayland.");
        else
            log_.add(cannot + "Qt " QT_VERSION_STR " offers no way to import an xdg-foreign handle.");
    } else {
        log_.add(cannot + "it takes x11:ID or wayland:HANDLE.");
    }
    if (host_)
        log_.add("The window stays above the host's window " + handle_ + ".");
    return host_;
}

bool HostWindow::eventFilter(QObject *watched, QEvent *event)
{
    // A widget's Show event comes before its window is mapped, which is when
    // the window manager reads whose transient the window is.
    if (event->type() != QEvent::Show || !watched->isWidgetType())
        return false;
    auto *widget = static_cast<QWidget *>(watched);
    const Qt::WindowType type = widget->windowType();
    if (!widget->isWindow() || widget->parentWidget() != nullptr || (type != Qt::Dialog && type != Qt::Window))
        return false;
    QWindow *window = widget->windowHandle();
    if (window != nullptr && window->transientParent() == nullptr && hostWindow() != nullptr)
        window->setTransientParent(host_);
    return false;
}

} // namespace OrvelGui
