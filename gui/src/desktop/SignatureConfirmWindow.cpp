#include "desktop/SignatureConfirmWindow.hpp"

#include "common/RtfText.hpp"
#include "common/SignedData.hpp"
#include "desktop/CertificateSelectWindow.hpp"
#include "desktop/CertificateViewer.hpp"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QStyle>
#include <QVBoxLayout>

namespace OrvelGui {
namespace {

// The last line of the text is in the view: the corner at its bottom right
// lies at the end of the text. (The scroll bar alone may stop a line short.)
bool endIsOnScreen(QPlainTextEdit *view)
{
    const QRect area = view->viewport()->rect();
    const int end = view->document()->characterCount() - 1;
    return view->verticalScrollBar()->value() >= view->verticalScrollBar()->maximum() ||
           view->cursorForPosition(area.bottomRight()).position() >= end;
}

} // namespace

SignatureConfirmWindow::SignatureConfirmWindow(const Request &request, QWidget *parent)
    : DesktopWindow(request, texts(request.language).titleSignature, parent), selected_(request.selected)
{
    const Texts &t = texts_;
    auto *layout = new QVBoxLayout(this);
    auto *title = new QLabel(qs(t.titleSignature), this);
    QFont bold = title->font();
    bold.setBold(true);
    bold.setPointSizeF(bold.pointSizeF() * 1.2);
    title->setFont(bold);
    layout->addWidget(title);

    const SignedDataView data = viewSignedData(request.data);
    if (!data.isText) {
        QLabel *warning = plainLabel(qs(t.notText), this);
        warning->setStyleSheet(QStringLiteral("color: #b00000; font-weight: bold"));
        warning->setAccessibleName(qs(t.notText));
        layout->addWidget(warning);
    }
    layout->addWidget(addText(qs(t.data), qs(data.text), !data.isText), 2);
    if (request.rtf)
        layout->addWidget(addText(qs(t.formattedText), qs(rtfToPlainText(*request.rtf)), false), 1);

    auto *form = new QFormLayout;
    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    const auto value = [&](const char *label, const std::string &text, bool monospace) {
        auto *field = new QLineEdit(qs(text), this);
        field->setReadOnly(true);
        field->setAccessibleName(qs(label));
        if (monospace)
            field->setFont(fixed);
        field->setCursorPosition(0);
        form->addRow(qs(label) + QLatin1Char(':'), field);
    };
    value(t.hashAlg, request.hashAlg, false);
    value(t.hashVal, request.hashVal, true);

    auto *certificateRow = new QHBoxLayout;
    certificate_ = plainLabel(QString(), this);
    certificate_->setAccessibleName(qs(t.certificate));
    certificateRow->addWidget(certificate_, 1);
    auto *change = new QPushButton(qs(t.changeCertificate), this);
    auto *show = new QPushButton(qs(t.showCertificate), this);
    change->setAccessibleName(qs(t.changeCertificate));
    show->setAccessibleName(qs(t.showCertificate));
    change->setAutoDefault(false);
    show->setAutoDefault(false);
    change->setEnabled(request.certificates.size() > 1);
    certificateRow->addWidget(change);
    certificateRow->addWidget(show);
    form->addRow(qs(t.certificate) + QLatin1Char(':'), certificateRow);
    QLabel *version = plainLabel(qs(request.version), this);
    version->setAccessibleName(qs(t.version));
    form->addRow(qs(t.version) + QLatin1Char(':'), version);
    layout->addLayout(form);

    readHint_ = plainLabel(qs(t.readAllToSign), this);
    layout->addWidget(readHint_);
    auto *buttons = new QDialogButtonBox(this);
    sign_ = buttons->addButton(qs(t.sign), QDialogButtonBox::AcceptRole);
    decline_ = buttons->addButton(qs(t.decline), QDialogButtonBox::DestructiveRole);
    sign_->setAccessibleName(qs(t.sign));
    decline_->setAccessibleName(qs(t.decline));
    sign_->setAutoDefault(false);
    decline_->setDefault(true);
    layout->addWidget(buttons);

    connect(sign_, &QPushButton::clicked, this, [this] {
        confirmed_ = true;
        accept();
    });
    connect(decline_, &QPushButton::clicked, this, [this] {
        confirmed_ = false;
        accept();
    });
    connect(change, &QPushButton::clicked, this, [this] {
        CertificateSelectWindow select(request_, selected_, this);
        const bool chosen = select.exec() == QDialog::Accepted;
        if (select.hostGone())
            return reject();
        if (chosen) {
            selected_ = select.selected();
            certificateChanged();
        }
    });
    connect(show, &QPushButton::clicked, this, [this] {
        CertificateViewer viewer(request_, request_.certificates[selected_].data, this);
        viewer.exec();
        if (viewer.hostGone())
            reject();
    });
    certificateChanged();
    resize(760, 620);
    updateSign();
    decline_->setFocus();
}

QWidget *SignatureConfirmWindow::addText(const QString &label, const QString &text, bool monospace)
{
    auto *box = new QWidget(this);
    auto *column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    auto *name = new QLabel(label + QLatin1Char(':'), box);
    column->addWidget(name);
    // Trailing line breaks show nothing, but would leave an empty last line
    // below the end that the reader must scroll to before Sign is enabled.
    QString shown = text;
    while (shown.endsWith(QLatin1Char('\n')))
        shown.chop(1);
    QPlainTextEdit *view = textView(shown, monospace, box);
    view->setAccessibleName(label);
    view->setMinimumHeight(120);
    name->setBuddy(view);
    column->addWidget(view);
    const std::size_t index = views_.size();
    views_.push_back(view);
    readToEnd_.push_back(false);
    const auto check = [this, view, index] {
        if (view->isVisible() && endIsOnScreen(view) && !readToEnd_[index]) {
            readToEnd_[index] = true;
            updateSign();
        }
    };
    // After each scroll or relayout of the view, once it shows its new lines.
    connect(view, &QPlainTextEdit::updateRequest, this, check);
    return box;
}

void SignatureConfirmWindow::showEvent(QShowEvent *event)
{
    DesktopWindow::showEvent(event);
    // Text that fits without scrolling has been seen in full once shown.
    for (std::size_t i = 0; i < views_.size(); ++i)
        if (endIsOnScreen(views_[i]))
            readToEnd_[i] = true;
    updateSign();
}

void SignatureConfirmWindow::certificateChanged()
{
    const CertificateEntry &entry = request_.certificates[selected_];
    QString text = qs(entry.subject) + QLatin1Char('\n') + qs(texts_.validUntil) + QStringLiteral(": ") +
                   qs(entry.notAfter);
    if (entry.forceRenew)
        text += QStringLiteral("\n") + qs(fill(texts_.renewForced, {entry.renewDeadline}));
    else if (entry.warnRenew)
        text += QStringLiteral("\n") + qs(fill(texts_.renewWarned, {entry.renewDeadline}));
    certificate_->setText(text);
}

void SignatureConfirmWindow::updateSign()
{
    bool all = true;
    for (bool seen : readToEnd_)
        all = all && seen;
    sign_->setEnabled(all);
    readHint_->setVisible(!all);
}

} // namespace OrvelGui
