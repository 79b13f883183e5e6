#include "script/script_clicks.h"
#include "script/script_drops.h"
#include "script/script_model.h"
#include "script/tree_walks.h"
#include "script_test_support.h"
#include "support/qt_print.h"

#include <gtest/gtest.h>

using namespace vessa;
using vessa::testing::FakeScriptHost;
using vessa::testing::FakeTreeGeometry;
using Kind = ScriptRequest::Kind;

namespace {

// The script of every case, each row 20 pixels tall, text further in by 20 a level:
//
//   Action1 = DoInOrder        row 0, expanded
//     Camera.Move(...)         row 1
//     Hop : DoTogether         row 2, expanded
//       Bunny.Turn(...)        row 3
//       Bunny.Roll(...)        row 4, last in Hop
//     Camera.Turn(...)         row 5, last in Action1
//   Action2 = DoInOrder        row 6, closed, no children
//
// and beside it a scene whose object Bunny and sound Boing can be dragged in.
struct Drops : ::testing::Test {
    FakeScriptHost host;
    ScriptModel script{host};
    TreeControl& tree = script.TreeView1();
    FakeTreeGeometry geometry{tree};
    ScriptClicks clicks{script};
    ScriptDrops drops{script, clicks};
    TreeControl objects, sounds, events;
    TreeNode* action1 = tree.FirstRoot();
    TreeNode *move, *hop, *turn, *roll, *last, *action2;

    void SetUp() override {
        host.RecordRequestsOf(script);
        script.setDragSource(objects, DragSource::Object);
        script.setDragSource(sounds, DragSource::Sound);
        TreeNode* bunny = objects.AddRoot("k7", "Bunny");
        objects.SetTag(bunny, "Bunny");
        sounds.AddRoot("s8", "Boing");
        events.AddRoot("", "AnyWhere");
        move = tree.Add(action1, Relation::Child, "", "Camera.Move(Forward, 1, more...)");
        hop = tree.Add(action1, Relation::Child, "", "Hop : DoTogether");
        turn = tree.Add(hop, Relation::Child, "", "Bunny.Turn(Left, 1/4, more...)");
        roll = tree.Add(hop, Relation::Child, "", "Bunny.Roll(Left, 1/8, more...)");
        last = tree.Add(action1, Relation::Child, "", "Camera.Turn(Right, 1/2, more...)");
        tree.SetExpanded(action1, true);
        tree.SetExpanded(hop, true);
        action2 = tree.AddRoot("action2", "Action2 = DoInOrder");
        script.AnimationNames().Append("Action2");
    }

    // Points by row: high in it or in its lowest fifth; x at a node's level or left of it.
    static int Upper(int row) { return row * FakeTreeGeometry::RowHeight + 4; }
    static int Lowest(int row) { return row * FakeTreeGeometry::RowHeight + 18; }
    int AtLevel(const TreeNode* node) const { return geometry.NodeRect(node).left() + 2; }
    int LeftOf(const TreeNode* node) const { return geometry.NodeRect(node).left() - 21; }

    void Drag(const TreeControl& from, TreeNode* node, Qt::MouseButton button = Qt::LeftButton) {
        script.DragNode = NodeRef::To(const_cast<TreeControl&>(from), node);
        script.DragButton = button;
    }
    void DragBlock(const QString& word) {
        TreeControl& palette = script.ConstructTree();
        Drag(palette, word == "DoInOrder" ? palette.RootAt(0) : palette.RootAt(1));
    }
    ScriptRequest DropAt(int x, int y) { return drops.TreeView1_DragDrop({x, y}, geometry); }

    // The script as lines indented by depth.
    QString Outline() const {
        QString text;
        const std::function<void(const TreeNode*, int)> walk = [&](const TreeNode* node,
                                                                   int depth) {
            for (; node; node = node->Next()) {
                text += QString(depth * 2, u' ') + node->Text() + u'\n';
                walk(node->Child(), depth + 1);
            }
        };
        walk(tree.FirstRoot(), 0);
        return text;
    }
};

} // namespace

TEST_F(Drops, ALineOrAnOpenBlockTakesTheDropAfterOrAtTheTopWhateverTheHeightInTheRow) {
    DragBlock("DoInOrder");
    // A line that is not the last of its block: after it, even from far to the left.
    DropPlace place = drops.PlaceFor({0, Lowest(1)}, geometry);
    EXPECT_EQ(place.Target, move);
    EXPECT_EQ(place.Relative, move);
    EXPECT_EQ(place.How, Relation::Next);
    // The last line, pointer at its level: after it.
    place = drops.PlaceFor({AtLevel(roll), Upper(4)}, geometry);
    EXPECT_EQ(place.Relative, roll);
    EXPECT_EQ(place.How, Relation::Next);
    // An open block with children: ahead of its first child, wherever the pointer is.
    for (const QPoint& at : {QPoint(0, Lowest(2)), QPoint(AtLevel(hop) + 40, Upper(2))}) {
        place = drops.PlaceFor(at, geometry);
        EXPECT_EQ(place.Relative, turn);
        EXPECT_EQ(place.How, Relation::Previous);
    }
}

