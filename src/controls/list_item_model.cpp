#include "controls/list_item_model.h"

#include <QColor>

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

void ListItemModel::setCellLooks(CellLooks looks) {
    looks_ = std::move(looks);
    refreshLooks();
}

void ListItemModel::refreshLooks() {
    if (list_.Count() > 0)
        Q_EMIT dataChanged(index(0, 0), index(list_.Count() - 1, columnCount() - 1));
}

CellLook ListItemModel::LookOf(const ListRow& row, int column) const {
    CellLook look = looks_ ? looks_(row, column) : CellLook{};
    if (look.Spoken.isEmpty())
        look.Spoken = row.SubItems(column);
    if (!look.Warning.isEmpty())
        look.Spoken += QStringLiteral(" (") + look.Warning + u')';
    return look;
}

QVariant ListItemModel::data(const QModelIndex& index, int role) const {
    const ListRow* row = RowOf(index);
    if (!row)
        return {};
    const bool wholeRow = list_.ColumnHeaders().value(index.column()).isEmpty();
    switch (role) {
    case Qt::DisplayRole:
        return row->SubItems(index.column());
    case Qt::AccessibleTextRole:
        return wholeRow ? RowSummary(*row) : LookOf(*row, index.column()).Spoken;
    case Qt::ToolTipRole: {
        const QString warning = LookOf(*row, index.column()).Warning;
        return warning.isEmpty() ? QVariant() : QVariant(warning);
    }
    case Qt::ForegroundRole:
        return LookOf(*row, index.column()).Warning.isEmpty() ? QVariant()
                                                              : QVariant(QColor(Qt::red));
    default:
        return {};
    }
}

QString ListItemModel::RowSummary(const ListRow& row) const {
    QStringList columns;
    const QStringList& headers = list_.ColumnHeaders();
    for (int column = 0; column < headers.size(); ++column)
        if (!headers[column].isEmpty())
            columns << headers[column] + QStringLiteral(": ") + LookOf(row, column).Spoken;
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
