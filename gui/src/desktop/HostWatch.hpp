// Watches the host's end of our standard input from the Qt event loop (see
// HostInput): when it ends, the host is gone and the window must not stay
// behind.
#pragma once

#include "protocol/GuiLog.hpp"
#include "protocol/HostInput.hpp"

#include <QObject>

class QSocketNotifier;

namespace OrvelGui {

class HostWatch : public QObject {
    Q_OBJECT
public:
    explicit HostWatch(QObject *parent);

signals:
    void hostGone();

private:
    // Nobody reads the reply of a host that is gone, so the end is noted here
    // and not in the application's log.
    GuiLog unread_;
    HostInput input_;
    QSocketNotifier *notifier_ = nullptr;
};

} // namespace OrvelGui
