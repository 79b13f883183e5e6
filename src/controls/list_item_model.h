#pragma once

#include "controls/list_control.h"

#include <QAbstractTableModel>

namespace vessa {

// Shows a ListControl to Qt's item views: one row per list row, one column per header.
// A column without a header reads, to assistive technology, as the whole row: each
// other column's header and text, "When: KeyDown (Space Bar), Happens To: Bunny".
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

    ListControl& list_; // Not owned.
};

} // namespace vessa
