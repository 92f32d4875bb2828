#include "desktop/CertificateViewer.hpp"

#include "common/CertificateDescription.hpp"
#include "common/SignedData.hpp"
#include "desktop/HostText.hpp"

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
        const std::vector<CertificateField> fields = describeCertificate(
            details, t, static_cast<std::int64_t>(std::time(nullptr)), NameLayout::LinePerAttribute);
        std::size_t hidden = 0;
        for (const CertificateField &field : fields)
            hidden += field.value.hiddenCharacters;
        if (QLabel *warning = hiddenCharactersWarning(t, hidden, this))
            layout->addWidget(warning);
        auto *content = new QWidget;
        auto *form = new QFormLayout(content);
        form->setRowWrapPolicy(QFormLayout::WrapLongRows);
        form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
        const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        for (const CertificateField &field : fields) {
            auto *shown = new HostText(field.value, content, 40);
            shown->setAccessibleName(qs(field.label));
            if (field.monospace)
                shown->setFont(fixed);
            auto *name = new QLabel(qs(field.label) + QLatin1Char(':'), content);
            name->setBuddy(shown);
            form->addRow(name, shown);
        }
        auto *scroll = new QScrollArea(this);
        scroll->setWidget(content);
        scroll->setWidgetResizable(true);
        scroll->setFrameShape(QFrame::NoFrame);
        scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        scroll->setMinimumSize(content->sizeHint().boundedTo(QSize(760, 560)) + QSize(24, 8));
        layout->addWidget(scroll);
    }
    addOkButton(layout);
}

} // namespace OrvelGui
