#include "base/run_time_error.h"
#include "controls/tree_control.h"
#include "script/tree_walks.h"

#include <gtest/gtest.h>

using namespace vessa;

namespace {

// Hop = DoInOrder
//     Camera.Move(Forward, 1, more...)
//     Walk : DoTogether
//         Bunny.Turn(Left, 1/4, Style=BeginGently-EndAbruptly, more...)
//         print 'hi'            (a Python line)
// Spin = DoTogether
struct Script : ::testing::Test {
    TreeControl tree;
    TreeNode* hop = tree.AddRoot("hop", "Hop = DoInOrder");
    TreeNode* move = tree.Add(hop, Relation::Child, "", "Camera.Move(Forward, 1, more...)");
    TreeNode* walk = tree.Add(hop, Relation::Child, "", "Walk : DoTogether");
    TreeNode* turn = tree.Add(walk, Relation::Child, "",
                              "Bunny.Turn(Left, 1/4, Style=BeginGently-EndAbruptly, more...)");
    TreeNode* python = tree.Add(walk, Relation::Child, "", "print 'hi'");
    TreeNode* spin = tree.AddRoot("spin", "Spin = DoTogether");

    void SetUp() override {
        tree.SetTag(python, "1");
        tree.SetExpanded(hop, true);
    }
};

} // namespace

TEST_F(Script, NodePathCountsSiblingsFromTheFirstRootDown) {
    EXPECT_EQ(NodePath(hop), "0");
    EXPECT_EQ(NodePath(spin), "1");
    EXPECT_EQ(NodePath(walk), "0:1");
    EXPECT_EQ(NodePath(python), "0:1:1");
    EXPECT_EQ(ResolvePath(tree, "0:1:1").Node, python);
}

TEST_F(Script, ResolvingAPathThatNoLongerFitsStopsWhereItCanAndSaysWhy) {
    PathWalk found = ResolvePath(tree, "0:5");
    EXPECT_EQ(found.Node, this->walk);
    EXPECT_TRUE(found.RanOffTheEnd);
    EXPECT_FALSE(found.NoChild);

    found = ResolvePath(tree, "1:0");
    EXPECT_EQ(found.Node, spin);
    EXPECT_TRUE(found.NoChild);

    found = ResolvePath(tree, "7:3:2");
    EXPECT_EQ(found.Node, spin);
    EXPECT_TRUE(found.RanOffTheEnd);

    TreeControl empty;
    EXPECT_EQ(ResolvePath(empty, "0").Node, nullptr);
    EXPECT_THROW(ResolvePath(tree, "0:x"), RunTimeError);
}

TEST_F(Script, AddNodesCopiesFieldsAndSubtree) {
    TreeControl junkyard;
    TreeNode* undoMe = junkyard.AddRoot("", "UndoMe");
    TreeNode* copy = junkyard.Add(undoMe, Relation::Child, "", "");
    tree.SetBackColor(python, QColor(0xC0, 0xC0, 0xC0));
    AddNodes(copy, hop, {});
    EXPECT_EQ(copy->Text(), "Hop = DoInOrder");
    EXPECT_TRUE(copy->Expanded());
    EXPECT_EQ(copy->Key(), "");
    const TreeNode* copiedPython = copy->ChildAt(1)->ChildAt(1);
    EXPECT_EQ(copiedPython->Tag(), "1");
    EXPECT_EQ(copiedPython->BackColor(), QColor(0xC0, 0xC0, 0xC0));

    TreeNode* collapsed = junkyard.Add(undoMe, Relation::Child, "", "");
    AddNodes(collapsed, hop, {false, "", ""});
    EXPECT_FALSE(collapsed->Expanded());
}

TEST_F(Script, AddNodesGreysTheExcludedAndSelectsTheWanted) {
    tree.SetTag(move, "Camera");
    tree.SetTag(turn, "Bunny");
    TreeControl picker;
    TreeNode* scene = picker.AddRoot("", "Scene");
    AddNodes(picker.Add(scene, Relation::Child, "", ""), hop, {true, "camera", "BUNNY"});
    const TreeNode* copy = scene->Child();
    EXPECT_EQ(copy->ChildAt(0)->ForeColor(), QColor(0xC0, 0xC0, 0xC0));
    EXPECT_EQ(picker.SelectedItem(), copy->ChildAt(1)->ChildAt(0));
    EXPECT_EQ(picker.DropHighlight(), picker.SelectedItem());
}

TEST_F(Script, TextWalksWriteBlocksAsCallsAndLinesNormalised) {
    QString backup;
    TraverseTree(hop, "", backup);
    EXPECT_EQ(backup, "Hop = DoInOrder(\r\n"
                      "\tCamera.Move(Forward, 1),\r\n"
                      "\tWalk : DoTogether(\r\n"
                      "\t\tBunny.Turn(Left, 1/4, Style=BeginGently),\r\n"
                      "\t\tprint 'hi',\r\n"
                      "\t),\r\n"
                      ")\r\n");
    QString line;
    TraverseTreeForLine(walk, "\t", line);
    EXPECT_EQ(line, "\tDoTogether(\r\n"
                    "\t\tBunny.Turn(Left, 1/4, Style=BeginGently),\r\n"
                    "\t\tprint 'hi',\r\n"
                    "\t),\r\n");
    QString script;
    TraverseTreeForScript(spin, "", script);
    EXPECT_EQ(script, "DoTogether(\r\n)\r\n");
}

TEST_F(Script, TheFileWalkWritesFourLinesPerNodeAcrossAllAnimations) {
    QString file;
    TraverseTreeToFile(hop, 1, file);
    EXPECT_EQ(file,
              "Hop = DoInOrder\r\n1\r\n1\r\n\r\n"
              "Camera.Move(Forward, 1, more...)\r\n2\r\n0\r\n\r\n"
              "Walk : DoTogether\r\n2\r\n0\r\n\r\n"
              "Bunny.Turn(Left, 1/4, Style=BeginGently-EndAbruptly, more...)\r\n3\r\n0\r\n\r\n"
              "print 'hi'\r\n3\r\n0\r\n1\r\n"
              "Spin = DoTogether\r\n1\r\n0\r\n\r\n");
}

TEST_F(Script, RenamingAnObjectChangesCallsAndKeywordValuesOnly) {
    tree.SetText(spin, "Spin = DoTogether");
    TreeNode* point = tree.Add(spin, Relation::Child, "", "Camera.PointAt(Bunny, more...)");
    TreeNode* seen =
        tree.Add(spin, Relation::Child, "", "Camera.Move(Forward, 1, AsSeenBy=bunny, more...)");
    // Other objects whose names hold the old one are not renamed with it.
    const QStringList others = {"BigBunny.Move(Forward, 1, more...)",
                                "Camera.Move(Forward, 1, AsSeenBy=Bunny2, more...)",
                                "Camera.Move(Forward, 1, AsSeenBy=Bunny_é, more...)"};
    for (const QString& other : others)
        tree.Add(spin, Relation::Child, "", other);
    TraverseTreeReplaceString(hop, "Bunny", "Hare");
    EXPECT_EQ(turn->Text(), "Hare.Turn(Left, 1/4, Style=BeginGently-EndAbruptly, more...)");
    EXPECT_EQ(point->Text(), "Camera.PointAt(Bunny, more...)");
    EXPECT_EQ(seen->Text(), "Camera.Move(Forward, 1, AsSeenBy=Hare, more...)");
    for (int row = 0; row < others.size(); ++row)
        EXPECT_EQ(spin->ChildAt(2 + row)->Text(), others[row]);
}
