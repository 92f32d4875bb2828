#include "desktop/CertificateViewer.hpp"

#include "common/CertificateText.hpp"
#include "common/SignedData.hpp"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

#include <ctime>

namespace OrvelGui {
namespace {

QString joined(const std::vector<std::string> &parts, const char *separator)
{
    QStringList list;
    for (const auto &part : parts)
        list << qs(part);
    return list.join(QString::fromUtf8(separator));
}

} // namespace

CertificateViewer::CertificateViewer(const Request &request, const std::string &bytes, QWidget *parent)
    : DesktopWindow(request, texts(request.language).titleCertificate, parent)
{
    const Texts &t = texts_;
    auto *layout = new QVBoxLayout(this);
    const CertificateDetails details = readCertificate(bytes);
    if (!details.isCertificate) {
        layout->addWidget(plainLabel(qs(fill(t.notCertificate, {std::to_string(bytes.size())})), this));
        QPlainTextEdit *dump = textView(qs(hexDump(bytes.substr(0, 4096))), true, this);
        dump->setAccessibleName(QStringLiteral("bytes"));
        dump->setMinimumSize(640, 200);
        layout->addWidget(dump);
    } else {
        auto *fields = new QWidget;
        auto *form = new QFormLayout(fields);
        form->setRowWrapPolicy(QFormLayout::WrapLongRows);
        const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        const auto add = [&](const char *label, const QString &value, bool monospace = false) {
            QLabel *shown = plainLabel(value, fields);
            shown->setAccessibleName(qs(label));
            shown->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
            if (monospace)
                shown->setFont(fixed);
            auto *name = new QLabel(qs(label) + QLatin1Char(':'), fields);
            name->setBuddy(shown);
            form->addRow(name, shown);
        };
        add(t.subject, joined(details.subjectParts, "\n"));
        add(t.issuer, joined(details.issuerParts, "\n"));
        add(t.serial, qs(details.serial), true);
        add(t.validFrom, qs(details.notBefore));
        add(t.validUntil, qs(details.notAfter));
        if (const auto days = daysRemaining(details, static_cast<std::int64_t>(std::time(nullptr))))
            add(t.daysLeft, qs(fill(t.daysRemaining, {std::to_string(*days)})));
        add(t.publicKey, qs(details.publicKey));
        add(t.signatureAlgorithm, qs(details.signatureAlgorithm));
        add(t.keyUsage, details.keyUsageRestricted ? joined(details.keyUsage, ", ") : qs(t.keyUsageAny));
        if (!details.extendedKeyUsage.empty())
            add(t.extendedKeyUsage, joined(details.extendedKeyUsage, ", "));
        if (!details.subjectAltNames.empty())
            add(t.subjectAltNames, joined(details.subjectAltNames, "\n"));
        add(t.fingerprint, qs(details.sha256), true);
        add(t.fingerprintSha1, qs(details.sha1), true);
        auto *scroll = new QScrollArea(this);
        scroll->setWidget(fields);
        scroll->setWidgetResizable(true);
        scroll->setFrameShape(QFrame::NoFrame);
        scroll->setMinimumSize(fields->sizeHint().boundedTo(QSize(900, 560)) + QSize(24, 8));
        layout->addWidget(scroll);
    }
    addOkButton(layout);
}

} // namespace OrvelGui
