#include "world/open_world.h"

#include "support/recording_view.h"
#include "support/scripted_engine.h"

#include <gtest/gtest.h>
#include <random>

using namespace vessa;
using namespace vessa::testing;

namespace {

QVariant batch(std::initializer_list<QVariantList> records) {
    QVariantList list;
    for (const QVariantList& r : records)
        list.append(QVariant(r));
    return list;
}

// The open world over a scripted engine, shown by a view that remembers, with a
// follower of renames of its own after the script's and the event list's.
struct Harness : ScriptedProgram {
    RecordingView view;
    OpenWorld world{state, engine, reporter};
    SceneTrees& trees = world.trees();
    TreeControl& script = world.script().TreeView1();
    QStringList renames;

    Harness() {
        world.attachView(&view);
        world.renameFollowers().add([this](const QString& oldName, const QString& newName) {
            renames << oldName + QStringLiteral("->") + newName;
        });
    }

    DifferenceResult handle(const QVariant& records) { return world.HandleDifferences(records); }
};

} // namespace

TEST(HandleDifferences, OutputAndErrorsAppendInTheirColoursWithoutLineEnds) {
    Harness h;
    const DifferenceResult result =
        h.handle(batch({{QStringLiteral("output"), QStringLiteral("hello")},
                        {QStringLiteral("ERROR"), QStringLiteral("oops\n")}}));
    EXPECT_EQ(h.view.output, (QStringList{QStringLiteral("hello"), QStringLiteral("oops\n")}));
    EXPECT_EQ(h.view.colors, (QList<QColor>{QColor(0, 0, 0), QColor(255, 0, 0)}));
    EXPECT_FALSE(result.objectTreeChanged);
    EXPECT_FALSE(result.undoAvailable.has_value());
}

TEST(HandleDifferences, UndoAndTrafficLightFollowTheirFlags) {
    Harness h;
    DifferenceResult result =
        h.handle(batch({{QStringLiteral("undoemptychange"), QVariant(), false},
                        {QStringLiteral("ActiveChanged"), QVariant(), true}}));
    EXPECT_EQ(result.undoAvailable, true);
    EXPECT_EQ(result.worldActive, true);
    result = h.handle(batch({{QStringLiteral("undoemptychange"), QVariant(), true},
                             {QStringLiteral("activechanged"), QVariant(), false}}));
    EXPECT_EQ(result.undoAvailable, false);
    EXPECT_EQ(h.view.undo, (QList<bool>{true, false}));
    EXPECT_EQ(h.view.active, (QList<bool>{true, false}));
}

TEST(HandleDifferences, UnknownTagPrintsOneLineAndTheBatchGoesOn) {
    Harness h;
    h.handle(batch({{QStringLiteral("somethingnew")},
                    {QStringLiteral("hidenavigator")},
                    {QStringLiteral("output"), QStringLiteral("after")}}));
    EXPECT_EQ(h.view.printed, QStringList{QStringLiteral(
                                  "MainForm:HandleDifferences got an unknown tag: somethingnew")});
    EXPECT_EQ(h.view.output, QStringList{QStringLiteral("after")});
}

TEST(HandleDifferences, AFailingRecordDropsTheRestAndClimbsWithItsReport) {
    Harness h;
    try {
        h.handle(batch({{QStringLiteral("output")}, // too short
                        {QStringLiteral("output"), QStringLiteral("lost")}}));
        FAIL() << "expected the failure to climb";
    } catch (const RunTimeError& e) {
        EXPECT_EQ(e.number(), RunTimeError::SubscriptOutOfRange);
        EXPECT_TRUE(e.description().startsWith(QStringLiteral("VB: HandleDifferences -Error\n")));
    }
    EXPECT_TRUE(h.view.output.isEmpty());
    EXPECT_THROW(h.handle(QStringLiteral("not a list")), RunTimeError);
    // An empty poll changes nothing.
    h.handle(QVariantList());
    EXPECT_TRUE(h.view.printed.isEmpty());
}

