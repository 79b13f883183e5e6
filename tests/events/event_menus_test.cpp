#include "events/event_list.h"
#include "events/event_menus.h"

#include "script/script_model.h"
#include "script/script_test_support.h"

#include <gtest/gtest.h>

using namespace vessa;
using vessa::testing::FakeScriptHost;

namespace {

struct Menus : ::testing::Test {
    FakeScriptHost host;
    ScriptModel script{host};
    EventList events{script};
    EventMenus menus{events};
    ListControl& list = events.ListView1();

    // One animation, "Hop", and the start row that does it.
    void SetUp() override {
        script.RenameAnimation(script.TreeView1().FirstRoot(), "Hop");
        events.InitEventList();
    }

    // The row as "When|Happens To|Do Animation".
    QString Columns(int position) const {
        const ListRow* row = list.Row(position);
        return row->SubItems(1) + u'|' + row->SubItems(2) + u'|' + row->SubItems(3);
    }
    // A left click on row position, column: how a menu learns its row and column.
    void ClickOn(int position, int column) {
        events.ListView1_MouseUp(Qt::LeftButton, list.Row(position), column);
    }
    // Captions of a menu's rows, "-" for separators.
    static QStringList Captions(const std::vector<MenuRow>& rows) {
        QStringList captions;
        for (const MenuRow& row : rows)
            captions << row.Caption;
        return captions;
    }
    void Undo() { events.LVUndoFromLog(events.ListUndoLog()); }
    void Redo() { events.LVRedoFromLog(events.ListUndoLog()); }
};

ScriptRequest Asking(ScriptRequest::Kind kind) {
    ScriptRequest request;
    request.What = kind;
    return request;
}

} // namespace

TEST_F(Menus, TheConditionsOfferTheHappeningsWithTheKeysBehindKeyDownAndKeyUp) {
    ClickOn(0, EventList::When);
    const std::vector<MenuRow> rows =
        menus.menuRows(Asking(ScriptRequest::Kind::EventConditionMenu));
    EXPECT_EQ(Captions(rows),
              (QStringList{"LeftMouseButtonDown", "LeftMouseButtonUp", "RightMouseButtonDown",
                           "RightMouseButtonUp", "KeyDown", "KeyUp", "World Start"}));
    EXPECT_TRUE(rows[6].Default); // what the row says now
    for (size_t keys : {4u, 5u})
        EXPECT_EQ(Captions(rows[keys].Rows),
                  (QStringList{"The 'Enter' Key", "Space Bar", "Left Arrow Key", "Right Arrow Key",
                               "Up Arrow Key", "Down Arrow Key", "-", "Others..."}));
    // The list's own menu makes a row, and only while there is an animation to do.
    std::vector<MenuRow> own = menus.menuRows(Asking(ScriptRequest::Kind::EventListMenu));
    ASSERT_EQ(Captions(own), QStringList{"Make Event"});
    own[0].Chosen();
    EXPECT_EQ(Columns(1), "LeftMouseButtonDown|AnyWhere|Hop");
    script.TreeView1().Clear();
    EXPECT_FALSE(menus.menuRows(Asking(ScriptRequest::Kind::EventListMenu))[0].Enabled);
}

TEST_F(Menus, AStartRowLeftBehindHappensAnywhereAndANewOneToNothing) {
    ClickOn(0, EventList::When);
    menus.mnuConditions_Click("LeftMouseButtonUp");
    EXPECT_EQ(Columns(0), "LeftMouseButtonUp|AnyWhere|Hop");
    // The same condition again, and the entries that only open their keys, record nothing.
    menus.mnuConditions_Click("LeftMouseButtonUp");
    menus.mnuConditions_Click("KeyDown");
    menus.mnuConditions_Click("World Start");
    EXPECT_EQ(Columns(0), "World Start|- - -|Hop");
    Undo();
    EXPECT_EQ(Columns(0), "LeftMouseButtonUp|AnyWhere|Hop");
    Undo();
    EXPECT_EQ(Columns(0), "World Start|- - -|Hop");
    EXPECT_TRUE(events.ListUndoLog().IsEmpty());
}

