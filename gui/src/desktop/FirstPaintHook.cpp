#include "desktop/FirstPaintHook.hpp"

#include <QDialog>
#include <QEvent>
#include <QPixmap>
#include <QPointer>
#include <QTimer>
#include <QWidget>

#include <cstdlib>
#include <string_view>

namespace OrvelGui {

void FirstPaintHook::installIfRequested(QObject *application)
{
    const char *snapshot = std::getenv("ORVEL_GUI_SNAPSHOT");
    const char *close = std::getenv("ORVEL_GUI_CLOSE_AFTER_PAINT");
    const bool wanted = (snapshot && *snapshot) || (close && std::string_view(close) == "1");
    if (!wanted)
        return;
    application->installEventFilter(new FirstPaintHook(application, QString::fromLocal8Bit(snapshot ? snapshot : "")));
}

bool FirstPaintHook::eventFilter(QObject *watched, QEvent *event)
{
    if (done_ || event->type() != QEvent::Paint)
        return false;
    auto *widget = qobject_cast<QWidget *>(watched);
    if (!widget || !widget->isVisible())
        return false;
    QWidget *window = widget->window();
    if (!window->isVisible())
        return false;
    done_ = true;
    // After the paint has finished.
    QPointer<QWidget> target(window);
    QTimer::singleShot(0, this, [this, target] {
        if (!target)
            return;
        if (!snapshot_.isEmpty())
            target->grab().save(snapshot_, "PNG");
        if (auto *dialog = qobject_cast<QDialog *>(target.data()))
            dialog->reject();
        else
            target->close();
    });
    return false;
}

} // namespace OrvelGui
