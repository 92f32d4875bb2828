// "SelectPKCS12": a file (typed or browsed, starting from "-filename") and its
// password. OK waits for an existing file; the password is checked against
// the file before the window answers, and a wrong one is said in the window.
#pragma once

#include "desktop/DesktopWindow.hpp"

class QLabel;
class QLineEdit;
class QPushButton;

namespace OrvelGui {

class HostText;

class Pkcs12Window : public DesktopWindow {
    Q_OBJECT
public:
    explicit Pkcs12Window(const Request &request, QWidget *parent = nullptr);
    // Wipes the password where the field keeps it.
    ~Pkcs12Window() override;
    std::string path() const;
    std::string password() const;

    QLineEdit *fileField() const { return file_; }
    QLineEdit *passwordField() const { return password_; }
    // What is wrong with the file or the password, when it is shown.
    QWidget *problem() const;
    QString problemText() const;

public slots:
    void accept() override;

private:
    void browse();

    QLineEdit *file_ = nullptr;
    QLineEdit *password_ = nullptr;
    HostText *problem_ = nullptr;
    QPushButton *ok_ = nullptr;
};

} // namespace OrvelGui
