#include "events/event_list.h"

#include "script/script_model.h"
#include "script/script_test_support.h"

#include <gtest/gtest.h>

using namespace vessa;
using vessa::testing::FakeScriptHost;

namespace {

struct Events : ::testing::Test {
    FakeScriptHost host;
    ScriptModel script{host};
    EventList events{script};
    ListControl& list = events.ListView1();

    // Every row as "key|When|Happens To|Do Animation", top to bottom.
    QStringList Rows() const {
        QStringList rows;
        for (int position = 0; position < list.Count(); ++position) {
            const ListRow* row = list.Row(position);
            rows << QStringList{row->Key(), row->SubItems(1), row->SubItems(2), row->SubItems(3)}
                        .join(u'|');
        }
        return rows;
    }

    // A change of one column as the event menus make it: recorded, then written.
    void Change(ListRow* row, int column, const QString& text) {
        events.LVUndoLog(events.ListUndoLog(), EventUndoOperation::Changed, row);
        list.SetSubItem(row, column, text);
    }

    // A row deleted as the Edit menu's Delete does it: recorded, then removed.
    void Delete(ListRow* row) {
        events.LVUndoLog(events.ListUndoLog(), EventUndoOperation::Removed, row);
        list.Remove(list.PositionOf(row));
    }

    void Undo() { events.LVUndoFromLog(events.ListUndoLog()); }
};

} // namespace

TEST_F(Events, ANewWorldHasTheStartRowForTheFirstAnimationAndNothingToUndo) {
    EXPECT_EQ(Rows(), QStringList{"Key0|World Start|- - -|Action1"});
    EXPECT_EQ(list.ColumnHeaders(), (QStringList{"", "When", "Happens To", "Do Animation"}));
    EXPECT_EQ(events.EventRowCounter(), 1);
    EXPECT_EQ(host.modifications, 0);

    // The next world starts over: its rows, keys and both logs are its own.
    script.AddNewAnimation();
    events.MakeEvent();
    events.ReplaceInListView("Action2", "Hop");
    script.TreeView1().SetText(script.TreeView1().FirstRoot(), "Walk = DoTogether");
    events.InitEventList();
    EXPECT_EQ(Rows(), QStringList{"Key0|World Start|- - -|Walk"});
    EXPECT_TRUE(events.ListUndoLog().IsEmpty());
    EXPECT_TRUE(events.TreeListUndoLog().IsEmpty());

    // Without an animation the start row does nothing, and MakeEvent makes no row.
    script.TreeView1().Clear();
    events.InitEventList();
    EXPECT_EQ(Rows(), QStringList{"Key0|World Start|- - -|"});
    EXPECT_EQ(events.MakeEvent(), nullptr);
    EXPECT_EQ(events.addDroppedObject("Bunny"), nullptr);
    EXPECT_EQ(events.EventRowCounter(), 1);
}

TEST_F(Events, EachMadeRowGetsTheNextKeyTheNewestAnimationAndIsRecorded) {
    script.AddNewAnimation();
    ListRow* first = events.MakeEvent();
    ListRow* second = events.MakeEvent();
    EXPECT_EQ(Rows(), (QStringList{"Key0|World Start|- - -|Action1",
                                   "Key1|LeftMouseButtonDown|AnyWhere|Action2",
                                   "Key2|LeftMouseButtonDown|AnyWhere|Action2"}));
    EXPECT_NE(first, second);
    EXPECT_EQ(list.SelectedItem(), second);
    EXPECT_GT(host.modifications, 0);

    // Keys are never used twice: the undone row's key stays spent.
    Undo();
    EXPECT_EQ(list.Count(), 2);
    EXPECT_EQ(events.MakeEvent()->Key(), "Key3");
}

TEST_F(Events, ADroppedObjectMakesARowThatUndoPassesBy) {
    events.MakeEvent();
    ListRow* dropped = events.addDroppedObject("Bunny.Head");
    EXPECT_EQ(Rows().last(), "key2|LeftMouseButtonDown|Bunny.Head|Action1");
    EXPECT_EQ(list.SelectedItem(), dropped);
    // The undo after the drop takes the row made before it, not the dropped one.
    Undo();
    EXPECT_EQ(Rows(), (QStringList{"Key0|World Start|- - -|Action1",
                                   "key2|LeftMouseButtonDown|Bunny.Head|Action1"}));
}

