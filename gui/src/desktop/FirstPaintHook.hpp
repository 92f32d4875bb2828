// For screenshots and benchmarks: once the first window has been painted,
// save a picture of it (ORVEL_GUI_SNAPSHOT=file.png) and close it as if the
// user had backed out (also with ORVEL_GUI_CLOSE_AFTER_PAINT=1 alone). Not
// installed unless one of the two variables is set.
#pragma once

#include <QObject>
#include <QString>

namespace OrvelGui {

class FirstPaintHook : public QObject {
    Q_OBJECT
public:
    // Installs itself on the application when asked to by the environment.
    static void installIfRequested(QObject *application);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    FirstPaintHook(QObject *parent, QString snapshot) : QObject(parent), snapshot_(std::move(snapshot)) {}
    QString snapshot_;
    bool done_ = false;
};

} // namespace OrvelGui