TEST_F(Menus, KeysAreNamedOrPressedAndTheSameKeyAgainIsRecordedAgain) {
    events.MakeEvent();
    ClickOn(1, EventList::When);
    EXPECT_EQ(menus.mnuKeyDown_Click("KeyDown", "Space Bar").What, ScriptRequest::Kind::None);
    EXPECT_EQ(Columns(1), "KeyDown (Space Bar)|AnyWhere|Hop");
    const ScriptRequest question = menus.mnuKeyDown_Click("KeyUp", "Others...");
    EXPECT_EQ(question.What, ScriptRequest::Kind::EventKeyCapture);
    EXPECT_EQ(question.Title, "KeyUp");
    EXPECT_EQ(question.Prompt, "Hit the Key you would like the Animation to Respond to: ");
    EXPECT_EQ(Columns(1), "KeyDown (Space Bar)|AnyWhere|Hop"); // nothing until pressed
    menus.keyPressed("KeyUp", "abc");
    EXPECT_EQ(list.Row(1)->SubItems(1), "KeyUp (\"A\" key)");
    menus.keyPressed("KeyUp", "a");
    menus.keyPressed("KeyDown", ""); // the question cancelled
    EXPECT_EQ(list.Row(1)->SubItems(1), "KeyDown (\"\" key)");
    // Named keys read by their names.
    EXPECT_EQ(SpokenCondition("KeyUp (The 'Enter' Key)"), "Key Enter up");
    EXPECT_EQ(SpokenCondition("KeyDown (Left Arrow Key)"), "Key Left Arrow down");
    EXPECT_EQ(SpokenCondition("KeyDown (\"\" key)"), "Key (none) down");
    // Made, named, pressed twice, cancelled: five records.
    for (int undo = 0; undo < 4; ++undo)
        Undo();
    EXPECT_EQ(Columns(1), "LeftMouseButtonDown|AnyWhere|Hop");
}

TEST_F(Menus, RedoDoesAgainWhatWasUndoneUntilANewChange) {
    events.MakeEvent();
    ClickOn(1, EventList::When);
    menus.mnuConditions_Click("RightMouseButtonUp");
    Undo();
    Undo();
    EXPECT_EQ(list.Count(), 1);
    Redo();
    EXPECT_EQ(Columns(1), "LeftMouseButtonDown|AnyWhere|Hop");
    EXPECT_EQ(list.Row(1)->Key(), "Key1");
    Redo();
    EXPECT_EQ(Columns(1), "RightMouseButtonUp|AnyWhere|Hop");
    EXPECT_FALSE(events.ListUndoLog().CanRedo());
    Undo();
    ASSERT_TRUE(events.ListUndoLog().CanRedo());
    ClickOn(1, EventList::When);
    menus.mnuConditions_Click("World Start"); // a new change: the redo is gone
    EXPECT_FALSE(events.ListUndoLog().CanRedo());
    Redo();
    EXPECT_EQ(Columns(1), "World Start|- - -|Hop");
}

TEST_F(Menus, AnUndoWhoseRowIsGoneSaysSoAndTheLogGoesOn) {
    QStringList told;
    events.setNotice([&](const QString& message) { told << message; });
    events.MakeEvent();
    ClickOn(1, EventList::DoAnimation);
    script.AddNewAnimation();
    menus.mnuResponses_Click("Action2");
    list.Remove(1); // gone by a way no log knows of
    Undo();
    ASSERT_EQ(told.size(), 1);
    EXPECT_TRUE(told[0].contains("no longer in the list"));
    Undo(); // the making of the row: gone too
    EXPECT_EQ(told.size(), 2);
    EXPECT_TRUE(events.ListUndoLog().IsEmpty());
    EXPECT_EQ(list.Count(), 1);
}
