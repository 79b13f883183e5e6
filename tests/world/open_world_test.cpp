#include "world/open_world.h"

#include "support/recording_view.h"
#include "support/scripted_engine.h"

#include <gtest/gtest.h>

using namespace vessa;
using namespace vessa::testing;

namespace {

struct World : ScriptedProgram {
    OpenWorld world{state, engine, reporter};
    RecordingView view;

    World() {
        state.HomeDir = QStringLiteral("/home/v/");
        scripted->answers[QStringLiteral("getisdirty")] = 1;
        world.status().addObserver(view);
    }
    ~World() { world.status().removeObserver(view); }
};

} // namespace

TEST(WorldStatus, OnlyTheFirstChangeAfterANameIsNewsAndTheDefaultWorldHasNoName) {
    World w;
    w.world.SetSaveName(QStringLiteral("/home/v/Worlds/DEFAULT"));
    w.world.script().AddNewAnimation();
    w.world.script().AddNewAnimation();
    w.world.SetSaveName(QStringLiteral("/home/v/Worlds/Garden"));
    EXPECT_EQ(w.view.status, (QStringList{QStringLiteral("named "), QStringLiteral("modified"),
                                          QStringLiteral("named /home/v/Worlds/Garden")}));
    EXPECT_EQ(w.world.status().worldSaveFile(), QStringLiteral("/home/v/Worlds/Garden"));
    // Naming the world makes the engine's scene clean each time.
    EXPECT_EQ(w.log.calls.count(QStringLiteral("SetIsDirty")), 2);
}

TEST(WorldStatus, DirtyByTheScriptAnywhereByTheSceneOnlyOnTheOpeningTabNeverForATutorial) {
    World w;
    EXPECT_TRUE(w.world.IsWorldDirty()); // the engine's scene changed on tab 0
    w.world.status().setSceneScriptTab(1);
    w.log.calls.clear();
    EXPECT_FALSE(w.world.IsWorldDirty());
    EXPECT_TRUE(w.log.calls.isEmpty()); // running changes the scene: the engine isn't asked
    w.world.script().AddNewAnimation();
    EXPECT_TRUE(w.world.IsWorldDirty());
    for (const char* folder : {"/home/v/worlds/Tutorial/One", "/home/v/Worlds/examples/Two"}) {
        w.world.status().setWorldSaveFile(QString::fromLatin1(folder));
        EXPECT_FALSE(w.world.IsWorldDirty()) << folder;
    }
}

TEST(Requests, ARightClickInTheCameraViewReachesWhoeverRegisteredForTheObjectMenu) {
    World w;
    const QVariant rightClick = QVariantList{QVariant(
        QVariantList{QStringLiteral("rightmousemenu"), QString(), QStringLiteral("Bunny")})};
    // Before a window shows the world, a record that needs one fails like a bad record,
    // and one that changes only the world's trees does not.
    const QVariant output =
        QVariantList{QVariant(QVariantList{QStringLiteral("output"), QStringLiteral("hi")})};
    EXPECT_THROW(w.world.HandleDifferences(output), RunTimeError);
    EXPECT_NO_THROW(w.world.HandleDifferences(QVariantList{QVariant(QVariantList{
        QStringLiteral("objectconstruct"), QStringLiteral("9"), QStringLiteral("sound")})}));
    w.world.attachView(&w.view);
    // Nobody registered: the click is dropped.
    EXPECT_NO_THROW(w.world.HandleDifferences(rightClick));
    QStringList menus;
    w.world.script().requests().registerHandler(
        ScriptRequest::Kind::ObjectMenu,
        [&](const ScriptRequest& request) { menus << request.Value; });
    w.world.HandleDifferences(rightClick);
    w.world.showObjectMenu(QStringLiteral("Sun")); // as from the object tree
    EXPECT_EQ(menus, (QStringList{QStringLiteral("Bunny"), QStringLiteral("Sun")}));
}

TEST(EventRows, AnAnimationsRenameTakesItsRowsAlongAndTheScriptsUndoBringsThemBack) {
    World w;
    w.world.SetSaveName(QString());
    ScriptModel& script = w.world.script();
    EventList& events = w.world.events();
    TreeNode* action1 = script.TreeView1().FirstRoot();
    ListRow* made = events.MakeEvent();
    events.MakeEvent();
    // Both rows and the rename are one change of the world, told once.
    ASSERT_TRUE(script.RenameAnimation(action1, QStringLiteral("Walk")));
    EXPECT_EQ(w.view.status, (QStringList{QStringLiteral("named "), QStringLiteral("modified")}));
    EXPECT_EQ(action1->Text(), QStringLiteral("Walk = DoInOrder"));
    EXPECT_EQ(action1->Key(), QStringLiteral("walk"));
    EXPECT_EQ(script.AnimationNames().Text(), QStringLiteral("Walk"));
    for (int position = 0; position < 3; ++position)
        EXPECT_EQ(events.ListView1().Row(position)->SubItems(EventList::DoAnimation),
                  QStringLiteral("Walk"));

    // The event tab's undo takes the second row away; the script's undo then puts the
    // name back in the rows that are still there, and the tree's text with it.
    events.LVUndoFromLog(events.ListUndoLog());
    script.UndoFromLog();
    EXPECT_EQ(action1->Text(), QStringLiteral("Action1 = DoInOrder"));
    EXPECT_EQ(events.ListView1().Count(), 2);
    EXPECT_EQ(made->SubItems(EventList::DoAnimation), QStringLiteral("Action1"));
    EXPECT_EQ(events.ListView1().Row(0)->SubItems(EventList::DoAnimation),
              QStringLiteral("Action1"));
    EXPECT_TRUE(events.TreeListUndoLog().IsEmpty());

    // A name another animation holds, case ignored, is refused and changes nothing.
    script.AddNewAnimation();
    EXPECT_FALSE(script.RenameAnimation(action1, QStringLiteral("ACTION2")));
    EXPECT_EQ(action1->Text(), QStringLiteral("Action1 = DoInOrder"));
    EXPECT_EQ(made->SubItems(EventList::DoAnimation), QStringLiteral("Action1"));
}

TEST(EventRows, TheUndoOfAnAnimationsRemovalBringsItsRowsBackAtTheEnd) {
    // What Cut and Delete of an animation do: its rows go first, counted in the tree's
    // record, then the animation.
    World w;
    ScriptModel& script = w.world.script();
    EventList& events = w.world.events();
    TreeNode* hop = script.AddNewAnimation();
    events.MakeEvent(); // Key1, does Action2
    events.addRow(QStringLiteral("KeyDown (Space Bar)"), QStringLiteral("Bunny"),
                  QStringLiteral("Action1")); // Key2
    ASSERT_TRUE(events.FindInListView(QStringLiteral("action2")));
    const int rows = events.RemoveFromListView(QStringLiteral("Action2"));
    script.UndoLog(UndoOperation::Removed, hop, nullptr, rows);
    script.TreeView1().Remove(hop->Index());
    EXPECT_EQ(events.ListView1().Count(), 2);

    script.UndoFromLog();
    ASSERT_EQ(script.TreeView1().RootCount(), 2);
    ASSERT_EQ(events.ListView1().Count(), 3);
    EXPECT_EQ(events.ListView1().Row(2)->Key(), QStringLiteral("Key1"));
    EXPECT_EQ(events.ListView1().Row(2)->SubItems(EventList::DoAnimation),
              QStringLiteral("Action2"));
}
