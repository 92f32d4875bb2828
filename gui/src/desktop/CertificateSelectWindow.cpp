#include "desktop/CertificateSelectWindow.hpp"

#include "common/CertificateDescription.hpp"
#include "desktop/CertificateViewer.hpp"
#include "desktop/HostText.hpp"

#include <QAbstractTableModel>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSortFilterProxyModel>
#include <QStyle>
#include <QTableView>
#include <QVBoxLayout>

#include <vector>

namespace OrvelGui {
namespace {

enum Column { kSubject, kIssuer, kValidTo, kDaysLeft, kColumns };
constexpr int kIndexRole = Qt::UserRole + 1;
constexpr int kFilterRole = Qt::UserRole + 2;

} // namespace

// The host's certificates, each read once from its own bytes.
class CertificateTableModel : public QAbstractTableModel {
public:
    CertificateTableModel(const Request &request, const Texts &t, const QIcon &forced, const QIcon &warned,
                          QObject *parent)
        : QAbstractTableModel(parent), request_(request), t_(t), forced_(forced), warned_(warned)
    {
        rows_.reserve(request.certificates.size());
        for (const CertificateEntry &entry : request.certificates) {
            const ListedCertificate listed = listedCertificate(entry.subject, readCertificate(entry.data));
            hidden_ += listed.hiddenCharacters();
            Row row;
            row.name = plainText(listed.label);
            row.subject = plainText(listed.subjectLines);
            row.issuerName = listed.isCertificate ? plainText(listed.issuerName) : QStringLiteral("?");
            row.issuer = plainText(listed.issuerLines);
            row.notAfter = shownOnOneLine(entry.notAfter);
            row.marked = listed.hiddenCharacters() > 0;
            if (entry.forceRenew || entry.warnRenew)
                row.renewal = plainText(fillVisible(entry.forceRenew ? t.renewForced : t.renewWarned,
                                                    {entry.renewDeadline}));
            // Filtering looks at every name and the date, not only at what
            // the cells have room for.
            row.filter = plainText(listed.subject) + QLatin1Char('\n') + row.issuer + QLatin1Char('\n') + row.notAfter;
            rows_.push_back(std::move(row));
        }
    }

    std::size_t hiddenCharacters() const { return hidden_; }

    int rowCount(const QModelIndex &parent = {}) const override
    {
        return parent.isValid() ? 0 : static_cast<int>(rows_.size());
    }
    int columnCount(const QModelIndex &parent = {}) const override { return parent.isValid() ? 0 : kColumns; }

    QVariant data(const QModelIndex &index, int role) const override
    {
        if (!index.isValid())
            return {};
        const auto r = static_cast<std::size_t>(index.row());
        const Row &row = rows_[r];
        const CertificateEntry &entry = request_.certificates[r];
        switch (role) {
        case Qt::DisplayRole:
            switch (index.column()) {
            case kSubject:
                return row.name;
            case kIssuer:
                return row.issuerName;
            case kValidTo:
                return row.notAfter;
            default:
                return entry.daysRemaining;
            }
        case Qt::ToolTipRole:
            if (index.column() == kIssuer)
                return row.issuer;
            return row.renewal.isEmpty() ? row.subject : row.subject + QLatin1Char('\n') + row.renewal;
        case Qt::DecorationRole:
            if (index.column() == kSubject && (entry.forceRenew || entry.warnRenew))
                return entry.forceRenew ? forced_ : warned_;
            return {};
        case Qt::ForegroundRole:
            // Names that hold markers stand out from the others.
            if (row.marked && (index.column() == kSubject || index.column() == kIssuer))
                return QColor(0x7a, 0x00, 0x00);
            return {};
        case kIndexRole:
            return static_cast<unsigned>(r);
        case kFilterRole:
            return row.filter;
        default:
            return {};
        }
    }

