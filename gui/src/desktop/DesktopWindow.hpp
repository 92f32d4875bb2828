// What every desktop window shares: its title, texts in the request's
// language, a fixed-width font for values, and the end of the window when the
// host goes away.
#pragma once

#include "common/Texts.hpp"
#include "protocol/Protocol.hpp"

#include <QDialog>
#include <QString>

#include <string>

class QBoxLayout;
class QLabel;
class QPlainTextEdit;
class QWidget;

namespace OrvelGui {

QString qs(const std::string &text);
QString qs(const char *text);

// A label that shows outside text as plain text (never as markup) and wraps.
QLabel *plainLabel(const QString &text, QWidget *parent);
// A read-only, scrollable text; fixed width when `monospace`.
QPlainTextEdit *textView(const QString &text, bool monospace, QWidget *parent);

class DesktopWindow : public QDialog {
    Q_OBJECT
public:
    // `watchHost` false: the window reads standard input itself.
    DesktopWindow(const Request &request, const char *title, QWidget *parent = nullptr, bool watchHost = true);
    // True when the window ended because the host closed its end of our input.
    bool hostGone() const { return hostGone_; }

protected:
    // One OK button, the default, that closes the window: for windows that
    // only show something.
    void addOkButton(QBoxLayout *layout);

    const Request &request_;
    const Texts &texts_;

private:
    bool hostGone_ = false;
};

} // namespace OrvelGui
