#pragma once

#include "controls/tree_control.h"
#include "controls/tree_geometry.h"
#include "controls/tree_item_model.h"

#include <QTreeView>

namespace vessa {

// The window of a tree control. It shows a TreeControl through a TreeItemModel, keeps
// expansion and selection in step with the control both ways, and hands presses and
// releases on the items to whoever handles the tree's mouse: it does not act on them.
// Clicks on the expand arrows stay with the view.
class TreeControlView : public QTreeView, public TreeGeometry, private TreeObserver {
    Q_OBJECT
public:
    explicit TreeControlView(TreeControl& tree, QWidget* parent = nullptr);
    ~TreeControlView() override;

    TreeControl& Tree() const { return tree_; }
    TreeItemModel& ItemModel() { return model_; }

    TreeNode* HitTest(const QPoint& point) const override;
    QRect NodeRect(const TreeNode* node) const override;
    int ItemHeight() const override;
    QFont TextFont() const override { return font(); }
    double TwipsPerPixel() const override;

Q_SIGNALS:
    // Points are in viewport pixels.
    void MouseDown(Qt::MouseButton button, const QPoint& point);
    void MouseMove(Qt::MouseButtons buttons, const QPoint& point);
    void MouseUp(Qt::MouseButton button, const QPoint& point);
    void DblClick(const QPoint& point);
    void KeyUp(int key);
    // The user opened or closed a node (not the program).
    void Expand(TreeNode* node);
    void Collapse(TreeNode* node);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;

private:
    void NodeAdded(TreeNode* node) override;
    void ExpandedChanged(TreeNode* node) override;
    void SelectedItemChanged(TreeNode* node) override;
    void EnsureVisibleRequested(TreeNode* node) override;
    void LabelEditRequested(TreeNode* node) override;
    void ApplyExpansion(const TreeNode* node);
    void ApplyExpansionBelow(const TreeNode* parent);
    void ShowSelection(const TreeNode* node);
    void FollowCurrent(const QModelIndex& current);
    bool OnArrow(const QPoint& point) const;

    TreeControl& tree_; // Not owned.
    TreeItemModel model_;
    bool pressWentToView_ = false;
    bool syncing_ = false;
};

} // namespace vessa
