#include "controls/list_control_view.h"

#include <QScopedValueRollback>

namespace vessa {

ListControlView::ListControlView(ListControl& list, QWidget* parent)
    : QTreeView(parent), list_(list), model_(list) {
    setModel(&model_);
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    list_.AddObserver(this);
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this,
            [this](const QModelIndex& current) {
                if (!syncing_)
                    list_.SetSelectedItem(model_.RowOf(current));
            });
}

ListControlView::~ListControlView() {
    list_.RemoveObserver(this);
}

void ListControlView::SelectedItemChanged(ListRow* row) {
    QScopedValueRollback<bool> guard(syncing_, true);
    const int position = list_.PositionOf(row);
    if (position < 0)
        selectionModel()->clear();
    else
        selectionModel()->setCurrentIndex(model_.index(position, 0),
                                          QItemSelectionModel::ClearAndSelect |
                                              QItemSelectionModel::Rows);
}

} // namespace vessa
