#include "base/run_time_error.h"
#include "controls/tree_control.h"
#include "controls/tree_item_model.h"

#include <QAbstractItemModelTester>
#include <QRandomGenerator>

#include <gtest/gtest.h>

using namespace vessa;

namespace {

QStringList Texts(const TreeNode* first) {
    QStringList texts;
    for (const TreeNode* node = first; node; node = node->Next())
        texts << node->Text();
    return texts;
}

} // namespace

TEST(TreeControl, AddsByEachRelationAndNavigates) {
    TreeControl tree;
    TreeNode* root = tree.AddRoot("a", "A");
    TreeNode* middle = tree.Add(root, Relation::Child, "", "m");
    tree.Add(middle, Relation::Previous, "", "before m");
    tree.Add(middle, Relation::Next, "", "after m");
    tree.Add(middle, Relation::First, "", "first");
    tree.Add(middle, Relation::Last, "", "last");
    TreeNode* second = tree.Add(root, Relation::Next, "", "B");

    EXPECT_EQ(Texts(root->Child()), QStringList({"first", "before m", "m", "after m", "last"}));
    EXPECT_EQ(middle->Previous()->Text(), "before m");
    EXPECT_EQ(middle->FirstSibling()->Text(), "first");
    EXPECT_EQ(middle->LastSibling()->Text(), "last");
    EXPECT_EQ(middle->Parent(), root);
    EXPECT_EQ(middle->Depth(), 2);
    EXPECT_EQ(root->Children(), 5);
    EXPECT_EQ(root->Parent(), nullptr);
    EXPECT_EQ(root->LastSibling(), second);
    EXPECT_EQ(tree.NodeByKey("a"), root);
    EXPECT_EQ(tree.Count(), 7);
}

TEST(TreeControl, RemovingANodeTakesItsSubtreeKeysAndSelection) {
    TreeControl tree;
    TreeNode* root = tree.AddRoot("walk", "Walk = DoInOrder");
    TreeNode* block = tree.Add(root, Relation::Child, "inner", "DoTogether");
    TreeNode* line = tree.Add(block, Relation::Child, "", "Camera.Wait(1)");
    const int lineIndex = line->Index();
    tree.SetSelectedItem(line);
    tree.SetDropHighlight(block);

    tree.Remove(block->Index());

    EXPECT_EQ(root->Children(), 0);
    EXPECT_EQ(tree.Node(lineIndex), nullptr);
    EXPECT_EQ(tree.NodeByKey("inner"), nullptr);
    EXPECT_EQ(tree.SelectedItem(), nullptr);
    EXPECT_EQ(tree.DropHighlight(), nullptr);
    // The key is free again, and indexes are never reused.
    TreeNode* again = tree.Add(root, Relation::Child, "inner", "DoInOrder");
    EXPECT_GT(again->Index(), lineIndex);
}

TEST(TreeControl, AKeyIsUniqueAndATakenOneIsRefusedAsTheControlsError) {
    TreeControl tree;
    TreeNode* first = tree.AddRoot("action1", "Action1 = DoInOrder");
    TreeNode* second = tree.AddRoot("action2", "Action2 = DoInOrder");
    try {
        tree.AddRoot("action1", "Again");
        FAIL() << "a taken key was accepted";
    } catch (const RunTimeError& error) {
        EXPECT_EQ(error.number(), RunTimeError::KeyNotUnique);
    }
    EXPECT_THROW(tree.SetKey(second, "action1"), RunTimeError);
    EXPECT_EQ(second->Key(), "action2");
    tree.SetKey(first, "walk");
    EXPECT_EQ(tree.NodeByKey("walk"), first);
    EXPECT_EQ(tree.NodeByKey("action1"), nullptr);
    EXPECT_THROW(tree.Remove(9999), RunTimeError);
}

TEST(TreeItemModel, StaysAConsistentQtModelThroughRandomChanges) {
    TreeControl tree;
    TreeItemModel model(tree);
    QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    QRandomGenerator random(47);
    std::vector<int> indexes;
    for (int step = 0; step < 400; ++step) {
        TreeNode* relative =
            indexes.empty() ? nullptr : tree.Node(indexes[random.bounded(int(indexes.size()))]);
        const int action = random.bounded(10);
        if (!relative || action < 6) {
            const auto relation = static_cast<Relation>(random.bounded(5));
            TreeNode* node = tree.Add(relative, relation, "", QString::number(step));
            indexes.push_back(node->Index());
        } else if (action < 8) {
            tree.SetText(relative, "changed " + QString::number(step));
        } else {
            tree.Remove(relative->Index());
            indexes.erase(std::remove_if(indexes.begin(), indexes.end(),
                                         [&](int index) { return !tree.Node(index); }),
                          indexes.end());
        }
    }
    tree.Clear();
    EXPECT_EQ(model.rowCount(), 0);
}

TEST(TreeItemModel, DescribesDepthAndParentForScreenReaders) {
    TreeControl tree;
    TreeItemModel model(tree);
    TreeNode* root = tree.AddRoot("hop", "Hop = DoInOrder");
    TreeNode* line = tree.Add(root, Relation::Child, "", "Camera.Move(Forward, 1, more...)");

    const QModelIndex index = model.IndexOf(line);
    EXPECT_EQ(model.data(index, Qt::AccessibleDescriptionRole).toString(),
              "Level 2, inside Hop = DoInOrder");
    EXPECT_EQ(model.data(model.IndexOf(root), Qt::AccessibleDescriptionRole).toString(), "Level 1");
    EXPECT_EQ(model.parent(index), model.IndexOf(root));
}
