// "CertificateSelect": the host's certificates in a sortable table that a
// filter field narrows as one types; renewal marked with an icon; details on
// a button or a double click. The signature window opens it to change the
// certificate.
#pragma once

#include "desktop/DesktopWindow.hpp"

class QLineEdit;
class QPushButton;
class QSortFilterProxyModel;
class QStandardItemModel;
class QTableView;

namespace OrvelGui {

class CertificateSelectWindow : public DesktopWindow {
    Q_OBJECT
public:
    CertificateSelectWindow(const Request &request, unsigned initial, QWidget *parent = nullptr);
    // The chosen certificate's index in the host's list.
    unsigned selected() const;

    QTableView *table() const { return table_; }
    QLineEdit *filter() const { return filter_; }

private:
    void showDetails();
    void rowsChanged();

    QStandardItemModel *model_ = nullptr;
    QSortFilterProxyModel *proxy_ = nullptr;
    QTableView *table_ = nullptr;
    QLineEdit *filter_ = nullptr;
    QPushButton *ok_ = nullptr;
    QPushButton *details_ = nullptr;
};

} // namespace OrvelGui
