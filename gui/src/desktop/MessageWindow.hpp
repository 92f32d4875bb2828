// "MessageBox": the message, the info text, the icon "-icon" names, OK.
#pragma once

#include "desktop/DesktopWindow.hpp"

#include <QStyle>

class QLayout;

namespace OrvelGui {

class MessageWindow : public DesktopWindow {
    Q_OBJECT
public:
    explicit MessageWindow(const Request &request, QWidget *parent = nullptr);
};

// The icon and texts beside it, shared by the message and the question.
QLayout *iconAndText(QStyle::StandardPixmap icon, const Request &request, QWidget *parent);

} // namespace OrvelGui
