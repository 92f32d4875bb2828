#include "desktop/MessageWindow.hpp"

#include "desktop/HostText.hpp"

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
    auto *column = new QVBoxLayout;
    const VisibleText message = visibleText(request.message);
    const VisibleText info = visibleText(request.info);
    if (QLabel *warning = hiddenCharactersWarning(texts(request.language), message.hiddenCharacters +
                                                                               info.hiddenCharacters, parent))
        column->addWidget(warning);
    auto *messageText = new HostText(message, parent);
    messageText->setAccessibleName(QStringLiteral("message"));
    column->addWidget(messageText);
    if (!request.info.empty()) {
        auto *infoText = new HostText(info, parent);
        infoText->setAccessibleName(QStringLiteral("info"));
        column->addWidget(infoText);
    }
    column->addStretch();
    row->addLayout(column, 1);
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