TEST_F(Drops, AClosedBlockTakesTheDropInsideItUnlessInTheLowestFifthOfANestedOne) {
    DragBlock("DoTogether");
    tree.SetExpanded(hop, false); // rows: 0 Action1, 1 move, 2 hop, 3 last, 4 Action2
    EXPECT_EQ(drops.PlaceFor({AtLevel(hop), Upper(2)}, geometry).Relative, turn);
    EXPECT_EQ(drops.PlaceFor({AtLevel(hop), Upper(2)}, geometry).How, Relation::Previous);
    const DropPlace after = drops.PlaceFor({AtLevel(hop), Lowest(2)}, geometry);
    EXPECT_EQ(after.Relative, hop);
    EXPECT_EQ(after.How, Relation::Next);
    // A root always takes it, here as its only child.
    const DropPlace root = drops.PlaceFor({AtLevel(action2), Lowest(4)}, geometry);
    EXPECT_EQ(root.Relative, action2);
    EXPECT_EQ(root.How, Relation::Child);
    // Below every line: into the last animation, at its end once it has children.
    EXPECT_EQ(drops.PlaceFor({AtLevel(move), 400}, geometry).Relative, action2);
    DropAt(AtLevel(move), 400);
    DragBlock("DoTogether");
    const DropPlace end = drops.PlaceFor({AtLevel(move), 400}, geometry);
    EXPECT_EQ(end.Relative, action2->Child());
    EXPECT_EQ(end.How, Relation::Last);
}

TEST_F(Drops, ADragToTheLeftOfALastLineLeavesAsManyBlocksAsItsLeftEdgesPassed) {
    DragBlock("DoInOrder");
    // Left of Roll but within Hop's level: still inside Hop, at its end.
    DropPlace place = drops.PlaceFor({LeftOf(roll) - 5, Upper(4)}, geometry);
    EXPECT_EQ(place.Relative, hop);
    EXPECT_EQ(place.How, Relation::Child);
    // Left of Hop too: out of it, after it in Action1.
    place = drops.PlaceFor({LeftOf(hop), Upper(4)}, geometry);
    EXPECT_EQ(place.Relative, hop);
    EXPECT_EQ(place.How, Relation::Next);
    // Left of Action1's last line: an animation gets no sibling, so it stays after it.
    place = drops.PlaceFor({0, Upper(5)}, geometry);
    EXPECT_EQ(place.Relative, last);
    EXPECT_EQ(place.How, Relation::Next);
    // A line that is not the last gives no way out: the drop goes after it.
    place = drops.PlaceFor({0, Upper(3)}, geometry);
    EXPECT_EQ(place.Relative, turn);
    EXPECT_EQ(place.How, Relation::Next);
}

TEST_F(Drops, EachSourceMakesItsLineWhereItLandsAndUndoTakesItAway) {
    Drag(objects, objects.FirstRoot());
    const ScriptRequest menu = DropAt(AtLevel(move), Upper(1));
    EXPECT_EQ(action1->ChildAt(1)->Text(), "Bunny.Move(Forward, 1, more...)");
    // The object's line is followed at once by the choice of its command.
    EXPECT_EQ(menu.What, Kind::ActionMenu);
    EXPECT_EQ(menu.TreePoint, QPoint(AtLevel(move), Upper(1)));
    EXPECT_EQ(script.Parse().SelectedNode.Get(), action1->ChildAt(1));
    EXPECT_EQ(script.Parse().ParsedObject, "Bunny");
    EXPECT_EQ(script.Parse().ClickedKind, 2);

    Drag(sounds, sounds.FirstRoot());
    DropAt(AtLevel(turn), Upper(4));
    DragBlock("DoTogether");
    EXPECT_EQ(DropAt(AtLevel(move), Upper(1)).What, Kind::None);
    EXPECT_EQ(Outline(), "Action1 = DoInOrder\n"
                         "  Camera.Move(Forward, 1, more...)\n"
                         "  DoTogether\n"
                         "  Bunny.Move(Forward, 1, more...)\n"
                         "  Hop : DoTogether\n"
                         "    Bunny.Turn(Left, 1/4, more...)\n"
                         "    PlaySound(Boing)\n"
                         "    Bunny.Roll(Left, 1/8, more...)\n"
                         "  Camera.Turn(Right, 1/2, more...)\n"
                         "Action2 = DoInOrder\n");
    EXPECT_EQ(tree.SelectedItem(), action1->ChildAt(1));
    EXPECT_FALSE(script.DragNode.Get());
    // Each drop is one record; the new lines numbered in their in-order block.
    EXPECT_EQ(script.TreeUndoRecords().Text(), "1,0:1,0\r\n1,0:2:1,0\r\n1,0:1,0\r\n");
    EXPECT_EQ(action1->ChildAt(4)->Image(), 15);
    for (int undo = 0; undo < 3; ++undo)
        script.UndoFromLog();
    EXPECT_EQ(action1->Children(), 3);
    EXPECT_EQ(hop->Children(), 2);
}

