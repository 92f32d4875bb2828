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
#include <QTextCursor>
#include <QTextEdit>
#include <QTextTable>
#include <QVBoxLayout>

#include <algorithm>
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
        // One document for all fields, so that they scroll together and a
        // long value wraps in its own column.
        auto *view = new QTextEdit(this);
        view->setReadOnly(true);
        view->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
        view->setWordWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
        view->setAccessibleName(qs(t.titleCertificate));
        view->setTabChangesFocus(true);
        view->setMinimumSize(620, 420);
        QTextCursor cursor(view->document());
        QTextTableFormat format;
        format.setBorderStyle(QTextFrameFormat::BorderStyle_None);
        format.setCellPadding(3);
        format.setColumnWidthConstraints({QTextLength(QTextLength::VariableLength, 0),
                                          QTextLength(QTextLength::PercentageLength, 72)});
        QTextTable *table = cursor.insertTable(static_cast<int>(fields.size()), 2, format);
        QTextCharFormat labelFormat;
        labelFormat.setFontWeight(QFont::Bold);
        const QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        for (std::size_t i = 0; i < fields.size(); ++i) {
            const int row = static_cast<int>(i);
            QTextCursor name = table->cellAt(row, 0).firstCursorPosition();
            name.insertText(qs(fields[i].label) + QLatin1Char(':'), labelFormat);
            QTextCursor value = table->cellAt(row, 1).firstCursorPosition();
            insertVisibleText(value, fields[i].value, fields[i].monospace ? &fixed : nullptr);
        }
        view->moveCursor(QTextCursor::Start);
        // As tall as the fields, up to what a screen holds; then it scrolls.
        view->document()->setTextWidth(600);
        const int height = static_cast<int>(view->document()->size().height()) + 2 * view->frameWidth() + 4;
        view->setMinimumHeight(std::min(height, 600));
        layout->addWidget(view);
    }
    addOkButton(layout);
}

} // namespace OrvelGui
