#include "desktop/HostWatch.hpp"

#include <QSocketNotifier>

#include <unistd.h>

namespace OrvelGui {

HostWatch::HostWatch(QObject *parent) : QObject(parent), input_(STDIN_FILENO, unread_)
{
    if (input_.fd() < 0)
        return;
    notifier_ = new QSocketNotifier(input_.fd(), QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, [this] {
        if (!input_.readAvailable())
            return;
        notifier_->setEnabled(false);
        emit hostGone();
    });
}

} // namespace OrvelGui
