#include "desktop/CertificateSelectWindow.hpp"

#include "common/CertificateText.hpp"
#include "desktop/CertificateViewer.hpp"

#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QStyle>
#include <QTableView>
#include <QVBoxLayout>

namespace OrvelGui {
namespace {

enum Column { kSubject, kIssuer, kValidTo, kDaysLeft, kColumns };
constexpr int kIndexRole = Qt::UserRole + 1;

// The subject's common name reads best in a table; the whole subject stays
// in the tooltip and the details.
QString commonName(const std::string &subject)
{
    const QString text = qs(subject);
    const qsizetype at = text.lastIndexOf(QStringLiteral("CN = "));
    if (at < 0)
        return text;
    return text.mid(at + 5).section(QStringLiteral(", "), 0, 0);
}

} // namespace

CertificateSelectWindow::CertificateSelectWindow(const Request &request, unsigned initial, QWidget *parent)
    : DesktopWindow(request, texts(request.language).titleSelectCertificate, parent)
{
    const Texts &t = texts_;
    auto *layout = new QVBoxLayout(this);
    filter_ = new QLineEdit(this);
    filter_->setPlaceholderText(qs(t.filterPlaceholder));
    filter_->setAccessibleName(qs(t.filterPlaceholder));
    filter_->setClearButtonEnabled(true);
    layout->addWidget(filter_);

    model_ = new QStandardItemModel(0, kColumns, this);
    model_->setHorizontalHeaderLabels({qs(t.subject), qs(t.issuer), qs(t.validUntil), qs(t.daysLeft)});
    for (std::size_t i = 0; i < request.certificates.size(); ++i) {
        const CertificateEntry &entry = request.certificates[i];
        const CertificateDetails details = readCertificate(entry.data);
        QList<QStandardItem *> row;
        auto *subject = new QStandardItem(commonName(entry.subject));
        subject->setToolTip(qs(entry.subject));
        subject->setData(static_cast<unsigned>(i), kIndexRole);
        if (entry.forceRenew || entry.warnRenew) {
            const bool forced = entry.forceRenew;
            subject->setIcon(style()->standardIcon(forced ? QStyle::SP_MessageBoxCritical
                                                          : QStyle::SP_MessageBoxWarning));
            subject->setToolTip(qs(entry.subject) + QLatin1Char('\n') +
                                qs(fill(forced ? t.renewForced : t.renewWarned, {entry.renewDeadline})));
        }
        auto *issuer = new QStandardItem(details.isCertificate ? commonName(details.issuer) : QStringLiteral("?"));
        issuer->setToolTip(qs(details.issuer));
        auto *validTo = new QStandardItem(qs(entry.notAfter));
        auto *days = new QStandardItem;
        days->setData(entry.daysRemaining, Qt::DisplayRole);
        row << subject << issuer << validTo << days;
        for (QStandardItem *item : row)
            item->setEditable(false);
        model_->appendRow(row);
    }
    proxy_ = new QSortFilterProxyModel(this);
    proxy_->setSourceModel(model_);
    proxy_->setFilterCaseSensitivity(Qt::CaseInsensitive);
    proxy_->setFilterKeyColumn(-1);

    table_ = new QTableView(this);
    table_->setModel(proxy_);
    table_->setAccessibleName(qs(t.titleSelectCertificate));
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(QAbstractItemView::SingleSelection);
    table_->setSortingEnabled(true);
    table_->sortByColumn(-1, Qt::AscendingOrder); // the host's order until the user sorts
    table_->verticalHeader()->hide();
    table_->horizontalHeader()->setSectionResizeMode(kSubject, QHeaderView::Stretch);
    table_->horizontalHeader()->setSectionResizeMode(kIssuer, QHeaderView::ResizeToContents);
    table_->setTabKeyNavigation(false);
    table_->setMinimumSize(680, 220);
    if (initial < request.certificates.size())
        table_->selectRow(static_cast<int>(initial));
    layout->addWidget(table_);

    auto *buttons = new QDialogButtonBox(this);
    details_ = buttons->addButton(qs(t.details), QDialogButtonBox::ActionRole);
    ok_ = buttons->addButton(qs(t.ok), QDialogButtonBox::AcceptRole);
    QPushButton *cancel = buttons->addButton(qs(t.cancel), QDialogButtonBox::RejectRole);
    details_->setAccessibleName(qs(t.details));
    ok_->setAccessibleName(qs(t.ok));
    cancel->setAccessibleName(qs(t.cancel));
    details_->setAutoDefault(false);
    ok_->setDefault(true);
    layout->addWidget(buttons);

    connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(details_, &QPushButton::clicked, this, &CertificateSelectWindow::showDetails);
    connect(table_, &QTableView::doubleClicked, this, &CertificateSelectWindow::showDetails);
    connect(filter_, &QLineEdit::textChanged, this, [this](const QString &text) {
        proxy_->setFilterFixedString(text);
        rowsChanged();
    });
    connect(table_->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &CertificateSelectWindow::rowsChanged);
    rowsChanged();
    table_->setFocus();
}

void CertificateSelectWindow::rowsChanged()
{
    // Typing in the filter must never leave a hidden row chosen.
    if (!table_->selectionModel()->hasSelection() && proxy_->rowCount() > 0)
        table_->selectRow(0);
    const bool chosen = table_->selectionModel()->hasSelection();
    ok_->setEnabled(chosen);
    details_->setEnabled(chosen);
}

unsigned CertificateSelectWindow::selected() const
{
    const QModelIndexList rows = table_->selectionModel()->selectedRows();
    if (rows.isEmpty())
        return 0;
    return proxy_->mapToSource(rows.front()).siblingAtColumn(kSubject).data(kIndexRole).toUInt();
}

void CertificateSelectWindow::showDetails()
{
    if (!table_->selectionModel()->hasSelection())
        return;
    CertificateViewer viewer(request_, request_.certificates[selected()].data, this);
    viewer.exec();
    if (viewer.hostGone())
        reject();
}

} // namespace OrvelGui