TEST(HandleDifferences, ErrorInUserCodeShowsTheDialogWithTheMappedLine) {
    Harness h;
    h.state.ErrorLineOffset = 4;
    h.view.onTop = true;
    h.handle(
        batch({{QStringLiteral("popuperrordialog"),
                QStringLiteral("NameError: name 'Bunyy' is not defined"), QStringLiteral("2")}}));
    ASSERT_EQ(h.view.errors.size(), 1);
    EXPECT_EQ(h.view.errors[0].typeCaption,
              QStringLiteral("NameError: name 'Bunyy' is not defined on line 6"));
    EXPECT_EQ(h.view.errors[0].heightTwips, 1845);
    // The camera window steps down while the dialog is up, and the error sound plays.
    EXPECT_EQ(h.view.onTopCalls, (QList<bool>{false, true}));
    ASSERT_EQ(h.log.calls, QStringList{QStringLiteral("ExecuteCode")});
    EXPECT_EQ(h.log.arguments[0][0].toString(), QStringLiteral("PlaySystemSound ('Error')"));
    EXPECT_TRUE(h.display.shown.isEmpty());
}

// -- The scene's trees --------------------------------------------------------

namespace {

QVariantList construct(const QString& id, const QString& kind) {
    return {QStringLiteral("objectconstruct"), id, kind};
}
QVariantList parentChange(const QString& id, const QString& parent) {
    return {QStringLiteral("objectparentchange"), id, QStringLiteral("1"), parent};
}
QVariantList nameChange(const QString& id, const QString& name) {
    return {QStringLiteral("objectnamechange"), id, QString(), name};
}

// The special ids, the scene and a bunny with a head, as the engine sends them.
QVariant bunnyWorld() {
    return batch({construct(QStringLiteral("1"), QStringLiteral("none")),
                  construct(QStringLiteral("2"), QStringLiteral("junkyard")),
                  construct(QStringLiteral("3"), QStringLiteral("scene")),
                  nameChange(QStringLiteral("3"), QStringLiteral("Scene")),
                  construct(QStringLiteral("4"), QStringLiteral("model")),
                  parentChange(QStringLiteral("4"), QStringLiteral("3")),
                  nameChange(QStringLiteral("4"), QStringLiteral("Bunny")),
                  construct(QStringLiteral("5"), QStringLiteral("model")),
                  parentChange(QStringLiteral("5"), QStringLiteral("4")),
                  nameChange(QStringLiteral("5"), QStringLiteral("Bunny.Head"))});
}

TreeNode* objectNode(Harness& h, const QString& id) {
    return h.trees.ObjectTree.NodeByKey(QStringLiteral("k") + id);
}

} // namespace

TEST(SceneRecords, ANewChildIsOneNodeLabelledRelativeToItsOwner) {
    Harness h;
    const DifferenceResult result = h.handle(bunnyWorld());
    TreeNode* scene = h.trees.ObjectTree.FirstRoot();
    ASSERT_TRUE(scene);
    EXPECT_EQ(scene->Text(), QStringLiteral("Scene"));
    EXPECT_TRUE(scene->Expanded());
    EXPECT_EQ(h.trees.ObjectTree.Count(), 3);
    TreeNode* head = objectNode(h, QStringLiteral("5"));
    EXPECT_EQ(head->Text(), QStringLiteral("Head"));
    EXPECT_EQ(head->Tag(), QStringLiteral("Bunny.Head"));
    EXPECT_EQ(head->Parent(), objectNode(h, QStringLiteral("4")));
    EXPECT_EQ(head->Image(), 8);
    // The event tab's copy follows: the scene, its two objects and "AnyWhere".
    EXPECT_TRUE(result.objectTreeChanged);
    EXPECT_EQ(h.trees.ObjectTree2.Count(), 4);
}

