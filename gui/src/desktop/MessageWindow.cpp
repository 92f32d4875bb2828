#include "desktop/MessageWindow.hpp"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace OrvelGui {

QLayout *iconAndText(QStyle::StandardPixmap icon, const Request &request, QWidget *parent)
{
    auto *row = new QHBoxLayout;
    auto *iconLabel = new QLabel(parent);
    const int size = parent->style()->pixelMetric(QStyle::PM_MessageBoxIconSize, nullptr, parent);
    iconLabel->setPixmap(parent->style()->standardIcon(icon, nullptr, parent).pixmap(size, size));
    iconLabel->setAlignment(Qt::AlignTop);
    row->addWidget(iconLabel);
    auto *texts = new QVBoxLayout;
    QWidget *message = messageView(request.message, parent);
    message->setAccessibleName(QStringLiteral("message"));
    texts->addWidget(message);
    if (!request.info.empty()) {
        QWidget *info = messageView(request.info, parent);
        info->setAccessibleName(QStringLiteral("info"));
        texts->addWidget(info);
    }
    texts->addStretch();
    row->addLayout(texts, 1);
    // Wide enough that a usual sentence stays on one or two lines.
    message->setMinimumWidth(360);
    return row;
}

MessageWindow::MessageWindow(const Request &request, QWidget *parent)
    : DesktopWindow(request, texts(request.language).iconNames[request.icon], parent)
{
    static constexpr QStyle::StandardPixmap kIcons[] = {QStyle::SP_MessageBoxInformation,
                                                        QStyle::SP_MessageBoxWarning,
                                                        QStyle::SP_MessageBoxCritical};
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(iconAndText(kIcons[request.icon], request, this));
    addOkButton(layout);
}

} // namespace OrvelGui
