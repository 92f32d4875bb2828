#include "desktop/ReinsertCardWindow.hpp"

#include "desktop/HostText.hpp"

#include <QDialogButtonBox>
#include <QEventLoop>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QSocketNotifier>
#include <QStyle>
#include <QVBoxLayout>

#include <vector>

namespace OrvelGui {

ReinsertCardWindow::ReinsertCardWindow(const Request &request, ReinsertCommandReader &commands, GuiLog &log,
                                       QWidget *parent)
    : DesktopWindow(request, texts(request.language).titleReinsert, parent, false), commands_(commands), log_(log)
{
    setModal(false);
    auto *layout = new QVBoxLayout(this);
    auto *row = new QHBoxLayout;
    auto *icon = new QLabel(this);
    const int size = style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, this);
    icon->setPixmap(style()->standardIcon(QStyle::SP_DriveHDIcon, nullptr, this).pixmap(size, size));
    icon->setAlignment(Qt::AlignTop);
    row->addWidget(icon);
    const VisibleText text = visibleText(request.message);
    auto *message = new HostText(text, this);
    message->setAccessibleName(QStringLiteral("message"));
    row->addWidget(message, 1);
    if (QLabel *warning = hiddenCharactersWarning(texts_, text.hiddenCharacters, this))
        layout->addWidget(warning);
    layout->addLayout(row);

    state_ = plainLabel(qs(texts_.reinsertWaiting), this);
    state_->setAccessibleName(QStringLiteral("state"));
    QFont bold = state_->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.3);
    state_->setFont(bold);
    state_->setAlignment(Qt::AlignCenter);
    layout->addWidget(state_);
    // Runs for as long as the notice waits: the application is not stuck.
    auto *busy = new QProgressBar(this);
    busy->setRange(0, 0);
    busy->setTextVisible(false);
    busy->setAccessibleName(qs(texts_.reinsertWaiting));
    layout->addWidget(busy);

    auto *buttons = new QDialogButtonBox(this);
    QPushButton *hide = buttons->addButton(qs(texts_.hide), QDialogButtonBox::RejectRole);
    hide->setAccessibleName(qs(texts_.hide));
    hide->setDefault(true);
    hide->setFocus();
    connect(buttons, &QDialogButtonBox::rejected, this, &ReinsertCardWindow::reject);
    layout->addWidget(buttons);
    setMinimumWidth(420);

    notifier_ = new QSocketNotifier(commands_.fd(), QSocketNotifier::Read, this);
    connect(notifier_, &QSocketNotifier::activated, this, &ReinsertCardWindow::takeCommands);
}

void ReinsertCardWindow::showState(ReinsertCommand command)
{
    const bool insert = command == ReinsertCommand::Insert;
    state_->setText(qs(insert ? texts_.reinsertInsert : texts_.reinsertRemove));
    log_.add(insert ? "Text: insert." : "Text: remove.");
}

void ReinsertCardWindow::takeCommands()
{
    std::vector<ReinsertCommand> received;
    commands_.readAvailable(received);
    for (ReinsertCommand command : received) {
        if (command == ReinsertCommand::Close) {
            log_.add("Notice closed.");
            notifier_->setEnabled(false);
            ended_ = true;
            QDialog::reject();
            return;
        }
        showState(command);
    }
}

void ReinsertCardWindow::reject()
{
    // Escape, the close button and Hide only hide the notice: the host still
    // sends its commands and must not see its writes fail.
    if (!hidden_ && !ended_) {
        hidden_ = true;
        log_.add("The user hid the notice.");
    }
    hide();
}

Outcome ReinsertCardWindow::run()
{
    show();
    QEventLoop loop;
    connect(this, &QDialog::finished, &loop, &QEventLoop::quit);
    while (!ended_)
        loop.exec();
    return hidden_ ? Outcome::Cancelled : Outcome::Answered;
}

} // namespace OrvelGui
