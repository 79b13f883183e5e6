#pragma once

#include "controls/tree_control_view.h"
#include "script/script_clicks.h"

#include <QMenu>
#include <QPointer>
#include <QWidget>

namespace vessa {

class ScriptModel;

// The animations tab's script: the block palette (ConstructTree), the script tree
// (TreeView1) and the one-line command tree, over a ScriptModel. It turns the mouse on
// them into the script's rules, shows the two right-click menus, and hands every other
// menu or editor a click asks for to whoever registered for it with the model.
//
// From outside it needs only the model's host (the event log's undo, error reports).
// The three views may be taken out of its layout and placed elsewhere.
class ScriptPanel : public QWidget {
    Q_OBJECT
public:
    explicit ScriptPanel(ScriptModel& model, QWidget* parent = nullptr);

    ScriptModel& Model() const { return model_; }
    TreeControlView& TreeView1View() { return *treeView1_; }
    TreeControlView& ConstructTreeView() { return *constructTree_; }
    TreeControlView& CommandLineTreeviewView() { return *commandLine_; }

    // The font of the script's trees, in which clicks are also measured.
    void ApplyScriptFont(const QFont& font);
    // Whether the Python code box shows: the blank-space menu offers to add or remove it.
    void SetCodeBoxShown(bool shown) { clicks_.SetCodeBoxShown(shown); }
    // The right-click menu that is open, if any.
    QMenu* OpenMenu() const { return menu_; }

public Q_SLOTS:
    // Reverses the newest recorded change of the script.
    void UndoFromLog();

private:
    void Show(ScriptRequest request, TreeControlView& view);
    void PopUp(const ScriptRequest& request, const std::function<void(int)>& chosen);
    void NodeRowChosen(int row);
    void AskForPythonLine();
    void Guarded(const std::function<void()>& work);

    ScriptModel& model_; // Not owned.
    ScriptClicks clicks_;
    TreeControlView* constructTree_; // Owned by Qt.
    TreeControlView* treeView1_;     // Owned by Qt.
    TreeControlView* commandLine_;   // Owned by Qt.
    QPointer<QMenu> menu_;
};

} // namespace vessa
