#include "controls/list_item_model.h"

namespace vessa {

ListItemModel::ListItemModel(ListControl& list, QObject* parent)
    : QAbstractTableModel(parent), list_(list) {
    list_.AddObserver(this);
}

ListItemModel::~ListItemModel() {
    list_.RemoveObserver(this);
}

int ListItemModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : list_.Count();
}

int ListItemModel::columnCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(list_.ColumnHeaders().size());
}

QVariant ListItemModel::data(const QModelIndex& index, int role) const {
    const ListRow* row = RowOf(index);
    if (!row || (role != Qt::DisplayRole && role != Qt::AccessibleTextRole))
        return {};
    if (role == Qt::AccessibleTextRole && list_.ColumnHeaders().value(index.column()).isEmpty())
        return RowSummary(*row);
    return row->SubItems(index.column());
}

QString ListItemModel::RowSummary(const ListRow& row) const {
    QStringList columns;
    const QStringList& headers = list_.ColumnHeaders();
    for (int column = 0; column < headers.size(); ++column)
        if (!headers[column].isEmpty())
            columns << headers[column] + QStringLiteral(": ") + row.SubItems(column);
    return columns.join(QStringLiteral(", "));
}

QVariant ListItemModel::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    return list_.ColumnHeaders().value(section);
}

void ListItemModel::RowAboutToBeAdded(int position) {
    beginInsertRows({}, position, position);
}

void ListItemModel::RowAdded() {
    endInsertRows();
}

void ListItemModel::RowAboutToBeRemoved(int position) {
    beginRemoveRows({}, position, position);
}

void ListItemModel::RowRemoved() {
    endRemoveRows();
}

void ListItemModel::RowChanged(int position) {
    Q_EMIT dataChanged(index(position, 0), index(position, columnCount() - 1));
}

void ListItemModel::AboutToClear() {
    beginResetModel();
}

void ListItemModel::Cleared() {
    endResetModel();
}

} // namespace vessa
