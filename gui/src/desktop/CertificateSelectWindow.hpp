// "CertificateSelect": the host's certificates in a sortable table that a
// filter field narrows as one types (typing anywhere in the window goes to
// it); each named from its own X.509 fields by type, long names elided in the
// middle with the whole name in the tooltip; renewal marked with an icon;
// details on a button or a double click. The signature window opens it to
// change the certificate.
#pragma once

#include "desktop/DesktopWindow.hpp"

class QLineEdit;
class QPushButton;
class QSortFilterProxyModel;
class QTableView;

namespace OrvelGui {

class CertificateTableModel;

class CertificateSelectWindow : public DesktopWindow {
    Q_OBJECT
public:
    CertificateSelectWindow(const Request &request, unsigned initial, QWidget *parent = nullptr);
    // The chosen certificate's index in the host's list.
    unsigned selected() const;

    QTableView *table() const { return table_; }
    QLineEdit *filter() const { return filter_; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void showDetails();
    void rowsChanged();

    CertificateTableModel *model_ = nullptr;
    QSortFilterProxyModel *proxy_ = nullptr;
    QTableView *table_ = nullptr;
    QLineEdit *filter_ = nullptr;
    QPushButton *ok_ = nullptr;
    QPushButton *details_ = nullptr;
};

} // namespace OrvelGui