TEST_F(Events, UndoTakesBackChangesNewestFirstAndThenTheRow) {
    ListRow* row = events.MakeEvent();
    Change(row, EventList::When, "KeyDown (Space Bar)");
    Change(row, EventList::HappensTo, "Bunny");
    Undo();
    EXPECT_EQ(Rows().last(), "Key1|KeyDown (Space Bar)|AnyWhere|Action1");
    Undo();
    EXPECT_EQ(Rows().last(), "Key1|LeftMouseButtonDown|AnyWhere|Action1");
    Undo();
    EXPECT_EQ(Rows(), QStringList{"Key0|World Start|- - -|Action1"});
    // An empty log does nothing.
    EXPECT_TRUE(events.ListUndoLog().IsEmpty());
    Undo();
    EXPECT_EQ(list.Count(), 1);
}

TEST_F(Events, ADeletedRowComesBackLastUnderItsKeyWithEveryCharacterOfItsColumns) {
    ListRow* comma = events.MakeEvent();
    Change(comma, EventList::When, "KeyDown (\",\" key)");
    Change(comma, EventList::HappensTo, "Odd;Name");
    events.MakeEvent();
    Delete(list.Row(0));
    Delete(comma);
    Undo();
    Undo();
    EXPECT_EQ(Rows(), (QStringList{"Key2|LeftMouseButtonDown|AnyWhere|Action1",
                                   "Key1|KeyDown (\",\" key)|Odd;Name|Action1",
                                   "Key0|World Start|- - -|Action1"}));
    EXPECT_EQ(events.MakeEvent()->Key(), "Key3");
}

TEST_F(Events, AnObjectsNewNameReplacesOnlyWholeNamesOfItAndIsNotRecorded) {
    ListRow* head = events.addRow("LeftMouseButtonDown", "Bunny.Head", "Action1");
    ListRow* hop = events.addRow("KeyDown (Space Bar)", "Bunnyhop", "bunny");
    ListRow* big = events.addRow("LeftMouseButtonUp", "BigBunny", "Action1");
    events.ListviewReplaceString("Bunny", "Rabbit");
    EXPECT_EQ(head->SubItems(EventList::HappensTo), "Rabbit.Head");
    EXPECT_EQ(hop->SubItems(EventList::HappensTo), "Bunnyhop");
    EXPECT_EQ(hop->SubItems(EventList::DoAnimation), "Rabbit"); // case ignored
    EXPECT_EQ(big->SubItems(EventList::HappensTo), "BigBunny");
    EXPECT_EQ(hop->SubItems(EventList::When), "KeyDown (Space Bar)");
    EXPECT_TRUE(events.ListUndoLog().IsEmpty());
    EXPECT_TRUE(events.TreeListUndoLog().IsEmpty());
    EXPECT_EQ(host.modifications, 0);
}

