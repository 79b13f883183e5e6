#include "scene/scene_trees.h"

#include "controls/tree_copy.h"

namespace vessa {

namespace {

bool startsWithName(const QString& text, const QString& prefix) {
    return text.left(prefix.size()).compare(prefix, Qt::CaseInsensitive) == 0;
}

// The grey of a node that can't be chosen, by its kind or by a marked owner.
bool isGreyed(const TreeNode* source, bool greyImage7, const QString& markTag, bool greyMarked) {
    if (greyImage7 && source->Image() == object_images::ModelPart)
        return true;
    if (source->Image() == object_images::ScenePart || source->Image() == object_images::Scene)
        return true;
    if (!greyMarked)
        return false;
    for (const TreeNode* node = source; node && node->Parent(); node = node->Parent())
        if (node->Tag().compare(markTag, Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

} // namespace

void SetNodeLabels(TreeNode* node, const QString& name) {
    TreeControl& tree = node->Owner();
    if (name.contains(QLatin1Char('.')) && node->Parent()) {
        const QString owner = node->Parent()->Tag() + QLatin1Char('.');
        if (startsWithName(name, owner))
            tree.SetText(node, name.mid(owner.size()));
    }
    const QString prefix = name + QLatin1Char('.');
    for (TreeNode* child = node->Child(); child; child = child->Next())
        if (startsWithName(child->Tag(), prefix))
            tree.SetText(child, child->Tag().mid(prefix.size()));
}

void CopyNodes(TreeControl& tree, const TreeNode* source, TreeNode* target, bool keepExpanded,
               bool greyImage7, const QString& markTag, bool greyMarked) {
    CopySubtree(target, source, [&](TreeNode* copy, const TreeNode* original) {
        if (isGreyed(original, greyImage7, markTag, greyMarked))
            tree.SetForeColor(copy, kGreyedOut);
        if (!copy->Parent())
            tree.SetExpanded(copy, true);
        else
            tree.SetExpanded(copy, keepExpanded && original->Expanded());
        if (!greyMarked && !markTag.isEmpty() &&
            copy->Tag().compare(markTag, Qt::CaseInsensitive) == 0) {
            tree.SetSelectedItem(copy);
            tree.SetDropHighlight(copy);
        }
    });
}

void ObjectTree2_Update(SceneTrees& trees) {
    TreeControl& copy = trees.ObjectTree2;
    copy.Clear();
    TreeNode* root = copy.AddRoot(QString(), QString());
    if (TreeNode* scene = trees.ObjectTree.FirstRoot())
        CopyNodes(copy, scene, root, false, true, QString(), false);
    // Not an object: the event happens wherever the user clicks.
    TreeNode* anywhere = copy.Add(root, Relation::Next, QString(), QStringLiteral("AnyWhere"));
    copy.SetImage(anywhere, object_images::ScenePart);
    copy.SetTag(anywhere, QStringLiteral("Anywhere"));
}

void InitSoundTree(SceneTrees& trees) {
    trees.SoundTree.Clear();
    trees.SoundTreeJunkyard.Clear();
    for (const auto& [key, text] :
         {std::pair{"NonSceneSounds", "NonSceneSounds"}, std::pair{"Root", "Sound Junk"}}) {
        TreeNode* holder =
            trees.SoundTreeJunkyard.AddRoot(QString::fromLatin1(key), QString::fromLatin1(text));
        trees.SoundTreeJunkyard.SetImage(holder, object_images::Sound);
    }
}

} // namespace vessa
