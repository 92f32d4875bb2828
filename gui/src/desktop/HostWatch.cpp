#include "desktop/HostWatch.hpp"

#include <QSocketNotifier>

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace OrvelGui {

bool HostWatch::inputComesFromHost()
{
    struct stat info{};
    return ::fstat(STDIN_FILENO, &info) == 0 && (S_ISFIFO(info.st_mode) || S_ISSOCK(info.st_mode));
}

HostWatch::HostWatch(QObject *parent) : QObject(parent)
{
    if (!inputComesFromHost())
        return;
    notifier_ = new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, &HostWatch::readInput);
}

void HostWatch::readInput()
{
    // A modal window expects no input: whatever comes is read and dropped.
    char buffer[4096];
    ssize_t n = 0;
    do {
        n = ::read(STDIN_FILENO, buffer, sizeof buffer);
    } while (n < 0 && errno == EINTR);
    if (n > 0 || (n < 0 && errno == EAGAIN))
        return;
    notifier_->setEnabled(false);
    emit hostGone();
}

} // namespace OrvelGui