TEST(SceneRecords, WithoutAParentTheNodeStartsAsPlaceholderAtTheTop) {
    Harness h;
    h.handle(batch({construct(QStringLiteral("1"), QStringLiteral("none")),
                    construct(QStringLiteral("7"), QStringLiteral("light")),
                    parentChange(QStringLiteral("7"), QStringLiteral("1")),
                    nameChange(QStringLiteral("7"), QStringLiteral("Sun"))}));
    TreeNode* sun = objectNode(h, QStringLiteral("7"));
    ASSERT_TRUE(sun);
    EXPECT_EQ(sun->Text(), QStringLiteral("Sun"));
    EXPECT_EQ(sun->Image(), 6);
    EXPECT_FALSE(sun->Parent());
}

TEST(SceneRecords, ABatchMayEndAfterTheScenesConstructAndNameButAnUnknownKeyFails) {
    Harness h;
    h.handle(batch({construct(QStringLiteral("3"), QStringLiteral("scene")),
                    nameChange(QStringLiteral("3"), QStringLiteral("Scene"))}));
    ASSERT_TRUE(objectNode(h, QStringLiteral("3")));
    EXPECT_EQ(objectNode(h, QStringLiteral("3"))->Text(), QStringLiteral("Scene"));
    // A key the tree doesn't know is an error, with this routine's report.
    try {
        h.handle(batch({nameChange(QStringLiteral("99"), QStringLiteral("X")),
                        {QStringLiteral("output"), QStringLiteral("lost")}}));
        FAIL();
    } catch (const RunTimeError& e) {
        EXPECT_EQ(e.number(), RunTimeError::ElementNotFound);
        EXPECT_TRUE(e.description().startsWith(QStringLiteral("VB: HandleDifferences -Error")));
    }
    EXPECT_TRUE(h.view.output.isEmpty());
}

TEST(SceneRecords, ARenameReachesScriptLinesAndEventRowsBeforeTheNode) {
    Harness h;
    h.handle(bunnyWorld());
    TreeNode* root = h.script.AddRoot(QStringLiteral("hop"), QStringLiteral("Hop = DoInOrder"));
    TreeNode* line = h.script.Add(root, Relation::Child, QString(),
                                  QStringLiteral("Bunny.Head.Turn(Left, 1/4, more...)"));
    const ListRow* head = h.world.events().addRow("LeftMouseButtonDown", "Bunny.Head", "Hop");
    const ListRow* other = h.world.events().addRow("LeftMouseButtonDown", "Bunnyhop", "Hop");
    h.handle(batch({nameChange(QStringLiteral("4"), QStringLiteral("Hare")),
                    nameChange(QStringLiteral("5"), QStringLiteral("Hare.Head"))}));
    EXPECT_EQ(line->Text(), QStringLiteral("Hare.Head.Turn(Left, 1/4, more...)"));
    // Only whole names change: another object whose name begins alike keeps it.
    EXPECT_EQ(head->SubItems(EventList::HappensTo), QStringLiteral("Hare.Head"));
    EXPECT_EQ(other->SubItems(EventList::HappensTo), QStringLiteral("Bunnyhop"));
    EXPECT_EQ(h.renames, (QStringList{QStringLiteral("Bunny->Hare"),
                                      QStringLiteral("Bunny.Head->Hare.Head")}));
    EXPECT_EQ(objectNode(h, QStringLiteral("5"))->Text(), QStringLiteral("Head"));
    EXPECT_EQ(objectNode(h, QStringLiteral("4"))->Tag(), QStringLiteral("Hare"));
}

TEST(SceneRecords, DestroyedThenResurrectedComesBackUnderItsOldParent) {
    Harness h;
    h.handle(bunnyWorld());
    h.trees.SelectedObjectName = QStringLiteral("head"); // compared without case
    h.handle(batch({{QStringLiteral("ObjectDestruct"), QStringLiteral("5")}}));
    EXPECT_FALSE(objectNode(h, QStringLiteral("5")));
    EXPECT_EQ(h.log.calls, QStringList{QStringLiteral("ExecuteCode")}); // back to the scene
    TreeNode* junk = h.trees.Junkyard.NodeByKey(QStringLiteral("k5"));
    ASSERT_TRUE(junk);
    EXPECT_EQ(junk->Tag(), QStringLiteral("k4\rBunny.Head"));

    h.handle(batch({{QStringLiteral("objectresurrect"), QStringLiteral("5")}}));
    TreeNode* head = objectNode(h, QStringLiteral("5"));
    ASSERT_TRUE(head);
    EXPECT_EQ(head->Parent(), objectNode(h, QStringLiteral("4")));
    EXPECT_EQ(head->Tag(), QStringLiteral("Bunny.Head"));
    EXPECT_EQ(h.trees.Junkyard.Count(), 0);
}

