// Watches the GUI application's standard input from the Qt event loop. The
// host keeps its end open while a dialog runs, so end of input means the host
// is gone and the window must not stay behind.
#pragma once

#include <QObject>

class QSocketNotifier;

namespace OrvelGui {

class HostWatch : public QObject {
    Q_OBJECT
public:
    explicit HostWatch(QObject *parent);
    // A terminal or /dev/null on standard input is no host (someone ran the
    // application by hand), so only a pipe or a socket is watched.
    static bool inputComesFromHost();

signals:
    void hostGone();

private:
    void readInput();
    QSocketNotifier *notifier_ = nullptr;
};

} // namespace OrvelGui
