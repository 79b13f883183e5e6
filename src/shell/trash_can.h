#pragma once

#include <QToolButton>

#include <functional>

class QMimeData;

namespace vessa {

class EventList;
class ScriptModel;
class TreeNode;

// The trash can beside the script. A line or block of the script, or a row of the event
// list, dropped on it is deleted as the Delete command deletes it, recorded for undo; an
// animation that event rows do is deleted, with its rows, only once the user agrees. It
// opens while something it takes is over it and stays shut for everything else.
//
// Pressed, it deletes what is selected on the tab shown (a row on the events tab, a line
// otherwise): what the keyboard and the Edit menu do instead of a drag.
class TrashCan : public QToolButton {
    Q_OBJECT
public:
    // tab answers the world tab shown: 2 is the events tab.
    TrashCan(ScriptModel& script, EventList& events, std::function<int()> tab,
             QWidget* parent = nullptr);

    bool isOpen() const { return open_; }
    // The Delete command on the tab shown.
    void EditDeleteMenuButton_Click();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    bool takes(const QMimeData* carried) const;
    void showOpen(bool open);
    // Deletes the line, first asking whether its event rows may go with it.
    void deleteLine(TreeNode* node);
    void deleteSelectedRow();

    ScriptModel& script_; // Not owned.
    EventList& events_;   // Not owned.
    std::function<int()> tab_;
    bool open_ = false;
};

} // namespace vessa