TEST_F(Drops, ALineMovedByTheLeftButtonIsOneUndoStepAndTheRightButtonCopies) {
    const QString before = Outline();
    // Hop, with its two lines, moves to the end of Action2.
    Drag(tree, hop);
    DropAt(AtLevel(action2), Upper(6));
    EXPECT_EQ(Outline(), "Action1 = DoInOrder\n"
                         "  Camera.Move(Forward, 1, more...)\n"
                         "  Camera.Turn(Right, 1/2, more...)\n"
                         "Action2 = DoInOrder\n"
                         "  Hop : DoTogether\n"
                         "    Bunny.Turn(Left, 1/4, more...)\n"
                         "    Bunny.Roll(Left, 1/8, more...)\n");
    // Both parents are numbered anew.
    EXPECT_EQ(action1->ChildAt(1)->Image(), 12);
    EXPECT_EQ(action2->Child()->Image(), 11);
    EXPECT_EQ(script.TreeUndoRecords().Text().left(10), "4,1:0,0:1,");
    script.UndoFromLog();
    EXPECT_EQ(Outline(), before);

    // A copy by the right button: the original stays, and undo takes only the copy.
    Drag(tree, tree.FirstRoot()->ChildAt(1), Qt::RightButton);
    DropAt(AtLevel(move), Upper(1));
    EXPECT_EQ(tree.FirstRoot()->ChildAt(1)->Text(), "Hop : DoTogether");
    EXPECT_EQ(tree.FirstRoot()->ChildAt(2)->Text(), "Hop : DoTogether");
    EXPECT_EQ(tree.FirstRoot()->ChildAt(1)->Children(), 2);
    script.UndoFromLog();
    EXPECT_EQ(Outline(), before);
}

TEST_F(Drops, WhereNothingCanGoTheDropChangesNothing) {
    const QString before = Outline();
    const auto refused = [&](int x, int y) {
        const DropPlace place = drops.PlaceFor({x, y}, geometry);
        EXPECT_FALSE(place.IsPlace() || place.Click) << x << "," << y;
        EXPECT_EQ(DropAt(x, y).What, Kind::None);
        EXPECT_EQ(Outline(), before);
    };
    // A block into its own child.
    Drag(tree, hop);
    refused(AtLevel(turn), Upper(3));
    // A line out to the left of itself while others follow it.
    Drag(tree, turn);
    refused(0, Upper(3));
    // An animation, and what comes from a tree the script doesn't take.
    Drag(tree, action1);
    refused(AtLevel(move), Upper(1));
    Drag(events, events.FirstRoot());
    refused(AtLevel(move), Upper(1));
    EXPECT_EQ(script.TreeUndoRecords().Text(), "");
    // An empty script has nowhere at all.
    tree.Clear();
    DragBlock("DoInOrder");
    EXPECT_FALSE(drops.PlaceFor({10, 10}, geometry).IsPlace());
}

TEST_F(Drops, ALineDroppedBackOnItselfIsAClickAndTheLastOneCanBeDraggedOutOfItsBlock) {
    Drag(tree, roll);
    const ScriptRequest request =
        DropAt(geometry.AtCharacter(roll, 11).x(), geometry.AtCharacter(roll, 11).y());
    EXPECT_EQ(request.What, Kind::StarMenuRow); // "Left", as a click would
    EXPECT_EQ(hop->Children(), 2);

    Drag(tree, roll);
    DropAt(LeftOf(hop), Upper(4));
    EXPECT_EQ(hop->Children(), 1);
    EXPECT_EQ(action1->ChildAt(2)->Text(), "Bunny.Roll(Left, 1/8, more...)");
}

