#pragma once

#include "controls/node_ref.h"

#include <QWidget>
#include <functional>

namespace vessa {

class EngineLink;
class ErrorReporter;
class TreeControlView;
class TreeNode;
struct SceneTrees;

// The scene's column: ObjectTree (or, on the event tab, ObjectTree2) above
// SoundTree; its views may be taken out of its layout and placed elsewhere. It never changes the
// trees itself: renames, new parents and deletions go to the engine as statements, and the trees
// follow when the engine's records come back.
class ScenePanel : public QWidget {
    Q_OBJECT
public:
    struct Hooks {
        std::function<int()> sceneScriptTab; // the tab shown, 0 to 2
        // A right click on an object, or the menu key on it: its menu, at a point on the screen.
        std::function<void(const QString&, const QPoint&)> showObjectMenu;
    };

    ScenePanel(SceneTrees& trees, EngineLink& engine, ErrorReporter& reporter, NodeRef& dragNode,
               Hooks hooks, QWidget* parent = nullptr);

    // ObjectTree on the opening-scene and animation tabs, ObjectTree2 on the event tab.
    void showTab(int tab);
    bool objectTreeVisible() const;

    TreeControlView& ObjectTreeView() { return *objectTree_; }
    TreeControlView& ObjectTree2View() { return *objectTree2_; }
    TreeControlView& SoundTreeView() { return *soundTree_; }

    // The handlers, public so that they can be driven as the views drive them.
    // Those that may begin a drag answer the node to drag, or nullptr; the
    // views then run the drag, which ends in a drop event.
    void ObjectTree_MouseDown(Qt::MouseButton button, const QPoint& point);
    TreeNode* ObjectTree_MouseMove(Qt::MouseButtons buttons, const QPoint& point);
    void ObjectTree_MouseUp(Qt::MouseButton button, const QPoint& point);
    void ObjectTree_DragOver(const QPoint& point);
    void ObjectTree_DragDrop();
    void ObjectTree_AfterLabelEdit(TreeNode* node, const QString& newString);
    TreeNode* ObjectTree2_MouseDown(Qt::MouseButton button, const QPoint& point);
    void SoundTree_MouseDown(Qt::MouseButton button, const QPoint& point);
    TreeNode* SoundTree_MouseMove(Qt::MouseButtons buttons);
    void SoundTree_DblClick();
    void SoundTree_KeyUp(int key);
    void SoundTree_AfterLabelEdit(const QString& newString);

    bool InDrag() const { return inDrag_; }

Q_SIGNALS:
    // An object of ObjectTree was clicked: its full name.
    void objectClicked(const QString& objectName);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void connectObjectTree();
    void connectObjectTree2();
    void connectSoundTree();
    // Opening and closing a node of the object trees makes its sound.
    void connectFoldingSounds(TreeControlView& view, const QString& control);
    void ObjectTree_NodeClick(TreeNode* node);
    // Starts a drag of a node of one of the trees; the drop decides what it means.
    void beginDrag(TreeControlView& view, TreeNode* node);
    // Asks the engine whether the text can name an object; tells the user if not.
    bool acceptableName(const QString& name);
    void guarded(const std::function<void()>& handler);

    SceneTrees& trees_;       // Not owned.
    EngineLink& engine_;      // Not owned.
    ErrorReporter& reporter_; // Not owned.
    NodeRef& dragNode_;       // Not owned: the program's one node being dragged.
    Hooks hooks_;
    TreeControlView* objectTree_;  // Owned by Qt.
    TreeControlView* objectTree2_; // Owned by Qt.
    TreeControlView* soundTree_;   // Owned by Qt.
    NodeRef pressedNode_;
    bool inDrag_ = false;
    bool pressedSelectedNode_ = false;
    QString oldLabel_;
};

} // namespace vessa
