#pragma once

#include <QToolButton>

class QMimeData;

namespace vessa {

class EditMenu;
class EventList;
class ScriptModel;

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
    // What it takes it deletes through the Delete command of commands.
    TrashCan(ScriptModel& script, EventList& events, EditMenu& commands, QWidget* parent = nullptr);

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

    ScriptModel& script_; // Not owned.
    EventList& events_;   // Not owned.
    EditMenu& commands_;  // Not owned.
    bool open_ = false;
};

} // namespace vessa
