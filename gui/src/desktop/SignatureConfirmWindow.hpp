// "SignatureConfirm": where the user decides what they sign. Shows all of the
// data (a hex dump with a warning when it is not text), the formatted text
// without its markup, the hash, the certificate (to change or inspect) and
// the application's version. Sign stays disabled until every text has been
// scrolled to its end, and Decline is the default, so Enter alone never signs.
#pragma once

#include "desktop/DesktopWindow.hpp"

#include <vector>

class QLabel;
class QPlainTextEdit;
class QPushButton;

namespace OrvelGui {

class SignatureConfirmWindow : public DesktopWindow {
    Q_OBJECT
public:
    explicit SignatureConfirmWindow(const Request &request, QWidget *parent = nullptr);
    bool confirmed() const { return confirmed_; }
    unsigned selected() const { return selected_; }
    QPushButton *signButton() const { return sign_; }
    QPushButton *declineButton() const { return decline_; }
    const std::vector<QPlainTextEdit *> &textViews() const { return views_; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    // A labelled, scrollable text whose reading to the end is tracked.
    QWidget *addText(const QString &label, const QString &text, bool monospace);
    void certificateChanged();
    void updateSign();

    std::vector<QPlainTextEdit *> views_;
    std::vector<bool> readToEnd_;
    QLabel *certificate_ = nullptr;
    QLabel *readHint_ = nullptr;
    QPushButton *sign_ = nullptr;
    QPushButton *decline_ = nullptr;
    unsigned selected_ = 0;
    bool confirmed_ = false;
};

} // namespace OrvelGui
