#pragma once

#include "controls/list_item_model.h"

#include <QTreeView>

namespace vessa {

// The window of a list control: a report with one header per column whose selected row
// follows the control's SelectedItem both ways.
class ListControlView : public QTreeView, private ListObserver {
    Q_OBJECT
public:
    explicit ListControlView(ListControl& list, QWidget* parent = nullptr);
    ~ListControlView() override;

    ListControl& List() const { return list_; }
    ListItemModel& ItemModel() { return model_; }

private:
    void SelectedItemChanged(ListRow* row) override;

    ListControl& list_; // Not owned.
    ListItemModel model_;
    bool syncing_ = false;
};

} // namespace vessa
