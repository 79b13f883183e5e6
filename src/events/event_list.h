#pragma once

#include "controls/list_control.h"
#include "controls/list_item_model.h"
#include "events/event_undo_log.h"
#include "events/row_clipboard.h"
#include "script/script_request.h"

#include <Qt>

#include <functional>

namespace vessa {

class ScriptModel;

// The event list of the open world: the rows of ListView1, each saying "when this
// happens to that, do this animation", the counter that keys them, the row and column
// of the last click, and the rows' two undo logs. A row holds only strings: SubItems(1)
// the condition (When), SubItems(2) an object's full name, "AnyWhere", or "- - -" on a
// start row (Happens To), SubItems(3) an animation's name (Do Animation); SubItems(0)
// stays empty. A row's Key is its only stable identity: "Key<n>", or "key<n>" for a row
// made by dropping an object, with n from EventRowCounter, which never comes down, so no
// key comes twice in one world.
//
// ListUndoLog records what is done on the event tab; TreeListUndoLog what edits of the
// script do to rows, replayed by the script's own undo. Recording a change is where the
// world becomes modified. Animation names come from the script's tree, and clicks ask
// for their menus through the script's requests.
// A row's When as it is said: "Key A down" for `KeyDown ("A" key)`, "Key Space Bar up"
// for `KeyUp (Space Bar)`, "Left mouse button down" for "LeftMouseButtonDown".
QString SpokenCondition(const QString& when);

class EventList {
public:
    // The columns of a row, as SubItems and as the view numbers them.
    enum Column { When = 1, HappensTo = 2, DoAnimation = 3 };

    explicit EventList(ScriptModel& script);
    EventList(const EventList&) = delete;
    EventList& operator=(const EventList&) = delete;

    ScriptModel& Script() const { return script_; }
    ListControl& ListView1() { return listView1_; }
    int EventRowCounter() const { return eventRowCounter_; }
    EventUndoLog& ListUndoLog() { return listUndoLog_; }
    EventUndoLog& TreeListUndoLog() { return treeListUndoLog_; }

    // A new world, or one about to be loaded: no rows, empty logs, keys from 0 again, and
    // the start row "World Start", "- - -" with the first animation ("" when there is none).
    void InitEventList();
    // A row at the end with the next "Key<n>", recorded nowhere and selecting nothing:
    // how the rows of a world are put back.
    ListRow* addRow(const QString& when, const QString& happensTo, const QString& animation);
    // The MakeEvent button: a row "LeftMouseButtonDown", "AnyWhere" and the newest
    // animation, recorded in ListUndoLog and selected. Nothing without an animation.
    ListRow* MakeEvent();
    // An object dropped from ObjectTree2 onto the list: as MakeEvent but happening to
    // objectName, keyed "key<n>" and recorded nowhere, so undo passes it by.
    ListRow* addDroppedObject(const QString& objectName);

    // Deletes row, recorded in ListUndoLog: undo brings it back at the end of the list.
    void DeleteRow(const ListRow* row);
    // The row copied last, which Paste makes rows from.
    RowClipboard& rowClipboard() { return rowClipboard_; }
    // Copies row, then deletes it as DeleteRow does.
    void CutRow(const ListRow* row);
    // A row at the end with the next "Key<n>" and the columns copied last (empty ones when
    // none was), recorded in ListUndoLog and selected.
    ListRow* PasteRow();

    // A click released on ListView1 over row (nullptr: none) in column (When, HappensTo,
    // DoAnimation; anything else: outside the columns). A left click on a row selects it,
    // becomes CurrentRow and CurrentColumn, and asks for the column's editor: the
    // conditions menu, the object chooser (not for a start row), or the animations menu.
    // A right click anywhere asks for the list's own menu.
    ScriptRequest ListView1_MouseUp(Qt::MouseButton button, ListRow* row, int column);
    // The row of the last click, nullptr once it is gone; the column of that click.
    ListRow* CurrentRow() const { return listView1_.RowByKey(currentRowKey_); }
    int CurrentColumn() const { return currentColumn_; }

    // An object was renamed: the name, standing whole in Happens To or Do Animation,
    // becomes the new one, case ignored. Recorded nowhere.
    void ListviewReplaceString(const QString& find, const QString& replacement);
    // An animation was renamed: every row that does it, case ignored, does the new name,
    // each recorded in TreeListUndoLog. Answers how many rows changed.
    int ReplaceInListView(const QString& oldName, const QString& newName);
    // Whether a row does the animation, case ignored.
    bool FindInListView(const QString& name) const;
    // An animation goes: every row that does it goes too, each recorded in
    // TreeListUndoLog. Answers how many rows went.
    int RemoveFromListView(const QString& name);

    // How a cell of the list reads aloud ("Key A down"), and whether it names an
    // animation the script does not have or an object the scene does not have.
    CellLook cellLook(const ListRow& row, int column) const;

    // Records what is about to happen to row, with its columns as they stand now. A new
    // change: what was undone in log can't be done again.
    void LVUndoLog(EventUndoLog& log, EventUndoOperation operation, const ListRow* row);
    // Reverses the newest record of log, recording nothing new: what undoes the undo goes
    // to the log's redo. A removed row comes back at the end of the list under its old
    // key. A record whose row has gone since changes nothing and is told to the notice.
    void LVUndoFromLog(EventUndoLog& log);
    // Does again the newest change of log that was undone, the same way.
    void LVRedoFromLog(EventUndoLog& log);
    // Who is told, in words for the user, when an undo or redo finds its row gone.
    void setNotice(std::function<void(const QString&)> notice) { notice_ = std::move(notice); }

private:
    ListRow* addRowKeyed(const QString& keyWord, const QString& when, const QString& happensTo,
                         const QString& animation);
    void setColumns(ListRow* row, const QString& when, const QString& happensTo,
                    const QString& animation);
    QString newestAnimation() const;
    EventUndoRecord recordOf(EventUndoOperation operation, const ListRow* row) const;
    // Carries out record and answers the record that reverses it.
    EventUndoRecord replay(const EventUndoRecord& record);

    ScriptModel& script_; // Not owned.
    ListControl listView1_;
    int eventRowCounter_ = 0;
    EventUndoLog listUndoLog_;
    EventUndoLog treeListUndoLog_;
    RowClipboard rowClipboard_;
    QString currentRowKey_;
    int currentColumn_ = 0;
    std::function<void(const QString&)> notice_;
};

} // namespace vessa
