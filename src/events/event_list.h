#pragma once

#include "controls/list_control.h"
#include "events/event_undo_log.h"
#include "script/script_request.h"

#include <Qt>

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

    // A click released on ListView1 over row (nullptr: none) in column (When, HappensTo,
    // DoAnimation; anything else: outside the columns). A left click on a row selects it,
    // becomes CurrentRow and CurrentColumn, and asks for the column's editor: the
    // conditions menu, the object chooser (not for a start row), or the animations menu.
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

    // Records what is about to happen to row, with its columns as they stand now.
    void LVUndoLog(EventUndoLog& log, EventUndoOperation operation, const ListRow* row);
    // Reverses the newest record of log, recording nothing. A removed row comes back at
    // the end of the list under its old key. A record whose row has gone since is
    // dropped: what it would put back went with the row.
    void LVUndoFromLog(EventUndoLog& log);

private:
    ListRow* addRowKeyed(const QString& keyWord, const QString& when, const QString& happensTo,
                         const QString& animation);
    void setColumns(ListRow* row, const QString& when, const QString& happensTo,
                    const QString& animation);
    QString newestAnimation() const;

    ScriptModel& script_; // Not owned.
    ListControl listView1_;
    int eventRowCounter_ = 0;
    EventUndoLog listUndoLog_;
    EventUndoLog treeListUndoLog_;
    QString currentRowKey_;
    int currentColumn_ = 0;
};

} // namespace vessa
