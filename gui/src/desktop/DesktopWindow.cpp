#include "desktop/DesktopWindow.hpp"

#include "desktop/HostWatch.hpp"

#include <QBoxLayout>
#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>


namespace OrvelGui {

QString qs(const std::string &text)
{
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

QString qs(const char *text)
{
    return QString::fromUtf8(text);
}

QLabel *plainLabel(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(parent);
    label->setTextFormat(Qt::PlainText);
    label->setText(text);
    label->setWordWrap(true);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    return label;
}

QPlainTextEdit *textView(const QString &text, bool monospace, QWidget *parent)
{
    auto *view = new QPlainTextEdit(parent);
    view->setReadOnly(true);
    // Read by keyboard as well: the arrows, the page keys and Ctrl+End move
    // through the text.
    view->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    view->setPlainText(text);
    view->setLineWrapMode(monospace ? QPlainTextEdit::NoWrap : QPlainTextEdit::WidgetWidth);
    view->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    if (monospace)
        view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    view->setTabChangesFocus(true);
    return view;
}

DesktopWindow::DesktopWindow(const Request &request, const char *title, QWidget *parent, bool watchHost)
    : QDialog(parent), request_(request), texts_(texts(request.language))
{
    setWindowTitle(qs(title));
    setAccessibleName(qs(title));
    setSizeGripEnabled(true);
    if (!watchHost)
        return;
    auto *watch = new HostWatch(this);
    connect(watch, &HostWatch::hostGone, this, [this] {
        hostGone_ = true;
        reject();
    });
}

void DesktopWindow::addOkButton(QBoxLayout *layout)
{
    auto *buttons = new QDialogButtonBox(this);
    QPushButton *ok = buttons->addButton(qs(texts_.ok), QDialogButtonBox::AcceptRole);
    ok->setAccessibleName(qs(texts_.ok));
    ok->setDefault(true);
    ok->setFocus();
    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    layout->addWidget(buttons);
}

} // namespace OrvelGui
