#pragma once

#include "controls/tree_control.h"
#include "script/script_request.h"

#include <QWidget>
#include <functional>

class QMimeData;
class QToolButton;

namespace vessa {

class EventList;
class EventMenusView;
class ListControlView;
class ListRow;

// The events tab's event builder: the MakeEvent button over ListView1, whose rows show
// under "When", "Happens To" and "Do Animation". A click in a column, or Return on the
// selected row, asks for that column's editor through the script's requests; Left and
// Right choose the column the keyboard works on. A right click, the menu key or Shift+F10
// open the list's own menu. An object dragged from ObjectTree2 and dropped on the list
// makes a row for it. A row can be dragged (to the trash can), and Backspace deletes the
// selected one. MakeEvent is enabled while the script has an animation. A row that names
// an animation or object that is gone shows it in red and says so. An undo or redo whose
// row is gone tells the user so in a box.
class EventPanel : public QWidget, private TreeObserver {
    Q_OBJECT
public:
    // objectTree2 is the tree whose drags make rows.
    EventPanel(EventList& list, const TreeControl& objectTree2, QWidget* parent = nullptr);
    ~EventPanel() override;

    ListControlView& ListView1View() { return *listView1_; }
    QToolButton& MakeEventButton() { return *makeEvent_; }
    EventMenusView& menusView() { return *menusView_; }

public Q_SLOTS:
    // Reverses the newest change made on the event tab.
    void LVUndoFromLog();
    // Does again the newest change of the event tab that was undone.
    void LVRedoFromLog();

Q_SIGNALS:
    // After every change of the event tab's log: what it can undo and redo has changed.
    void listHistoryChanged();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // TreeObserver: the script's animations come and go.
    void NodeAdded(TreeNode* node) override;
    void NodeRemoved() override;
    void NodeChanged(TreeNode* node) override;
    void Cleared() override;
    void showScriptChanged();
    void tellGone(const QString& message);

    void ListView1_MouseUp(Qt::MouseButton button, const QPoint& point);
    void ListView1_KeyDown(int key);
    void ListView1_MenuKey();
    void ListView1_MouseDown(Qt::MouseButton button, const QPoint& point);
    void ListView1_MouseMove(Qt::MouseButtons buttons, const QPoint& point);
    bool ListView1_DragOver(const QMimeData* carried, const QPoint& point) const;
    void ListView1_DragDrop(const QMimeData* carried, const QPoint& point);
    bool filterDrag(QEvent* event);
    void routeRequest(ScriptRequest request);
    ListRow* rowAt(const QPoint& point) const;
    void guarded(const std::function<void()>& work);

    EventList& list_;                // Not owned.
    const TreeControl& objectTree2_; // Not owned.
    QToolButton* makeEvent_;         // Owned by Qt.
    ListControlView* listView1_;     // Owned by Qt.
    QString pressedRowKey_;          // the row under the last left press, until its release
    QPoint pressPoint_;
    EventMenusView* menusView_; // Owned by Qt.
};

} // namespace vessa
