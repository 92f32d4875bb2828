// "SignatureConfirm": where the user decides what they sign. Shows all of the
// data (a hex dump with a warning when it is not text), the formatted text as
// the same plain reading the terminal shows, the hash, the certificate (the
// whole subject, read from the certificate, and its validity; to change or
// inspect) and the application's version. Every outside text shows its hidden
// characters as markers under a warning. Sign stays disabled until every
// text has been scrolled to its end, and Decline is the default, so Enter
// alone never signs; with nothing to sign there is no Sign at all.
#pragma once

#include "desktop/DesktopWindow.hpp"

#include <vector>

class QLabel;
class QPlainTextEdit;
class QPushButton;
class QVBoxLayout;

namespace OrvelGui {

class HostText;
struct VisibleText;

class SignatureConfirmWindow : public DesktopWindow {
    Q_OBJECT
public:
    explicit SignatureConfirmWindow(const Request &request, QWidget *parent = nullptr);
    ~SignatureConfirmWindow() override;
    bool confirmed() const { return confirmed_; }
    unsigned selected() const { return selected_; }
    // Null when there is nothing to sign.
    QPushButton *signButton() const { return sign_; }
    QPushButton *declineButton() const { return decline_; }
    const std::vector<QPlainTextEdit *> &textViews() const { return views_; }
    HostText *certificateText() const { return certificate_; }

protected:
    void showEvent(QShowEvent *event) override;

private:
    // A labelled, scrollable text whose reading to the end is tracked, under
    // its warnings.
    void addText(QVBoxLayout *layout, const QString &label, const std::vector<QString> &warnings,
                 const VisibleText &text, bool monospace, int stretch);
    void certificateChanged();
    void updateSign();

    std::vector<QPlainTextEdit *> views_;
    std::vector<bool> readToEnd_;
    HostText *certificate_ = nullptr;
    QLabel *fieldsWarning_ = nullptr;
    std::size_t fieldsHidden_ = 0; // in the hash and the version
    QLabel *readHint_ = nullptr;
    QPushButton *sign_ = nullptr;
    QPushButton *decline_ = nullptr;
    unsigned selected_ = 0;
    bool confirmed_ = false;
};

} // namespace OrvelGui
