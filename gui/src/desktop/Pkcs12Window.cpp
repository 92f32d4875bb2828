#include "desktop/Pkcs12Window.hpp"

#include "common/PasswordMemory.hpp"
#include "common/Pkcs12Check.hpp"
#include "desktop/HostText.hpp"
#include "desktop/HostWatch.hpp"

#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace OrvelGui {

Pkcs12Window::Pkcs12Window(const Request &request, QWidget *parent)
    : DesktopWindow(request, texts(request.language).titlePkcs12, parent)
{
    const Texts &t = texts_;
    const auto label = [](const char *text) {
        QString shown = qs(text).trimmed();
        if (shown.endsWith(QLatin1Char(':')))
            shown.chop(1);
        return shown;
    };
    auto *layout = new QVBoxLayout(this);
    auto *form = new QFormLayout;
    file_ = new QLineEdit(qs(offeredAsShown(request.fileName)), this);
    file_->setAccessibleName(label(t.pkcs12File));
    file_->setMinimumWidth(380);
    auto *browse = new QPushButton(qs(t.browse), this);
    browse->setAccessibleName(qs(t.browse));
    browse->setAutoDefault(false);
    auto *fileRow = new QHBoxLayout;
    fileRow->addWidget(file_, 1);
    fileRow->addWidget(browse);
    form->addRow(label(t.pkcs12File) + QLatin1Char(':'), fileRow);
    password_ = new QLineEdit(this);
    password_->setEchoMode(QLineEdit::Password);
    password_->setAccessibleName(label(t.password));
    form->addRow(label(t.password) + QLatin1Char(':'), password_);
    layout->addLayout(form);
    problem_ = new HostText({}, this, 4);
    QPalette red = problem_->palette();
    red.setColor(QPalette::Text, QColor(0xb0, 0x00, 0x00));
    problem_->setPalette(red);
    problem_->setAccessibleName(QStringLiteral("problem"));
    problem_->hide();
    layout->addWidget(problem_);

    auto *buttons = new QDialogButtonBox(this);
    ok_ = buttons->addButton(qs(t.ok), QDialogButtonBox::AcceptRole);
    QPushButton *cancel = buttons->addButton(qs(t.cancel), QDialogButtonBox::RejectRole);
    ok_->setAccessibleName(qs(t.ok));
    cancel->setAccessibleName(qs(t.cancel));
    ok_->setDefault(true);
    layout->addWidget(buttons);

    const auto fileChanged = [this] { ok_->setEnabled(QFileInfo(file_->text()).isFile()); };
    connect(file_, &QLineEdit::textChanged, this, fileChanged);
    connect(browse, &QPushButton::clicked, this, &Pkcs12Window::browse);
    connect(buttons, &QDialogButtonBox::accepted, this, &Pkcs12Window::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    fileChanged();
    (QFileInfo(file_->text()).isFile() ? password_ : file_)->setFocus();
}

std::string Pkcs12Window::path() const
{
    return QFile::encodeName(QFileInfo(file_->text()).absoluteFilePath()).toStdString();
}

Pkcs12Window::~Pkcs12Window()
{
    // text() shares the field's own storage: the password is overwritten
    // there, and setText drops the field's undo history with it.
    const QString typed = password_->text();
    wipeSecret(const_cast<QChar *>(typed.constData()), static_cast<std::size_t>(typed.size()) * sizeof(QChar));
    password_->setText(QString());
}

std::string Pkcs12Window::password() const
{
    QByteArray utf8 = password_->text().toUtf8();
    std::string typed(utf8.constData(), static_cast<std::size_t>(utf8.size()));
    wipeSecret(utf8.data(), static_cast<std::size_t>(utf8.size()));
    return typed;
}

QWidget *Pkcs12Window::problem() const
{
    return problem_;
}

QString Pkcs12Window::problemText() const
{
    return problem_->toPlainText();
}

void Pkcs12Window::browse()
{
    const QFileInfo current(file_->text());
    const QString start = file_->text().isEmpty() ? QDir::currentPath() : current.absoluteFilePath();
    QFileDialog chooser(this, qs(texts_.titlePkcs12), start, qs(texts_.pkcs12Filter));
    chooser.setFileMode(QFileDialog::ExistingFile);
    auto *watch = new HostWatch(&chooser);
    connect(watch, &HostWatch::hostGone, &chooser, &QDialog::reject);
    if (chooser.exec() == QDialog::Accepted && !chooser.selectedFiles().isEmpty()) {
        file_->setText(chooser.selectedFiles().front());
        password_->setFocus();
    }
}

void Pkcs12Window::accept()
{
    if (!ok_->isEnabled())
        return;
    const std::string file = path();
    const char *problem = nullptr;
    std::string typed = password();
    const WipedOnExit wiped(typed);
    switch (checkPkcs12(file, typed)) {
    case Pkcs12Check::Ok:
        DesktopWindow::accept();
        return;
    case Pkcs12Check::CannotRead:
        problem = texts_.pkcs12CannotRead;
        break;
    case Pkcs12Check::NotPkcs12:
        problem = texts_.pkcs12NotPkcs12;
        break;
    case Pkcs12Check::WrongPassword:
        problem = texts_.pkcs12WrongPassword;
        break;
    }
    problem_->setText(fillVisible(problem, {file}));
    problem_->show();
    password_->selectAll();
    password_->setFocus();
}

} // namespace OrvelGui
