#pragma once

#include "controls/node_ref.h"
#include "controls/tree_control_view.h"
#include "script/script_clicks.h"
#include "script/script_drops.h"

#include <QMenu>
#include <QPointer>
#include <QTimer>
#include <QWidget>

class QDropEvent;

namespace vessa {

class ScriptMenusView;
class ScriptModel;

// The animations tab's script: the block palette (ConstructTree), the script tree
// (TreeView1) and the one-line command tree, over a ScriptModel. It turns the mouse on
// them into the script's rules, shows the two right-click menus, and hands every other
// menu or editor a click asks for to whoever registered for it with the model; the
// script's own menus and editors register here (ScriptMenusView).
//
// On the keyboard, one piece of the selected line is the current one (the object, the
// command, a value or "more..."), marked on the line and told to a screen reader: Left
// and Right move among the pieces, Enter opens what a click on the piece opens, and the
// menu key (or Shift+F10) the line's menu as a right click on the piece shows it. A
// click makes the piece clicked the current one.
//
// Lines are made and moved by dragging: blocks from the palette, objects and sounds from
// the scene's trees, and lines and blocks of the script itself (the right button
// copies). While a drag is over the script tree a mark shows where the drop would land,
// the tree scrolls near its top and bottom edges, and a place where nothing can go is
// refused before the drop. From the keyboard, Return on a block of the palette puts it
// where a paste would go.
//
// From outside it needs only the model's host (the event log's undo, error reports,
// the scene the menus offer). The three views may be taken out of its layout and placed
// elsewhere.
class ScriptPanel : public QWidget {
    Q_OBJECT
public:
    explicit ScriptPanel(ScriptModel& model, QWidget* parent = nullptr);

    ScriptModel& Model() const { return model_; }
    TreeControlView& TreeView1View() { return *treeView1_; }
    TreeControlView& ConstructTreeView() { return *constructTree_; }
    TreeControlView& CommandLineTreeviewView() { return *commandLine_; }
    ScriptMenusView& menusView() { return *menusView_; }

    // The font of the script's trees, in which clicks are also measured.
    void ApplyScriptFont(const QFont& font);
    // Whether the Python code box shows: the blank-space menu offers to add or remove it.
    void SetCodeBoxShown(bool shown) { clicks_.SetCodeBoxShown(shown); }
    // Whether something has been copied: the node menu offers "Paste Line" from then on.
    void SetPasteLineShown(bool shown) { clicks_.SetPasteLineShown(shown); }
    // The right-click menu that is open, if any.
    QMenu* OpenMenu() const { return menu_; }
    // The piece of node's line that the keyboard works on: its offset and length; an
    // empty piece for a node that has none.
    LinePiece currentPiece(const TreeNode* node) const;
    // The line that shows where a drop would land; hidden while there is none.
    QWidget& insertionMark() const { return *insertionMark_; }
    bool scrolling() const { return ScrollTimer.isActive(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

public Q_SLOTS:
    // Reverses the newest recorded change of the script.
    void UndoFromLog();
    // Does again the newest change of the script that was undone.
    void RedoFromLog();

private:
    void connectTree(TreeControlView& view);
    void Show(ScriptRequest request, TreeControlView& view);
    void PopUp(const ScriptRequest& request, const std::function<void(int)>& chosen);
    void NodeRowChosen(int row);
    void AskForPythonLine();
    void Guarded(const std::function<void()>& work);
    bool keyOnLine(TreeControlView& view, int key);
    QPoint piecePoint(TreeControlView& view, const TreeNode* node) const;
    void takePieceAt(TreeControlView& view, const QPoint& point);
    void tellPiece(TreeControlView& view, const TreeNode* node);
    void connectDrags();
    // A drag from the script tree or the palette: the drop decides what it means.
    void beginDrag(TreeControlView& view, TreeNode* node);
    bool TreeView1_DragOver(QDropEvent* event);
    // The highlight, the mark and the scrolling for the drag at dragPoint_; answers
    // whether a drop there would be taken.
    bool showDropPlace();
    void TreeView1_DragDrop(QDropEvent* event);
    void endDragOver();
    void ScrollTimer_Timer();
    bool CommandLineTreeview_DragEvent(QEvent* event);
    void ConstructTree_KeyDown(int key);

    ScriptModel& model_; // Not owned.
    ScriptClicks clicks_;
    ScriptDrops drops_;
    QWidget* insertionMark_; // Owned by Qt.
    // Scrolls the script tree a line at a time while a drag is near its top or bottom.
    QTimer ScrollTimer;
    int ScrollDirection = 0;
    QPoint dragPoint_; // where the drag over the script tree is, for the scrolled rows
    TreeControlView* constructTree_; // Owned by Qt.
    TreeControlView* treeView1_;     // Owned by Qt.
    TreeControlView* commandLine_;   // Owned by Qt.
    ScriptMenusView* menusView_;     // Owned by Qt.
    QPointer<QMenu> menu_;
    NodeRef pieceNode_; // the line whose piece pieceIndex_ is current
    int pieceIndex_ = 0;
};

} // namespace vessa
