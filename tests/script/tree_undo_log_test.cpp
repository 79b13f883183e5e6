#include "base/run_time_error.h"
#include "script/script_model.h"
#include "script/tree_walks.h"
#include "script_test_support.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

using namespace vessa;
using vessa::testing::FakeScriptHost;

namespace {

struct Undo : ::testing::Test {
    FakeScriptHost host;
    ScriptModel script{host};
    TreeControl& tree = script.TreeView1();
    TreeNode* action1 = tree.FirstRoot();

    TreeNode* AddLine(TreeNode* parent, const QString& text) {
        TreeNode* line = tree.Add(parent, Relation::Child, "", text);
        script.UndoLog(UndoOperation::Added, line);
        return line;
    }

    void Delete(TreeNode* node) {
        script.UndoLog(UndoOperation::Removed, node);
        tree.Remove(node->Index());
    }

    // What a drag does to move a line or block: copy, record, remove. Animations stay
    // where they are, and nothing goes inside itself.
    bool Move(TreeNode* node, TreeNode* target, Relation relation) {
        for (TreeNode* up = target; up; up = up->Parent())
            if (up == node)
                return false;
        if (!node->Parent() || (relation == Relation::Next && !target->Parent()))
            return false;
        TreeNode* moved = tree.Add(target, relation, "", "");
        AddNodes(moved, node, {});
        script.UndoLog(UndoOperation::Moved, node, moved);
        tree.Remove(node->Index());
        return true;
    }

    // The whole script as the tree script file holds it, readable in failure messages.
    std::string Whole() {
        QString text;
        TraverseTreeToFile(script.TreeView1().FirstRoot(), 1, text);
        return text.toStdString();
    }

    int Copies() { return script.junkyard2().FirstRoot()->Children(); }
};

} // namespace

TEST_F(Undo, EveryRecordedChangeTellsTheWorld) {
    AddLine(action1, "Camera.Move(Forward, 1, more...)");
    AddLine(action1, "Camera.Turn(Left, 1/4, more...)");
    EXPECT_EQ(host.modifications, 2);
    EXPECT_EQ(script.TreeUndoRecords().Text(), "1,0:1,0\r\n1,0:0,0\r\n");
}

TEST_F(Undo, AnAddedLineAndAnAddedAnimationGoAgain) {
    AddLine(action1, "Camera.Move(Forward, 1, more...)");
    script.AddNewAnimation();
    EXPECT_EQ(script.AnimationNames().Text(), "Action1,Action2");
    script.UndoFromLog();
    EXPECT_EQ(tree.RootCount(), 1);
    EXPECT_EQ(script.AnimationNames().Text(), "Action1");
    script.UndoFromLog();
    EXPECT_EQ(action1->Children(), 0);
    // The counter never goes back.
    EXPECT_EQ(script.AddNewAnimation()->Text(), "Action3 = DoInOrder");
}

TEST_F(Undo, ADeletedNodeComesBackBetweenItsNeighboursWithItsSubtree) {
    AddLine(action1, "A.Wait(1)");
    TreeNode* block = AddLine(action1, "DoTogether");
    AddLine(block, "B.Wait(1)");
    tree.SetExpanded(block, true);
    AddLine(action1, "C.Wait(1)");
    const std::string before = Whole();

    Delete(block);
    EXPECT_EQ(Copies(), 1);
    script.UndoFromLog();

    EXPECT_EQ(Whole(), before);
    EXPECT_EQ(Copies(), 0);
    EXPECT_EQ(action1->ChildAt(1)->Image(), 12);
    EXPECT_EQ(tree.SelectedItem(), action1->ChildAt(2));
    EXPECT_EQ(tree.DropHighlight(), action1->ChildAt(2));
}