TEST(SceneRecords, FirstClassAndPartSwitchTheImageOnlyWhenNeeded) {
    Harness h;
    h.handle(bunnyWorld());
    const auto change = [&](const QString& flag) {
        h.handle(batch({{QStringLiteral("objectfirstclassorpartchange"), QStringLiteral("5"),
                         QString(), flag}}));
        return objectNode(h, QStringLiteral("5"))->Image();
    };
    EXPECT_EQ(change(QStringLiteral("0")), 7);
    EXPECT_EQ(change(QStringLiteral("0")), 7);
    EXPECT_EQ(change(QStringLiteral("1")), 8);
    EXPECT_EQ(change(QStringLiteral("1")), 8);
}

TEST(SceneRecords, AMoveKeepsThePartsAndRelabelsThem) {
    Harness h;
    h.handle(bunnyWorld());
    h.handle(batch({construct(QStringLiteral("6"), QStringLiteral("model")),
                    parentChange(QStringLiteral("6"), QStringLiteral("3")),
                    nameChange(QStringLiteral("6"), QStringLiteral("Cart")),
                    parentChange(QStringLiteral("4"), QStringLiteral("6")),
                    nameChange(QStringLiteral("4"), QStringLiteral("Cart.Bunny"))}));
    TreeNode* bunny = objectNode(h, QStringLiteral("4"));
    EXPECT_EQ(bunny->Parent(), objectNode(h, QStringLiteral("6")));
    EXPECT_EQ(bunny->Text(), QStringLiteral("Bunny"));
    EXPECT_EQ(objectNode(h, QStringLiteral("5"))->Parent(), bunny);
}

TEST(SoundRecords, SoundsMoveBetweenTheJunkyardAndTheSceneAndRenamesFollow) {
    Harness h;
    TreeNode* root = h.script.AddRoot(QStringLiteral("a"), QStringLiteral("A = DoInOrder"));
    TreeNode* line =
        h.script.Add(root, Relation::Child, QString(), QStringLiteral("Boing.Play(more...)"));
    h.handle(batch({construct(QStringLiteral("9"), QStringLiteral("sound")),
                    {QStringLiteral("soundnamechange"), QStringLiteral("9"), QString(),
                     QStringLiteral("Boing")},
                    {QStringLiteral("sceneaddsound")}}));
    TreeNode* sound = h.trees.SoundTree.NodeByKey(QStringLiteral("s9"));
    ASSERT_TRUE(sound);
    EXPECT_EQ(sound->Text(), QStringLiteral("Boing"));
    EXPECT_EQ(sound->Image(), 53);
    EXPECT_FALSE(h.trees.SoundTreeJunkyard.NodeByKey(QStringLiteral("s9")));

    h.handle(batch({{QStringLiteral("soundnamechange"), QStringLiteral("9"), QString(),
                     QStringLiteral("Bang")}}));
    EXPECT_EQ(sound->Text(), QStringLiteral("Bang"));
    EXPECT_EQ(line->Text(), QStringLiteral("Bang.Play(more...)"));

    h.handle(batch({{QStringLiteral("sceneremovesound"), QString(), QStringLiteral("9")}}));
    EXPECT_FALSE(h.trees.SoundTree.NodeByKey(QStringLiteral("s9")));
    EXPECT_TRUE(h.trees.SoundTreeJunkyard.NodeByKey(QStringLiteral("s9")));
    EXPECT_THROW(h.handle(batch({{QStringLiteral("sceneaddsound")}})), RunTimeError);
}

