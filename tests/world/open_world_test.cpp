#include "world/open_world.h"

#include "events/event_menus.h"
#include "world/python_generator.h"
#include "world/world_script_file.h"

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
    events.MakeEvent();
    events.MakeEvent();
    ASSERT_TRUE(script.RenameAnimation(action1, QStringLiteral("Walk")));
    EXPECT_EQ(w.view.status, (QStringList{QStringLiteral("named "), QStringLiteral("modified")}));
    EXPECT_EQ(action1->Key(), QStringLiteral("walk"));
    EXPECT_EQ(events.ListView1().Row(2)->SubItems(EventList::DoAnimation), QStringLiteral("Walk"));

    // The event tab's undo takes the last row away; the script's undo then puts the old
    // name back in the rows still there, and passes by the one that went.
    events.LVUndoFromLog(events.ListUndoLog());
    script.UndoFromLog();
    EXPECT_EQ(action1->Text(), QStringLiteral("Action1 = DoInOrder"));
    ASSERT_EQ(events.ListView1().Count(), 2);
    for (int position : {0, 1})
        EXPECT_EQ(events.ListView1().Row(position)->SubItems(EventList::DoAnimation),
                  QStringLiteral("Action1"));

    // A name another animation holds, case ignored, is refused and changes nothing.
    script.AddNewAnimation();
    EXPECT_FALSE(script.RenameAnimation(action1, QStringLiteral("ACTION2")));
    EXPECT_EQ(action1->Text(), QStringLiteral("Action1 = DoInOrder"));
    EXPECT_TRUE(events.TreeListUndoLog().IsEmpty());
}

// A row changed from the event menus reaches the world's Python and its tree script
// file; an animation renamed takes its rows along, and undo and redo of the rename bring
// both back and forth together.
TEST(EventRows, MenuChangesReachThePythonAndTheFileAndTheScriptsUndoAndRedoCarryThem) {
    World w;
    ScriptModel& script = w.world.script();
    EventList& events = w.world.events();
    EventMenus menus(events);
    const auto python = [&] {
        return MakePythonScript(script.TreeView1(), events.ListView1(), QString()).text;
    };
    const auto file = [&] {
        return MakeTVscript(script.TreeView1(), events.ListView1(), QString()).text;
    };
    ListRow* row = events.MakeEvent();
    events.ListView1_MouseUp(Qt::LeftButton, row, EventList::When);
    menus.mnuKeyDown_Click(QStringLiteral("KeyDown"), QStringLiteral("Others..."));
    menus.keyPressed(QStringLiteral("KeyDown"), QStringLiteral("q"));
    EXPECT_TRUE(python().contains(QStringLiteral("ev.key == \"Q\"")));
    EXPECT_TRUE(file().contains(QStringLiteral("KeyDown (\"Q\" key)")));

    script.RenameAnimation(script.TreeView1().FirstRoot(), QStringLiteral("Hop"));
    EXPECT_TRUE(python().contains(QStringLiteral("TVDef_KeyDown_Hop")));
    script.UndoFromLog();
    EXPECT_EQ(row->SubItems(EventList::DoAnimation), QStringLiteral("Action1"));
    EXPECT_FALSE(file().contains(QStringLiteral("Hop")));
    script.RedoFromLog();
    EXPECT_EQ(row->SubItems(EventList::DoAnimation), QStringLiteral("Hop"));
    EXPECT_EQ(events.ListView1().Row(0)->SubItems(EventList::DoAnimation), QStringLiteral("Hop"));
    EXPECT_TRUE(python().contains(QStringLiteral("TVDef_KeyDown_Hop")));
    EXPECT_TRUE(file().contains(QStringLiteral("Hop")));
}