TEST_F(Undo, PlacingFollowsTheFlagsOfTheWalk) {
    AddLine(action1, "A.Wait(1)");
    TreeNode* last = AddLine(action1, "B.Wait(1)");
    // The last child: the walk runs off the end and the node comes back after.
    Delete(last);
    script.UndoFromLog();
    EXPECT_EQ(action1->ChildAt(1)->Text(), "B.Wait(1)");

    // The only child of a block: no child to reach, so it goes back into the block.
    TreeNode* block = AddLine(action1, "DoInOrder");
    TreeNode* only = AddLine(block, "C.Wait(1)");
    Delete(only);
    script.UndoFromLog();
    ASSERT_EQ(block->Children(), 1);
    EXPECT_EQ(block->Child()->Text(), "C.Wait(1)");
}

TEST_F(Undo, TheOnlyAnimationComesBackIntoTheEmptyTreeWithItsKey) {
    Delete(action1);
    script.AnimationNames().Remove("Action1");
    EXPECT_EQ(tree.RootCount(), 0);
    script.UndoFromLog();
    ASSERT_EQ(tree.RootCount(), 1);
    EXPECT_EQ(tree.FirstRoot()->Text(), "Action1 = DoInOrder");
    EXPECT_EQ(tree.NodeByKey("action1"), tree.FirstRoot());
    EXPECT_EQ(tree.FirstRoot()->Tag(), "");
    EXPECT_EQ(script.AnimationNames().Text(), "Action1");
}

TEST_F(Undo, ChangesGoBackNewestFirstAndAnUndoneRenameGivesTheKeyBack) {
    TreeNode* line = AddLine(action1, "Camera.Move(Forward, 1, more...)");
    script.UndoLog(UndoOperation::Changed, line);
    tree.SetText(line, "Camera.Move(Left, 1, more...)");
    script.UndoLog(UndoOperation::Changed, line);
    tree.SetText(line, "Camera.Move(Left, 2, more...)");
    EXPECT_EQ(Copies(), 2);
    script.UndoFromLog();
    EXPECT_EQ(line->Text(), "Camera.Move(Left, 1, more...)");
    script.UndoFromLog();
    EXPECT_EQ(line->Text(), "Camera.Move(Forward, 1, more...)");

    // A rename that touched three event rows replays three of their records first.
    script.UndoLog(UndoOperation::Changed, action1, nullptr, 3);
    tree.SetText(action1, "Walk = DoInOrder");
    tree.SetKey(action1, "walk");
    script.AnimationNames().Rename("Action1", "Walk");
    script.UndoFromLog();
    EXPECT_EQ(host.eventUndos, 3);
    EXPECT_EQ(action1->Text(), "Action1 = DoInOrder");
    EXPECT_EQ(action1->Key(), "action1");
    EXPECT_EQ(script.AnimationNames().Text(), "Action1");
}

TEST_F(Undo, AMoveIsOneStepThatPutsTheWholeSubtreeBack) {
    TreeNode* block = AddLine(action1, "DoTogether");
    AddLine(block, "A.Wait(1)");
    AddLine(block, "B.Wait(1)");
    TreeNode* target = AddLine(action1, "DoInOrder");
    const std::string before = Whole();
    // Into the next block: the copy's path is taken as it stands once the original is gone.
    ASSERT_TRUE(Move(block, target, Relation::Child));
    EXPECT_EQ(script.TreeUndoRecords().Text().section("\r\n", 0, 0), "4,0:0:0,0:0,0");

    script.UndoFromLog();
    EXPECT_EQ(Whole(), before);
}

TEST_F(Undo, AnEmptyLogDoesNothingAndExpansionToggles) {
    script.UndoFromLog();
    EXPECT_EQ(tree.RootCount(), 1);
    EXPECT_EQ(host.modifications, 0);
    script.UndoLog(UndoOperation::Expansion, action1);
    script.UndoFromLog();
    EXPECT_TRUE(action1->Expanded());
}

TEST_F(Undo, APathThatLeadsNowhereNeverBreaksTheTree) {
    AddLine(action1, "A.Wait(1)");
    script.UndoLog(UndoOperation::Changed, action1->Child());
    script.UndoLog(UndoOperation::Removed, action1->Child());
    tree.Clear();
    script.UndoFromLog(); // restores into the empty tree
    script.UndoFromLog(); // changes the node the path reaches now
    script.UndoFromLog(); // removes it
    EXPECT_EQ(tree.RootCount(), 0);
    EXPECT_EQ(Copies(), 0);
    script.UndoFromLog();
    EXPECT_TRUE(script.TreeUndoRecords().IsEmpty());
}

