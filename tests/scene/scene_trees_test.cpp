#include "controls/tree_copy.h"
#include "scene/scene_trees.h"

#include <gtest/gtest.h>

using namespace vessa;

namespace {

// Scene > Bunny (model) > Head (model part) > Ear; Scene > Sun (light).
struct Trees {
    SceneTrees trees;
    TreeNode *scene, *bunny, *head, *ear, *sun;

    Trees() {
        TreeControl& t = trees.ObjectTree;
        scene = t.AddRoot(QStringLiteral("k1"), QStringLiteral("Scene"));
        t.SetImage(scene, object_images::Scene);
        t.SetTag(scene, QStringLiteral("Scene"));
        bunny = add(scene, QStringLiteral("k2"), QStringLiteral("Bunny"), object_images::Model);
        head = add(bunny, QStringLiteral("k3"), QStringLiteral("Bunny.Head"),
                   object_images::ModelPart);
        ear = add(head, QStringLiteral("k4"), QStringLiteral("Bunny.Head.Ear"),
                  object_images::ModelPart);
        sun = add(scene, QStringLiteral("k5"), QStringLiteral("Sun"), object_images::Light);
        t.SetExpanded(scene, true);
        t.SetExpanded(bunny, true);
    }

    TreeNode* add(TreeNode* parent, const QString& key, const QString& tag, int image) {
        TreeControl& t = trees.ObjectTree;
        TreeNode* node = t.Add(parent, Relation::Child, key, tag);
        t.SetTag(node, tag);
        t.SetImage(node, image);
        return node;
    }
};

} // namespace

TEST(SetNodeLabels, LabelsAreNamesRelativeToTheOwnerAndChildrenFollow) {
    Trees t;
    SetNodeLabels(t.head, t.head->Tag());
    EXPECT_EQ(t.head->Text(), QStringLiteral("Head"));
    EXPECT_EQ(t.ear->Text(), QStringLiteral("Ear"));
    // A name that does not start with the owner's keeps its label; case is ignored.
    SetNodeLabels(t.head, QStringLiteral("Hare.Head"));
    EXPECT_EQ(t.head->Text(), QStringLiteral("Head"));
    SetNodeLabels(t.head, QStringLiteral("BUNNY.Nose"));
    EXPECT_EQ(t.head->Text(), QStringLiteral("Nose"));
    // Grandchildren are not visited.
    t.trees.ObjectTree.SetText(t.ear, QStringLiteral("unchanged"));
    SetNodeLabels(t.bunny, QStringLiteral("Bunny"));
    EXPECT_EQ(t.ear->Text(), QStringLiteral("unchanged"));
}

TEST(ObjectTree2Update, RootOpenRestClosedGreysWhatCannotBeChosenAndAddsAnywhere) {
    Trees t;
    ObjectTree2_Update(t.trees);
    const TreeControl& copy = t.trees.ObjectTree2;
    ASSERT_EQ(copy.RootCount(), 2);
    const TreeNode* scene = copy.RootAt(0);
    EXPECT_TRUE(scene->Expanded());
    EXPECT_EQ(scene->ForeColor(), kGreyedOut);
    const TreeNode* bunny = scene->ChildAt(0);
    EXPECT_FALSE(bunny->Expanded());
    EXPECT_NE(bunny->ForeColor(), kGreyedOut);
    EXPECT_EQ(bunny->ChildAt(0)->ForeColor(), kGreyedOut); // a model part
    EXPECT_EQ(scene->ChildAt(1)->Tag(), QStringLiteral("Sun"));
    const TreeNode* anywhere = copy.RootAt(1);
    EXPECT_EQ(anywhere->Text(), QStringLiteral("AnyWhere"));
    EXPECT_EQ(anywhere->Tag(), QStringLiteral("Anywhere"));
    EXPECT_EQ(anywhere->Image(), object_images::ScenePart);
    // A rebuild starts again from nothing.
    ObjectTree2_Update(t.trees);
    EXPECT_EQ(copy.Count(), t.trees.ObjectTree.Count() + 1);
}

TEST(CopyNodes, MarkedNodeIsSelectedOrGreyedWithEverythingBelowIt) {
    Trees t;
    TreeControl picker;
    CopyNodes(picker, t.scene, picker.AddRoot(QString(), QString()), true, false,
              QStringLiteral("bunny.head"), false);
    EXPECT_EQ(picker.SelectedItem()->Tag(), QStringLiteral("Bunny.Head"));
    EXPECT_EQ(picker.DropHighlight(), picker.SelectedItem());
    EXPECT_TRUE(picker.FirstRoot()->ChildAt(0)->Expanded()); // kept

    TreeControl greyed;
    CopyNodes(greyed, t.scene, greyed.AddRoot(QString(), QString()), false, false,
              QStringLiteral("Bunny.Head"), true);
    const TreeNode* bunny = greyed.FirstRoot()->ChildAt(0);
    EXPECT_NE(bunny->ForeColor(), kGreyedOut);
    EXPECT_EQ(bunny->ChildAt(0)->ForeColor(), kGreyedOut);
    EXPECT_EQ(bunny->ChildAt(0)->ChildAt(0)->ForeColor(), kGreyedOut);
    EXPECT_FALSE(greyed.SelectedItem());
}

TEST(InitSoundTree, TheJunkyardHasItsTwoHoldersAndTheListIsEmpty) {
    SceneTrees trees;
    trees.SoundTree.AddRoot(QStringLiteral("s1"), QStringLiteral("Old"));
    InitSoundTree(trees);
    EXPECT_EQ(trees.SoundTree.Count(), 0);
    ASSERT_EQ(trees.SoundTreeJunkyard.RootCount(), 2);
    EXPECT_EQ(trees.SoundTreeJunkyard.RootAt(0)->Key(), QStringLiteral("NonSceneSounds"));
    EXPECT_EQ(trees.SoundTreeJunkyard.RootAt(1)->Text(), QStringLiteral("Sound Junk"));
}
