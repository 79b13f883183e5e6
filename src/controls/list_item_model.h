#pragma once

#include "controls/list_control.h"

#include <QAbstractTableModel>

#include <functional>

namespace vessa {

// How a cell of a list reads aloud, and what is wrong with it, if anything: a cell with
// a warning shows in red and tells the warning as its tip and after its text.
struct CellLook {
    QString Spoken;
    QString Warning;
};
using CellLooks = std::function<CellLook(const ListRow& row, int column)>;

// Shows a ListControl to Qt's item views: one row per list row, one column per header.
// A column without a header reads, to assistive technology, as the whole row: each
// other column's header and what it reads, "When: Key A down, Happens To: Bunny".
// Without looks a cell reads as its text and nothing is wrong with it.
class ListItemModel : public QAbstractTableModel, private ListObserver {
    Q_OBJECT
public:
    explicit ListItemModel(ListControl& list, QObject* parent = nullptr);
    ~ListItemModel() override;

    ListControl& List() const { return list_; }
    ListRow* RowOf(const QModelIndex& index) const { return list_.Row(index.row()); }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    void setCellLooks(CellLooks looks);
    // Asks again how every cell looks: what the looks depend on has changed.
    void refreshLooks();
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    QString RowSummary(const ListRow& row) const;
    void RowAboutToBeAdded(int position) override;
    void RowAdded() override;
    void RowAboutToBeRemoved(int position) override;
    void RowRemoved() override;
    void RowChanged(int position) override;
    void AboutToClear() override;
    void Cleared() override;

    CellLook LookOf(const ListRow& row, int column) const;

    ListControl& list_; // Not owned.
    CellLooks looks_;
};

} // namespace vessa
