#pragma once

#include "controls/node_ref.h"
#include "controls/tree_control_view.h"
#include "script/script_clicks.h"

#include <QMenu>
#include <QPointer>
#include <QWidget>

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
    // The right-click menu that is open, if any.
    QMenu* OpenMenu() const { return menu_; }
    // The piece of node's line that the keyboard works on: its offset and length; an
    // empty piece for a node that has none.
    LinePiece currentPiece(const TreeNode* node) const;

public Q_SLOTS:
    // Reverses the newest recorded change of the script.
    void UndoFromLog();
    // Does again the newest change of the script that was undone.
    void RedoFromLog();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

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

    ScriptModel& model_; // Not owned.
    ScriptClicks clicks_;
    TreeControlView* constructTree_; // Owned by Qt.
    TreeControlView* treeView1_;     // Owned by Qt.
    TreeControlView* commandLine_;   // Owned by Qt.
    ScriptMenusView* menusView_;     // Owned by Qt.
    QPointer<QMenu> menu_;
    NodeRef pieceNode_; // the line whose piece pieceIndex_ is current
    int pieceIndex_ = 0;
};

} // namespace vessa