TEST(SoundRecords, AfterASoundRenameAFailureIsTakenForOneAndTheNextClimbsBare) {
    Harness h;
    h.handle(batch({construct(QStringLiteral("9"), QStringLiteral("sound")),
                    {QStringLiteral("soundnamechange"), QStringLiteral("9"), QString(),
                     QStringLiteral("Boing")},
                    {QStringLiteral("sceneaddsound")}}));
    // A rename of a sound out of the scene arms the sound handler; the failing
    // name record after it lands there, is read as a rename of scene sound 9,
    // and the batch goes on.
    h.handle(batch(
        {construct(QStringLiteral("8"), QStringLiteral("sound")),
         {QStringLiteral("soundnamechange"), QStringLiteral("8"), QString(), QStringLiteral("Pop")},
         {QStringLiteral("objectnamechange"), QStringLiteral("9"), QString(),
          QStringLiteral("Ping")},
         {QStringLiteral("output"), QStringLiteral("after")}}));
    EXPECT_EQ(h.trees.SoundTree.NodeByKey(QStringLiteral("s9"))->Text(), QStringLiteral("Ping"));
    EXPECT_EQ(h.view.output, QStringList{QStringLiteral("after")});
    // Once taken, a further failure leaves without this routine's report:
    // even a second rename of a scene sound in the same call.
    EXPECT_THROW(h.handle(batch({{QStringLiteral("soundnamechange"), QStringLiteral("9"), QString(),
                                  QStringLiteral("Pong")},
                                 {QStringLiteral("soundnamechange"), QStringLiteral("9"), QString(),
                                  QStringLiteral("Pang")}})),
                 RunTimeError);
    EXPECT_EQ(h.trees.SoundTree.NodeByKey(QStringLiteral("s9"))->Text(), QStringLiteral("Pong"));
    try {
        h.handle(batch({{QStringLiteral("soundnamechange"), QStringLiteral("9"), QString(),
                         QStringLiteral("Pong")},
                        {QStringLiteral("objectdestruct"), QStringLiteral("77")}}));
        FAIL();
    } catch (const RunTimeError& e) {
        EXPECT_FALSE(e.description().startsWith(QStringLiteral("VB: HandleDifferences")));
    }
}

TEST(SceneRecords, NothingTheEngineSendsCanCrashTheFrontEnd) {
    // Random batches of real tags with items of any kind and length: each either
    // works or fails as a run-time error of the call.
    const QStringList tags = {QStringLiteral("objectconstruct"),
                              QStringLiteral("objectnamechange"),
                              QStringLiteral("objectparentchange"),
                              QStringLiteral("objectdestruct"),
                              QStringLiteral("objectresurrect"),
                              QStringLiteral("soundnamechange"),
                              QStringLiteral("sceneaddsound"),
                              QStringLiteral("sceneremovesound"),
                              QStringLiteral("objectfirstclassorpartchange"),
                              QStringLiteral("output")};
    const QVariantList values = {QStringLiteral("1"),
                                 QStringLiteral("2"),
                                 QStringLiteral("3"),
                                 QStringLiteral("scene"),
                                 QStringLiteral("model"),
                                 QStringLiteral("sound"),
                                 QStringLiteral("none"),
                                 7,
                                 true,
                                 QVariant(),
                                 QVariant(QVariantList{1, 2})};
    std::mt19937 random(47);
    const auto pick = [&](qsizetype count) {
        return static_cast<qsizetype>(random() % static_cast<unsigned>(count));
    };
    Harness h;
    for (int round = 0; round < 2000; ++round) {
        QVariantList records;
        for (int r = 0; r < 6; ++r) {
            QVariantList record = {tags[pick(tags.size())]};
            for (qsizetype item = pick(5); item > 0; --item)
                record.append(values[pick(values.size())]);
            records.append(QVariant(record));
        }
        try {
            h.handle(records);
        } catch (const RunTimeError&) {
        }
    }
    SUCCEED();
}