TEST_F(Drops, TheMarkStandsBetweenTheRowsAtTheLevelTheNewLineTakes) {
    DragBlock("DoInOrder");
    const auto markAt = [&](int x, int y) {
        return ScriptDrops::MarkFor(drops.PlaceFor({x, y}, geometry), geometry)->Start;
    };
    // After Move: under its row, at its level.
    EXPECT_EQ(markAt(AtLevel(move), Upper(1)), QPoint(AtLevel(move) - 2, 40));
    // Ahead of Hop's first child: over Turn's row.
    EXPECT_EQ(markAt(0, Upper(2)), QPoint(AtLevel(turn) - 2, 60));
    // After the open Hop: under its last line, at Hop's level.
    tree.SetExpanded(hop, false);
    tree.SetExpanded(hop, true);
    EXPECT_EQ(markAt(LeftOf(hop), Upper(4)), QPoint(AtLevel(hop) - 2, 100));
    // Into the closed Action2: under its row, one level in.
    EXPECT_EQ(markAt(AtLevel(action2), Upper(6)), QPoint(AtLevel(move) - 2, 140));
    // No place, no mark.
    Drag(tree, hop);
    EXPECT_FALSE(
        ScriptDrops::MarkFor(drops.PlaceFor({AtLevel(turn), Upper(3)}, geometry), geometry));
}

TEST_F(Drops, TheTreeScrollsNearItsEdgesTwiceAsFarFromTheBottom) {
    // At 15 twips a pixel: the top 100 twips, the bottom 200.
    EXPECT_EQ(ScriptDrops::ScrollDirection(0, 300, 15), -1);
    EXPECT_EQ(ScriptDrops::ScrollDirection(6, 300, 15), -1);
    EXPECT_EQ(ScriptDrops::ScrollDirection(7, 300, 15), 0);
    EXPECT_EQ(ScriptDrops::ScrollDirection(286, 300, 15), 0);
    EXPECT_EQ(ScriptDrops::ScrollDirection(287, 300, 15), 1);
    EXPECT_EQ(ScriptDrops::ScrollDirection(300, 300, 15), 0);
}

TEST_F(Drops, TheCommandLineTakesAnObjectOnlyAndTheKeyboardPutsABlockWhereAPasteWould) {
    DragBlock("DoInOrder");
    EXPECT_FALSE(drops.CommandLineTreeview_Accepts());
    EXPECT_EQ(drops.CommandLineTreeview_DragDrop({5, 5}).What, Kind::None);
    Drag(objects, objects.FirstRoot());
    EXPECT_EQ(drops.CommandLineTreeview_DragDrop({5, 5}).What, Kind::ActionMenu);
    EXPECT_EQ(script.CommandLineTreeview().FirstRoot()->Text(), "Bunny.Move(Forward, 1, more...)");
    EXPECT_EQ(script.TreeUndoRecords().Text(), "");

    TreeControl& palette = script.ConstructTree();
    tree.SetSelectedItem(hop);
    drops.InsertAtSelection(NodeRef::To(palette, palette.RootAt(1)));
    EXPECT_EQ(hop->ChildAt(2)->Text(), "DoTogether");
    tree.SetSelectedItem(move);
    drops.InsertAtSelection(NodeRef::To(palette, palette.RootAt(0)));
    EXPECT_EQ(action1->ChildAt(1)->Text(), "DoInOrder");
    tree.SetSelectedItem(nullptr);
    drops.InsertAtSelection(NodeRef::To(palette, palette.RootAt(0)));
    EXPECT_EQ(action2->Child()->Text(), "DoInOrder");
    EXPECT_EQ(script.TreeUndoRecords().Text().count(u'\n'), 3);
}

TEST_F(Drops, DeletingAnAnimationTakesItsNameAndItsRowsWhichUndoBringsBackFirst) {
    host.animationsWithRows << "action1";
    host.eventRowsOfRemovedAnimation = 2;
    EXPECT_TRUE(script.DeleteTakesEventRows(action1));
    EXPECT_FALSE(script.DeleteTakesEventRows(action2));
    EXPECT_FALSE(script.DeleteTakesEventRows(move));
    const QString before = Outline();
    script.DeleteNode(action1);
    EXPECT_EQ(script.AnimationNames().Text(), "Action2");
    EXPECT_EQ(host.removedAnimationRows, QStringList{"action1"});
    EXPECT_EQ(script.TreeUndoRecords().Text(), "2,0,2\r\n");
    script.UndoFromLog();
    EXPECT_EQ(host.eventUndos, 2);
    EXPECT_EQ(Outline(), before);
    EXPECT_EQ(tree.FirstRoot()->Key(), "action1");

    script.DeleteNode(turn);
    EXPECT_EQ(roll->Image(), 9);
    EXPECT_EQ(tree.SelectedItem(), nullptr);
    EXPECT_EQ(script.AnimationNames().Text(), "Action2,Action1");
}
