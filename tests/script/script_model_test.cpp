#include "base/run_time_error.h"
#include "script/script_icons.h"
#include "script/script_model.h"
#include "script_test_support.h"

#include <gtest/gtest.h>

using namespace vessa;
using vessa::testing::FakeScriptHost;

namespace {

struct Model : ::testing::Test {
    FakeScriptHost host;
    ScriptModel script{host};
    TreeControl& tree = script.TreeView1();
};

} // namespace

TEST_F(Model, AFreshScriptHoldsOneAnimationAndItsHelpers) {
    ASSERT_EQ(tree.Count(), 1);
    EXPECT_EQ(tree.FirstRoot()->Text(), "Action1 = DoInOrder");
    EXPECT_EQ(tree.FirstRoot()->Key(), "action1");
    EXPECT_EQ(tree.SelectedItem(), tree.FirstRoot());
    EXPECT_EQ(script.AnimationNames().Text(), "Action1");
    EXPECT_EQ(script.AnimationCounter(), 2);
    EXPECT_EQ(script.ConstructTree().FirstRoot()->Text(), "DoInOrder");
    EXPECT_EQ(script.ConstructTree().FirstRoot()->Next()->Text(), "DoTogether");
    EXPECT_EQ(script.CommandLineTreeview().FirstRoot()->Text(), "Camera.Move(Forward, 1, more...)");
    EXPECT_EQ(script.junkyard2().FirstRoot()->Text(), "UndoMe");
    EXPECT_TRUE(script.TreeUndoRecords().IsEmpty());
    EXPECT_EQ(host.modifications, 0);
}

TEST_F(Model, NewAnimationsCountOnAndSkipTakenKeys) {
    EXPECT_EQ(script.AddNewAnimation()->Text(), "Action2 = DoInOrder");
    tree.SetKey(tree.FirstRoot(), "action3"); // as a rename to "Action3" would
    TreeNode* next = script.AddNewAnimation();
    EXPECT_EQ(next->Text(), "Action4 = DoInOrder");
    EXPECT_EQ(next->Key(), "action4");
    EXPECT_EQ(tree.FirstRoot()->LastSibling(), next);
    EXPECT_EQ(script.AnimationNames().Text(), "Action1,Action2,Action4");
}

TEST_F(Model, ChildrenAreNumberedUpTo42InOrderAndAllAlikeTogether) {
    TreeNode* root = tree.FirstRoot();
    for (int i = 0; i < 50; ++i)
        tree.Add(root, Relation::Child, "", "Camera.Wait(1)");
    RefreshChildIcons(root);
    EXPECT_EQ(root->ChildAt(0)->Image(), 11);
    EXPECT_EQ(root->ChildAt(41)->Image(), 52);
    EXPECT_EQ(root->ChildAt(42)->Image(), 52);
    EXPECT_EQ(root->ChildAt(49)->Image(), 52);

    script.ChangeBlockKind(root);
    EXPECT_EQ(root->Text(), "Action1 = DoTogether");
    EXPECT_EQ(root->ChildAt(0)->Image(), icons::Together);
    EXPECT_EQ(root->ChildAt(49)->Image(), icons::Together);
    script.UndoFromLog();
    EXPECT_EQ(root->Text(), "Action1 = DoInOrder");
}

TEST_F(Model, UpdateNodeRecordsScriptLinesButNotTheCommandLine) {
    TreeNode* line =
        tree.Add(tree.FirstRoot(), Relation::Child, "", "Camera.Move(Forward, 1, more...)");
    ParseString(script.Parse(), line->Text(), 13);
    script.UpdateNode(line, "Up");
    EXPECT_EQ(line->Text(), "Camera.Move(Up, 1, more...)");
    EXPECT_EQ(script.TreeUndoRecords().Text(), "3,0:0,0\r\n");

    // Not recorded while a compound change does its own logging, nor when asked.
    script.SetUndoRecording(false);
    script.UpdateNode(line, "Down");
    script.SetUndoRecording(true);
    script.UpdateNode(line, "Left", false);
    TreeNode* command = script.CommandLineTreeview().FirstRoot();
    script.UpdateNode(command, "Back");
    EXPECT_EQ(command->Text(), "Camera.Move(Back, 1, more...)");
    EXPECT_EQ(script.TreeUndoRecords().Text(), "3,0:0,0\r\n");

    // A value that cannot be written leaves the line and the log as they were.
    script.Parse().ClickedKind = 2;
    EXPECT_THROW(script.UpdateNode(line, "Fly"), RunTimeError);
    EXPECT_EQ(line->Text(), "Camera.Move(Left, 1, more...)");
    EXPECT_EQ(script.TreeUndoRecords().Text(), "3,0:0,0\r\n");
}

TEST_F(Model, APythonLineIsGreyPlainTextEditedInPlace) {
    struct EditWatch : TreeObserver {
        TreeNode* edited = nullptr;
        void LabelEditRequested(TreeNode* node) override { edited = node; }
    } watch;
    tree.AddObserver(&watch);
    TreeNode* line =
        tree.Add(tree.FirstRoot(), Relation::Child, "", "Camera.Move(Forward, 1, more...)");
    script.MakePythonLine(line);
    EXPECT_EQ(line->Text(), "Camera.Move(Forward, 1)");
    EXPECT_EQ(line->Tag(), "1");
    EXPECT_EQ(line->BackColor(), QColor(0xC0, 0xC0, 0xC0));
    EXPECT_EQ(watch.edited, line);

    script.AfterLabelEdit(line, "print 'hello'");
    EXPECT_EQ(line->Text(), "print 'hello'");
    script.UndoFromLog();
    EXPECT_EQ(line->Text(), "Camera.Move(Forward, 1)");
    tree.RemoveObserver(&watch);
}

TEST(AnimationNameList, NamesAreRemovedAndRenamedWholeOnly) {
    AnimationNameList names;
    names.SetText("Action1,Action10");
    names.Remove("action1");
    EXPECT_EQ(names.Text(), "Action10");
    names.SetText("Walk,Walker,Walk_2,Sidewalk");
    names.Rename("Walk", "Run");
    EXPECT_EQ(names.Text(), "Run,Walker,Walk_2,Sidewalk");
}
