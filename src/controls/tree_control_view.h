#pragma once

#include "controls/tree_control.h"
#include "controls/tree_geometry.h"
#include "controls/tree_item_model.h"

#include <QBasicTimer>
#include <QTreeView>

namespace vessa {

// The window of a tree control. It shows a TreeControl through a TreeItemModel, keeps
// expansion and selection in step with the control both ways, and hands presses and
// releases on the items to whoever handles the tree's mouse. Clicks on the expand arrows
// stay with the view.
//
// The mouse on the items comes out as the platform delivers it: a press, a release, and
// for a double click a DblClick instead of the second press; a double click opens or
// closes a node. Only the handlers choose the selected item: a press does not, and the
// tree does not scroll under the pointer while they run. A move with a button held is
// reported once it leaves the small square in which it still counts as a click, and from
// then on a drag. A label edit that a mouse handler asks for waits until the click proves
// to be the slow second click on the item that was already selected: it opens after the
// double-click time unless a double click, a drag or another press comes first. Edits
// asked for at any other time open at once.
class TreeControlView : public QTreeView, public TreeGeometry, private TreeObserver {
    Q_OBJECT
public:
    explicit TreeControlView(TreeControl& tree, QWidget* parent = nullptr);
    ~TreeControlView() override;

    TreeControl& Tree() const { return tree_; }
    TreeItemModel& ItemModel() { return model_; }

    // Drags node to wherever the user drops it, carrying the program's node type and a
    // picture of its text; returns once the drop or the cancel is done. Each drop target
    // reads the node being dragged from the program's DragNode.
    Qt::DropAction dragNode(const TreeNode* node, Qt::DropActions actions);

    TreeNode* HitTest(const QPoint& point) const override;
    TreeNode* NodeOnRow(int y) const override;
    QRect NodeRect(const TreeNode* node) const override;
    int ItemHeight() const override;
    int Indentation() const override { return indentation(); }
    QFont TextFont() const override { return font(); }
    double TwipsPerPixel() const override;

Q_SIGNALS:
    // Points are in viewport pixels.
    void MouseDown(Qt::MouseButton button, const QPoint& point);
    void MouseMove(Qt::MouseButtons buttons, const QPoint& point);
    void MouseUp(Qt::MouseButton button, const QPoint& point);
    void DblClick(const QPoint& point);
    // The keyboard's menu key: point is where a right click on the selected node's text
    // would fall, or outside every node when none is selected.
    void menuKeyPressed(const QPoint& point);
    void KeyUp(int key);
    // The user opened or closed a node (not the program).
    void Expand(TreeNode* node);
    void Collapse(TreeNode* node);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    // A press on the items and what followed it, up to its release.
    struct Gesture {
        bool Held = false;            // pressed and not yet released
        int Node = 0;                 // Index of the node pressed; 0 for blank space
        bool NodeWasSelected = false; // the node was the selected item before the press
        QPoint Start;
        bool Dragging = false;    // the pointer left the click's square
        bool DoubleClick = false; // the second press of a double click
    };

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
    void reportMenuKey();
    int NodeIndexAt(const QPoint& point) const;
    template <typename Call> void Unscrolled(Call call);
    template <typename Call> void AsHandler(Call call);
    template <typename Call> void LetQtFollow(Call call);
    void OpenEditor(TreeNode* node);
    void CancelPendingEdit();

    TreeControl& tree_; // Not owned.
    TreeItemModel model_;
    bool pressWentToView_ = false;
    bool syncing_ = false;
    bool inHandler_ = false; // a handler of the mouse runs
    bool qtFollows_ = false; // Qt's own mouse handling runs: its choice of item is not kept
    Gesture gesture_;
    int pendingEdit_ = 0; // Index of the node whose edit waits for the click to end
    QBasicTimer editDelay_;
};

} // namespace vessa
