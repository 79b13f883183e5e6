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

    // A change or a deletion as the event menus and the Edit menu make them.
    void Log(ListRow* row, EventUndoOperation operation) {
        events.LVUndoLog(events.ListUndoLog(), operation, row);
    }
    void Undo() { events.LVUndoFromLog(events.ListUndoLog()); }
};

} // namespace

TEST_F(Events, EachWorldStartsWithItsStartRowKeysFromNoughtAndNothingToUndo) {
    script.AddNewAnimation();
    events.MakeEvent();
    events.ReplaceInListView("Action2", "Hop");
    script.TreeView1().SetText(script.TreeView1().FirstRoot(), "Walk = DoTogether");
    events.InitEventList();
    EXPECT_EQ(Rows(), QStringList{"Key0|World Start|- - -|Walk"});
    EXPECT_TRUE(events.ListUndoLog().IsEmpty());
    EXPECT_TRUE(events.TreeListUndoLog().IsEmpty());

    // Without an animation the start row does nothing, and no other row is made.
    script.TreeView1().Clear();
    events.InitEventList();
    EXPECT_EQ(events.MakeEvent(), nullptr);
    EXPECT_EQ(events.addDroppedObject("Bunny"), nullptr);
    EXPECT_EQ(Rows(), QStringList{"Key0|World Start|- - -|"});
}

TEST_F(Events, MadeRowsTakeTheNewestAnimationAndKeysNeverComeTwice) {
    script.AddNewAnimation();
    events.MakeEvent();
    events.MakeEvent();
    events.addDroppedObject("Bunny.Head");
    EXPECT_EQ(Rows(), (QStringList{"Key0|World Start|- - -|Action1",
                                   "Key1|LeftMouseButtonDown|AnyWhere|Action2",
                                   "Key2|LeftMouseButtonDown|AnyWhere|Action2",
                                   "key3|LeftMouseButtonDown|Bunny.Head|Action2"}));
    EXPECT_EQ(list.SelectedItem(), list.Row(3));
    // The dropped row is not recorded: undo takes the row made before it.
    Undo();
    EXPECT_EQ(Rows().mid(2), QStringList{"key3|LeftMouseButtonDown|Bunny.Head|Action2"});
    EXPECT_EQ(events.MakeEvent()->Key(), "Key4");
}

TEST_F(Events, UndoPutsColumnsBackWholeAndDeletedRowsBackLastUnderTheirKeys) {
    ListRow* row = events.MakeEvent();
    Log(row, EventUndoOperation::Changed);
    list.SetSubItem(row, EventList::When, "KeyDown (\",\" key)");
    list.SetSubItem(row, EventList::HappensTo, "Odd;Name");
    Log(row, EventUndoOperation::Changed);
    list.SetSubItem(row, EventList::When, "LeftMouseButtonUp");
    Log(list.Row(0), EventUndoOperation::Removed);
    list.Remove(0);
    Undo();
    Undo();
    EXPECT_EQ(Rows(), (QStringList{"Key1|KeyDown (\",\" key)|Odd;Name|Action1",
                                   "Key0|World Start|- - -|Action1"}));
    Undo();
    EXPECT_EQ(Rows().first(), "Key1|LeftMouseButtonDown|AnyWhere|Action1");
    Undo();
    Undo(); // an empty log does nothing
    EXPECT_EQ(Rows(), QStringList{"Key0|World Start|- - -|Action1"});
}

TEST_F(Events, RenamesReachWholeNamesOnlyAndAnimationsReachTheirRowsWithARecordEach) {
    events.addRow("LeftMouseButtonDown", "Bunny.Head", "action1");
    events.addRow("KeyDown (Space Bar)", "Bunnyhop", "Action10");
    events.ListviewReplaceString("Bunny", "Rabbit");
    EXPECT_TRUE(events.TreeListUndoLog().IsEmpty());
    EXPECT_EQ(host.modifications, 0);

    EXPECT_EQ(events.ReplaceInListView("Action1", "Walk"), 2);
    EXPECT_EQ(Rows(), (QStringList{"Key0|World Start|- - -|Walk",
                                   "Key1|LeftMouseButtonDown|Rabbit.Head|Walk",
                                   "Key2|KeyDown (Space Bar)|Bunnyhop|Action10"}));
    EXPECT_TRUE(events.FindInListView("WALK"));
    // Neighbouring rows of one animation all go, however the list shifts under the walk.
    EXPECT_EQ(events.RemoveFromListView("walk"), 2);
    EXPECT_FALSE(events.FindInListView("Walk"));
    EXPECT_TRUE(events.ListUndoLog().IsEmpty());
    for (int record = 0; record < 4; ++record)
        events.LVUndoFromLog(events.TreeListUndoLog());
    EXPECT_EQ(Rows(), (QStringList{"Key2|KeyDown (Space Bar)|Bunnyhop|Action10",
                                   "Key0|World Start|- - -|Action1",
                                   "Key1|LeftMouseButtonDown|Rabbit.Head|action1"}));
}

TEST_F(Events, RowsCutCopiedAndPastedTakeNewKeysAndEachIsOneUndo) {
    ListRow* start = list.Row(0);
    events.rowClipboard().Copy(*start);
    ListRow* first = events.PasteRow();
    ListRow* second = events.PasteRow();
    EXPECT_NE(first->Key(), second->Key());
    EXPECT_EQ(list.SelectedItem(), second);
    EXPECT_EQ(Rows(),
              (QStringList{"Key0|World Start|- - -|Action1", "Key1|World Start|- - -|Action1",
                           "Key2|World Start|- - -|Action1"}));
    events.CutRow(first);
    EXPECT_EQ(list.Count(), 2);
    Undo(); // the cut
    Undo(); // the second paste
    EXPECT_EQ(Rows(),
              (QStringList{"Key0|World Start|- - -|Action1", "Key1|World Start|- - -|Action1"}));

    // A new world forgets the row copied: a paste then makes an empty row.
    events.InitEventList();
    EXPECT_EQ(events.PasteRow()->SubItems(EventList::DoAnimation), "");
}