// Random edits of every recorded kind, then as many undos: the script reads as before.
TEST_F(Undo, AnyRunOfEditsIsUndoneToTheSameScript) {
    QRandomGenerator random(7);
    for (int run = 0; run < 200; ++run) {
        const std::string before = Whole();
        const int steps = random.bounded(1, 25);
        int recorded = 0;
        for (int step = 0; step < steps; ++step) {
            std::vector<TreeNode*> nodes;
            for (int index = 1; index < 100000 && int(nodes.size()) < tree.Count(); ++index)
                if (TreeNode* node = tree.Node(index))
                    nodes.push_back(node);
            TreeNode* node = nodes.empty() ? nullptr : nodes[random.bounded(int(nodes.size()))];
            switch (node ? random.bounded(7) : 0) {
            case 0:
                script.AddNewAnimation();
                break;
            case 1:
                AddLine(node, random.bounded(2) ? "DoTogether" : "X.Wait(1)");
                break;
            case 2:
                Delete(node);
                break;
            case 3:
                script.UndoLog(UndoOperation::Changed, node);
                tree.SetText(node, node->Text() + " changed");
                break;
            case 4:
                script.UndoLog(UndoOperation::Expansion, node);
                tree.SetExpanded(node, !node->Expanded());
                break;
            case 5: {
                TreeNode* target = nodes[random.bounded(int(nodes.size()))];
                if (!Move(node, target, random.bounded(2) ? Relation::Child : Relation::Next))
                    continue;
                break;
            }
            default:
                if (!IsBlock(node->Text()))
                    continue;
                script.ChangeBlockKind(node);
            }
            ++recorded;
        }
        for (int undo = 0; undo < recorded; ++undo)
            script.UndoFromLog();
        ASSERT_EQ(Whole(), before) << "run " << run;
        ASSERT_EQ(Copies(), 0);
    }
}

// Each record replays both ways: what an undo took back, a redo does again, with the
// rows of the event list after the tree, in the same text records.
TEST_F(Undo, RedoDoesAgainWhatWasUndoneAndANewChangeEndsIt) {
    TreeNode* block = AddLine(action1, "DoTogether");
    AddLine(block, "A.Wait(1)");
    TreeNode* target = AddLine(action1, "DoInOrder");
    ASSERT_TRUE(Move(block, target, Relation::Child));
    script.UndoLog(UndoOperation::Changed, action1, nullptr, 2);
    tree.SetText(action1, "Walk = DoInOrder");
    const std::string done = Whole();
    for (int undo = 0; undo < 5; ++undo)
        script.UndoFromLog();
    EXPECT_EQ(tree.FirstRoot()->Children(), 0);
    EXPECT_EQ(host.eventUndos, 2);
    // The records to redo are the same text records, the way back of each.
    EXPECT_TRUE(script.TreeUndoRecords().IsEmpty());
    ASSERT_TRUE(script.TreeUndoRecords().CanRedo());
    for (int redo = 0; redo < 5; ++redo)
        script.RedoFromLog();
    EXPECT_EQ(Whole(), done);
    EXPECT_EQ(host.eventRedos, 2);
    EXPECT_FALSE(script.TreeUndoRecords().CanRedo());
    EXPECT_EQ(script.TreeUndoRecords().Text().section("\r\n", 0, 0), "3,0,2");

    script.UndoFromLog();
    script.UndoFromLog();
    AddLine(tree.FirstRoot(), "C.Wait(1)"); // a new change: what was undone stays undone
    EXPECT_FALSE(script.TreeUndoRecords().CanRedo());
    script.RedoFromLog();
    EXPECT_EQ(tree.FirstRoot()->Text(), "Action1 = DoInOrder");
    // Nothing is left of the saved copies of the redo side.
    const TreeNode* redoCopies = script.junkyard2().FirstRoot()->Next();
    ASSERT_TRUE(redoCopies);
    EXPECT_EQ(redoCopies->Children(), 0);
}
