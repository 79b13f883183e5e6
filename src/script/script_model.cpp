#include "script/script_model.h"

#include "base/run_time_error.h"
#include "script/basic_text.h"
#include "script/script_host.h"
#include "script/script_icons.h"
#include "script/tree_walks.h"

#include <QColor>

namespace vessa {

ScriptModel::ScriptModel(ScriptHost& host)
    : host_(host), undo_(treeView1_, junkyard2_, animationNames_, host) {
    setDragSource(treeView1_, DragSource::ScriptLine);
    setDragSource(constructTree_, DragSource::Block);
    Initialize();
}

void ScriptModel::setDragSource(const TreeControl& tree, DragSource source) {
    for (auto& [known, kind] : dragSources_)
        if (known == &tree) {
            kind = source;
            return;
        }
    dragSources_.emplace_back(&tree, source);
}

DragSource ScriptModel::dragSourceOf(const TreeControl* tree) const {
    for (const auto& [known, kind] : dragSources_)
        if (known == tree)
            return kind;
    return DragSource::None;
}

void ScriptModel::Initialize() {
    constructTree_.Clear();
    for (const auto& [text, image] :
         {std::pair{"DoInOrder", icons::InOrder}, std::pair{"DoTogether", icons::Together}}) {
        TreeNode* block = constructTree_.AddRoot(QString(), QString::fromLatin1(text));
        constructTree_.SetImage(block, image);
        constructTree_.EnsureVisible(block);
    }
    junkyard2_.Clear();
    junkyard2_.AddRoot(QString(), QStringLiteral("UndoMe"));
    treeView1_.Clear();
    animationCounter_ = 1;
    TreeNode* first =
        treeView1_.AddRoot(QStringLiteral("action1"), QStringLiteral("Action1 = DoInOrder"));
    animationNames_.SetText(QStringLiteral("Action1"));
    animationCounter_ = 2;
    treeView1_.SetSelectedItem(first);
    commandLineTreeview_.Clear();
    commandLineTreeview_.AddRoot(QString(),
                                 DefaultLine(QStringLiteral("Camera"), QStringLiteral("Move")));
    // Records of another world would undo into this one.
    undo_.Clear();
}

void ScriptModel::UpdateNode(TreeNode* node, const QString& newValue, bool log) {
    const QString line = UpdatedLine(parse_, newValue);
    // A choice that leaves the line as it was is no change, and nothing to undo.
    if (line == node->Text())
        return;
    // Only lines of the script are recorded: the command line's is not part of a world.
    if (log && undoRecording_ && node->Text().contains(u'(') && treeView1_.Contains(node))
        UndoLog(UndoOperation::Changed, node);
    node->Owner().SetText(node, line);
}

void ScriptModel::MakeDefaultLine(TreeNode* node, const QString& commandName) {
    node->Owner().SetText(node, DefaultLine(parse_.ParsedObject, commandName));
}

TreeNode* ScriptModel::AddNewAnimation() {
    // A name the user gave by hand may hold the next key already: skip to a free one.
    while (treeView1_.NodeByKey(QStringLiteral("action%1").arg(animationCounter_)))
        ++animationCounter_;
    const QString name = QStringLiteral("Action%1").arg(animationCounter_);
    TreeNode* root = treeView1_.AddRoot(name.toLower(), AnimationText(name));
    UndoLog(UndoOperation::Added, root);
    animationNames_.Append(name);
    ++animationCounter_;
    return root;
}

TreeNode* ScriptModel::addLineToCurrentAnimation(const QString& text) {
    TreeNode* selected = treeView1_.SelectedItem();
    if (!treeView1_.FirstRoot())
        selected = AddNewAnimation();
    else if (!selected)
        selected = treeView1_.FirstRoot()->LastSibling();
    TreeNode* line = IsBlock(selected->Text()) || !selected->Parent()
                         ? treeView1_.Add(selected, Relation::Child, QString(), text)
                         : treeView1_.Add(selected, Relation::Next, QString(), text);
    UndoLog(UndoOperation::Added, line);
    RefreshChildIcons(line->Parent());
    treeView1_.SetSelectedItem(line);
    treeView1_.EnsureVisible(line);
    return line;
}

void ScriptModel::MakePythonLine(TreeNode* node) {
    TreeControl& tree = node->Owner();
    tree.SetText(node, text::Replace(node->Text(), u", more...", u""));
    tree.SetBackColor(node, PythonLineBack);
    tree.SetTag(node, PythonLineTag);
    tree.StartLabelEdit(node);
}

void ScriptModel::ChangeBlockKind(TreeNode* block) {
    UndoLog(UndoOperation::Changed, block);
    const QString& line = block->Text();
    treeView1_.SetText(block, IsInOrderBlock(line)
                                  ? text::Replace(line, u"DoInOrder", u"DoTogether")
                                  : text::Replace(line, u"DoTogether", u"DoInOrder"));
    RefreshChildIcons(block);
}

void ScriptModel::RemoveValue(TreeNode* node) {
    const int slot = CommandParameters(parse_.ParsedCommand).Optional.SlotOf(parse_.ClickedKind);
    if (slot >= 0)
        parse_.OptionalValue[slot] = UnsetValue;
    parse_.ClickedSlot = -1;
    UpdateNode(node, QString());
}

void ScriptModel::AfterLabelEdit(TreeNode* node, const QString& text) {
    if (node->Text() == text)
        return;
    if (treeView1_.Contains(node))
        UndoLog(UndoOperation::Changed, node);
    node->Owner().SetText(node, text);
}

bool ScriptModel::RenameAnimation(TreeNode* root, const QString& newName) {
    const QString key = newName.toLower();
    if (const TreeNode* holder = treeView1_.NodeByKey(key); holder && holder != root)
        return false;
    const QString& line = root->Text();
    const QString oldName = AnimationName(line);
    // The rows' records go first, so that undo finds them on top when it replays them;
    // the tree's record keeps the old key, which undo gives back.
    const int rows = host_.ReplaceInListView(oldName, newName);
    UndoLog(UndoOperation::Changed, root, nullptr, rows);
    treeView1_.SetKey(root, key);
    treeView1_.SetText(root, newName + line.mid(oldName.size()));
    animationNames_.Rename(oldName, newName);
    return true;
}

void ScriptModel::ReplaceObjectName(const QString& oldName, const QString& newName) {
    TraverseTreeReplaceString(treeView1_.FirstRoot(), oldName, newName);
}

bool ScriptModel::DeleteTakesEventRows(const TreeNode* node) const {
    return !node->Parent() && host_.FindInListView(node->Key());
}

void ScriptModel::DeleteNode(TreeNode* node) {
    const int rows = node->Parent() ? 0 : host_.RemoveFromListView(node->Key());
    if (IsAnimationToDelete(node->Text()))
        animationNames_.Remove(AnimationName(node->Text()));
    UndoLog(UndoOperation::Removed, node, nullptr, rows);
    TreeNode* parent = node->Parent();
    treeView1_.Remove(node->Index());
    treeView1_.SetSelectedItem(nullptr);
    treeView1_.SetDropHighlight(nullptr);
    RefreshChildIcons(parent);
}

void ScriptModel::UndoLog(UndoOperation operation, const TreeNode* node, const TreeNode* otherNode,
                          int count) {
    undo_.UndoLog(operation, node, otherNode, count);
}

} // namespace vessa