    QVariant headerData(int section, Qt::Orientation orientation, int role) const override
    {
        if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
            return {};
        static constexpr const char *Texts::*kHeaders[] = {&Texts::subject, &Texts::issuer, &Texts::validUntil,
                                                           &Texts::daysLeft};
        return section >= 0 && section < kColumns ? qs(t_.*kHeaders[section]) : QVariant();
    }

private:
    struct Row {
        QString name, subject, issuerName, issuer, notAfter, renewal, filter;
        bool marked = false;
    };
    const Request &request_;
    const Texts &t_;
    QIcon forced_, warned_;
    std::vector<Row> rows_;
    std::size_t hidden_ = 0;
};

CertificateSelectWindow::CertificateSelectWindow(const Request &request, unsigned initial, QWidget *parent)
    : DesktopWindow(request, texts(request.language).titleSelectCertificate, parent)
{
    const Texts &t = texts_;
    auto *layout = new QVBoxLayout(this);
    model_ = new CertificateTableModel(request, t, style()->standardIcon(QStyle::SP_MessageBoxCritical),
                                       style()->standardIcon(QStyle::SP_MessageBoxWarning), this);
    if (QLabel *warning = hiddenCharactersWarning(t, model_->hiddenCharacters(), this))
        layout->addWidget(warning);
    filter_ = new QLineEdit(this);
    filter_->setPlaceholderText(qs(t.filterPlaceholder));
    filter_->setAccessibleName(qs(t.filterPlaceholder));
    filter_->setClearButtonEnabled(true);
    layout->addWidget(filter_);

    proxy_ = new QSortFilterProxyModel(this);
    proxy_->setSourceModel(model_);
    proxy_->setFilterCaseSensitivity(Qt::CaseInsensitive);
    proxy_->setFilterRole(kFilterRole);
    proxy_->setFilterKeyColumn(kSubject);

    table_ = new QTableView(this);
    table_->setModel(proxy_);
    table_->setAccessibleName(qs(t.titleSelectCertificate));
    table_->setSelectionBehavior(QAbstractItemView::SelectRows);
    table_->setSelectionMode(QAbstractItemView::SingleSelection);
    table_->setSortingEnabled(true);
    table_->sortByColumn(-1, Qt::AscendingOrder); // the host's order until the user sorts
    table_->verticalHeader()->hide();
    table_->setWordWrap(false);
    table_->setTextElideMode(Qt::ElideMiddle);
    table_->setTabKeyNavigation(false);
    table_->setMinimumSize(680, 220);
    // The subject takes what is left; the issuer gets a fair share and no
    // more, so that no column collapses under a long name.
    QHeaderView *header = table_->horizontalHeader();
    header->setSectionResizeMode(kSubject, QHeaderView::Stretch);
    header->setSectionResizeMode(kIssuer, QHeaderView::Interactive);
    header->setSectionResizeMode(kValidTo, QHeaderView::ResizeToContents);
    header->setSectionResizeMode(kDaysLeft, QHeaderView::ResizeToContents);
    header->setMinimumSectionSize(fontMetrics().averageCharWidth() * 8);
    table_->resizeColumnToContents(kIssuer);
    header->resizeSection(kIssuer, std::min(header->sectionSize(kIssuer), 220));
    if (initial < request.certificates.size())
        table_->selectRow(static_cast<int>(initial));
    table_->installEventFilter(this);
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

bool CertificateSelectWindow::eventFilter(QObject *watched, QEvent *event)
{
    // Typing in the table goes to the filter, as the placeholder promises.
    if (watched == table_ && event->type() == QEvent::KeyPress) {
        const auto *key = static_cast<QKeyEvent *>(event);
        const bool typed = !key->text().isEmpty() && key->text().front().isPrint() &&
                           !(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
        const bool erases = key->key() == Qt::Key_Backspace && !filter_->text().isEmpty();
        if (typed || erases) {
            filter_->setFocus();
            filter_->event(event);
            return true;
        }
    }
    return DesktopWindow::eventFilter(watched, event);
}

void CertificateSelectWindow::rowsChanged()
{
    // Typing in the filter must never leave a hidden row chosen, and the
    // chosen row stays in view.
    if (!table_->selectionModel()->hasSelection() && proxy_->rowCount() > 0)
        table_->selectRow(0);
    const bool chosen = table_->selectionModel()->hasSelection();
    if (chosen)
        table_->scrollTo(table_->selectionModel()->selectedRows().front(), QAbstractItemView::EnsureVisible);
    ok_->setEnabled(chosen);
    details_->setEnabled(chosen);
}

unsigned CertificateSelectWindow::selected() const
{
    const QModelIndexList rows = table_->selectionModel()->selectedRows();
    if (rows.isEmpty())
        return 0;
    return proxy_->mapToSource(rows.front()).data(kIndexRole).toUInt();
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
