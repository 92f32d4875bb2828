#include "desktop/YesNoWindow.hpp"

#include "desktop/MessageWindow.hpp"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QVBoxLayout>

namespace OrvelGui {

YesNoWindow::YesNoWindow(const Request &request, QWidget *parent)
    : DesktopWindow(request, texts(request.language).titleQuestion, parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(iconAndText(QStyle::SP_MessageBoxQuestion, request, this));
    auto *buttons = new QDialogButtonBox(this);
    QPushButton *yes = buttons->addButton(qs(texts_.yes), QDialogButtonBox::YesRole);
    QPushButton *no = buttons->addButton(qs(texts_.no), QDialogButtonBox::NoRole);
    yes->setAccessibleName(qs(texts_.yes));
    no->setAccessibleName(qs(texts_.no));
    QPushButton *preselected = request.button == 0 ? yes : no;
    preselected->setDefault(true);
    preselected->setFocus();
    connect(yes, &QPushButton::clicked, this, [this] {
        yes_ = true;
        accept();
    });
    connect(no, &QPushButton::clicked, this, [this] {
        yes_ = false;
        accept();
    });
    layout->addWidget(buttons);
}

} // namespace OrvelGui