TEST_F(Events, AnAnimationsRenameAndRemovalReachExactlyTheRowsThatDoIt) {
    events.addRow("LeftMouseButtonDown", "Bunny", "action1"); // Key1
    events.addRow("LeftMouseButtonDown", "Hop", "Action10");  // Key2
    events.addRow("KeyUp (Space Bar)", "Sun", "ACTION1");     // Key3

    EXPECT_EQ(events.ReplaceInListView("Action1", "Walk"), 3);
    EXPECT_EQ(
        Rows(),
        (QStringList{"Key0|World Start|- - -|Walk", "Key1|LeftMouseButtonDown|Bunny|Walk",
                     "Key2|LeftMouseButtonDown|Hop|Action10", "Key3|KeyUp (Space Bar)|Sun|Walk"}));
    EXPECT_TRUE(events.FindInListView("WALK"));
    EXPECT_FALSE(events.FindInListView("Action1"));

    // Neighbouring rows of one animation all go, however the list shifts under the walk.
    EXPECT_EQ(events.RemoveFromListView("walk"), 3);
    EXPECT_EQ(Rows(), QStringList{"Key2|LeftMouseButtonDown|Hop|Action10"});
    EXPECT_EQ(events.RemoveFromListView("Walk"), 0);
    EXPECT_TRUE(events.ListUndoLog().IsEmpty());

    // Both steps went to the script's log of rows; replayed, they put everything back,
    // the removed rows at the end under their keys.
    for (int record = 0; record < 6; ++record)
        events.LVUndoFromLog(events.TreeListUndoLog());
    EXPECT_TRUE(events.TreeListUndoLog().IsEmpty());
    EXPECT_EQ(Rows(), (QStringList{"Key2|LeftMouseButtonDown|Hop|Action10",
                                   "Key0|World Start|- - -|Action1",
                                   "Key1|LeftMouseButtonDown|Bunny|action1",
                                   "Key3|KeyUp (Space Bar)|Sun|ACTION1"}));
}

TEST_F(Events, ARecordWhoseRowHasGoneIsDroppedWithoutHarm) {
    ListRow* row = events.MakeEvent();
    Change(row, EventList::When, "LeftMouseButtonUp");
    events.RemoveFromListView("Action1");
    Undo(); // the change of a row that is gone
    Undo(); // the addition of a row that is gone
    EXPECT_TRUE(events.ListUndoLog().IsEmpty());
    EXPECT_EQ(list.Count(), 0);
}

TEST_F(Events, AClickAsksForTheEditorOfItsColumn) {
    using Kind = ScriptRequest::Kind;
    script.AddNewAnimation();
    ListRow* start = list.Row(0);
    ListRow* row = events.addRow("KeyDown (\"A\" key)", "Camera", "Action2");

    ScriptRequest request = events.ListView1_MouseUp(Qt::LeftButton, row, EventList::When);
    EXPECT_EQ(request.What, Kind::EventConditionMenu);
    EXPECT_EQ(request.Value, "KeyDown (\"A\" key)");
    EXPECT_EQ(list.SelectedItem(), row);
    EXPECT_EQ(events.CurrentRow(), row);
    EXPECT_EQ(events.CurrentColumn(), EventList::When);

    request = events.ListView1_MouseUp(Qt::LeftButton, row, EventList::HappensTo);
    EXPECT_EQ(request.What, Kind::EventObjectPicker);
    EXPECT_EQ(request.Value, "Camera");

    request = events.ListView1_MouseUp(Qt::LeftButton, row, EventList::DoAnimation);
    EXPECT_EQ(request.What, Kind::EventResponseMenu);
    ASSERT_EQ(request.Rows.size(), 2u);
    EXPECT_EQ(request.Rows[0].Caption, "Action1");
    EXPECT_EQ(request.Rows[1].Caption, "Action2");
    EXPECT_EQ(events.CurrentColumn(), EventList::DoAnimation);

    // Nothing happens to a start row, so its column asks for nothing; the click still
    // selects it.
    request = events.ListView1_MouseUp(Qt::LeftButton, start, EventList::HappensTo);
    EXPECT_EQ(request.What, Kind::None);
    EXPECT_EQ(list.SelectedItem(), start);

    // The right button, blank space and the space right of the columns ask for nothing.
    EXPECT_EQ(events.ListView1_MouseUp(Qt::RightButton, row, EventList::When).What, Kind::None);
    EXPECT_EQ(events.ListView1_MouseUp(Qt::LeftButton, nullptr, EventList::When).What, Kind::None);
    EXPECT_EQ(events.CurrentRow(), nullptr);
    EXPECT_EQ(events.ListView1_MouseUp(Qt::LeftButton, row, -1).What, Kind::None);

    // With no animation at all the menu has the one entry of an empty list.
    script.AnimationNames().SetText(QString());
    request = events.ListView1_MouseUp(Qt::LeftButton, row, EventList::DoAnimation);
    ASSERT_EQ(request.Rows.size(), 1u);
    EXPECT_EQ(request.Rows[0].Caption, "");
}
