#include "desktop/SignatureConfirmWindow.hpp"

#include "common/CertificateDescription.hpp"
#include "common/SignedData.hpp"
#include "desktop/CertificateSelectWindow.hpp"
#include "desktop/CertificateViewer.hpp"
#include "desktop/HostText.hpp"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollBar>
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

QString hiddenWarning(const Texts &t, std::size_t count)
{
    return count ? qs(fill(t.hiddenCharacters, {std::to_string(count)})) : QString();
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

    std::optional<RtfText> formatted;
    if (request.rtf)
        formatted = readRtf(*request.rtf);
    const bool nothing = nothingToSign(request.data, formatted);
    if (nothing)
        layout->addWidget(warningLabel(qs(t.nothingToSign), this));

    const SignedDataView data = viewSignedData(request.data);
    const VisibleText shownData = visibleText(data.text);
    addText(layout, qs(t.data), {data.isText ? QString() : qs(t.notText), hiddenWarning(t, shownData.hiddenCharacters)},
            shownData, !data.isText, 2);
    if (formatted) {
        const VisibleText shown = visibleRtf(*formatted, t.concealedStart, t.concealedEnd);
        const QString concealed = formatted->concealed.empty()
                                      ? QString()
                                      : qs(fill(t.concealedText, {std::to_string(formatted->concealed.size())}));
        addText(layout, qs(t.formattedText),
                {formatted->readable ? QString() : qs(t.rtfUnreadable), hiddenWarning(t, shown.hiddenCharacters),
                 concealed},
                shown, false, 1);
    }

    fieldsWarning_ = warningLabel(QString(), this);
    layout->addWidget(fieldsWarning_);
    auto *form = new QFormLayout;
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    const auto value = [&](const char *label, const std::string &text, bool monospace) {
        const VisibleText shown = visibleText(text, LineBreaks::Mark);
        fieldsHidden_ += shown.hiddenCharacters;
        auto *field = new HostText(shown, this, 3);
        field->setAccessibleName(qs(label));
        if (monospace)
            field->setFont(fixed);
        form->addRow(qs(label) + QLatin1Char(':'), field);
    };
    value(t.hashAlg, request.hashAlg, false);
    value(t.hashVal, request.hashVal, true);

    auto *certificateRow = new QHBoxLayout;
    certificate_ = new HostText({}, this, 8);
    certificate_->setAccessibleName(qs(t.certificate));
    certificateRow->addWidget(certificate_, 1);
    auto *change = new QPushButton(qs(t.changeCertificate), this);
    auto *show = new QPushButton(qs(t.showCertificate), this);
    change->setAccessibleName(qs(t.changeCertificate));
    show->setAccessibleName(qs(t.showCertificate));
    change->setAutoDefault(false);
    show->setAutoDefault(false);
    change->setEnabled(request.certificates.size() > 1 && !nothing);
    auto *certificateButtons = new QVBoxLayout;
    certificateButtons->addWidget(change);
    certificateButtons->addWidget(show);
    certificateButtons->addStretch();
    certificateRow->addLayout(certificateButtons);
    form->addRow(qs(t.certificate) + QLatin1Char(':'), certificateRow);
    value(t.version, request.version, false);
    layout->addLayout(form);

    readHint_ = plainLabel(qs(t.readAllToSign), this);
    layout->addWidget(readHint_);
    auto *buttons = new QDialogButtonBox(this);
    if (!nothing) {
        sign_ = buttons->addButton(qs(t.sign), QDialogButtonBox::AcceptRole);
        sign_->setAccessibleName(qs(t.sign));
        sign_->setAutoDefault(false);
        connect(sign_, &QPushButton::clicked, this, [this] {
            confirmed_ = true;
            accept();
        });
    }
    decline_ = buttons->addButton(qs(t.decline), QDialogButtonBox::DestructiveRole);
    decline_->setAccessibleName(qs(t.decline));
    decline_->setDefault(true);
    layout->addWidget(buttons);

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
    resize(760, 660);
    updateSign();
    // The data view has the keys first: PageDown and Ctrl+End read on at
    // once, and Enter still reaches Decline.
    views_.front()->setFocus();
}

SignatureConfirmWindow::~SignatureConfirmWindow()
{
    // The views outlive this part of the window (QWidget deletes them), and
    // the one that loses the focus then asks for a repaint: not of us.
    for (QPlainTextEdit *view : views_)
        view->disconnect(this);
}

void SignatureConfirmWindow::addText(QVBoxLayout *layout, const QString &label, const std::vector<QString> &warnings,
                                     const VisibleText &text, bool monospace, int stretch)
{
    auto *box = new QWidget(this);
    auto *column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    auto *name = new QLabel(label + QLatin1Char(':'), box);
    column->addWidget(name);
    for (const QString &warning : warnings)
        if (!warning.isEmpty())
            column->addWidget(warningLabel(warning, box));
    // Trailing line breaks show nothing, but would leave an empty last line
    // below the end that the reader must scroll to before Sign is enabled.
    // (A mark never holds a line break.)
    VisibleText shown = text;
    while (!shown.text.empty() && shown.text.back() == '\n')
        shown.text.pop_back();
    QPlainTextEdit *view = textView(QString(), monospace, box);
    setVisibleText(view->document(), shown);
    // The text was put in before the view's cursor, which went along to its
    // end: back to the top, or the end would count as seen.
    view->moveCursor(QTextCursor::Start);
    view->setAccessibleName(label);
    view->setMinimumHeight(120);
    name->setBuddy(view);
    column->addWidget(view);
    layout->addWidget(box, stretch);
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
    const Texts &t = texts_;
    const CertificateEntry &entry = request_.certificates[selected_];
    const ListedCertificate listed = listedCertificate(entry.subject, readCertificate(entry.data));
    // The name, the whole subject (wrapped, never cut) and the validity.
    VisibleTextBuilder builder;
    builder.append(listed.name);
    if (listed.isCertificate) {
        builder.appendOwn("\n");
        builder.append(listed.subject);
    }
    builder.appendOwn("\n");
    builder.append(fillVisible(std::string(t.validUntil) + ": {}", {entry.notAfter}));
    if (entry.forceRenew || entry.warnRenew) {
        builder.appendOwn("\n");
        builder.append(fillVisible(entry.forceRenew ? t.renewForced : t.renewWarned, {entry.renewDeadline}));
    }
    const VisibleText text = builder.take();
    certificate_->setText(text);
    certificate_->setFirstLineBold();
    const std::size_t hidden = fieldsHidden_ + text.hiddenCharacters;
    fieldsWarning_->setText(hiddenWarning(t, hidden));
    fieldsWarning_->setVisible(hidden > 0);
}

void SignatureConfirmWindow::updateSign()
{
    bool all = true;
    for (bool seen : readToEnd_)
        all = all && seen;
    if (sign_)
        sign_->setEnabled(all);
    readHint_->setVisible(sign_ && !all);
}

} // namespace OrvelGui
