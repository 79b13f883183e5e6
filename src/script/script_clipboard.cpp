#include "script/script_clipboard.h"

#include "controls/tree_control.h"
#include "script/script_icons.h"
#include "script/script_line.h"
#include "script/script_lines_text.h"
#include "script/script_model.h"
#include "script/tree_walks.h"

namespace vessa {

namespace {

// What stands behind the last " = " of an animation's text: its block word.
QString blockOfAnimation(const QString& text) {
    return text.mid(text.lastIndexOf(QStringLiteral(" = ")) + 3);
}

// The first n from 1 for which key_n is no key of the tree.
int FindFreeKeySuffix(const TreeControl& tree, const QString& key) {
    int n = 1;
    while (tree.NodeByKey(key + u'_' + QString::number(n)))
        ++n;
    return n;
}

// The icons inside what was pasted: lines read from text come without any.
void refreshBlockIcons(TreeNode* node) {
    RefreshChildIcons(node);
    for (TreeNode* child = node->Child(); child; child = child->Next())
        refreshBlockIcons(child);
}

} // namespace

const TreeNode* ScriptClipboard::Copied() const {
    const TreeNode* root = model_.CopyBuffer().FirstRoot();
    return root ? root->Child() : nullptr;
}

void ScriptClipboard::Copy(const TreeNode* node) {
    if (!node)
        return;
    TreeControl& buffer = model_.CopyBuffer();
    buffer.Clear();
    TreeNode* root = buffer.AddRoot(QString(), QString());
    AddNodes(buffer.Add(root, Relation::Child, node->Key(), QString()), node, {});
}

void ScriptClipboard::Cut(TreeNode* node) {
    if (!node)
        return;
    Copy(node);
    model_.DeleteNode(node);
}

TreeNode* ScriptClipboard::Paste() {
    const TreeNode* copied = Copied();
    return copied ? PasteCopy(copied) : nullptr;
}

QString ScriptClipboard::PasteText(const QString& text) {
    TreeControl read;
    if (QString problem = ReadScriptLines(text, read); !problem.isEmpty())
        return problem;
    if (!PasteCopy(read.FirstRoot()))
        return QStringLiteral("The script has no animation to paste the lines into. Make one "
                              "first: right-click the script and choose \"Add New Action\".");
    return {};
}

TreeNode* ScriptClipboard::PasteCopy(const TreeNode* copied) {
    TreeControl& tree = model_.TreeView1();
    TreeNode* selected = tree.SelectedItem();
    const QString& copiedText = copied->Text();
    QString text = copiedText;
    TreeNode* pasted = nullptr;
    if (IsAnimationText(copiedText) && !selected) {
        // A new animation, under a name of its own.
        QString name = AnimationName(copiedText);
        QString key = copied->Key().isEmpty() ? name.toLower() : copied->Key();
        if (tree.NodeByKey(key)) {
            const QString suffix = u'_' + QString::number(FindFreeKeySuffix(tree, key));
            key += suffix;
            name += suffix;
        }
        text = name + QStringLiteral(" = ") + blockOfAnimation(copiedText);
        pasted = tree.FirstRoot() ? tree.Add(tree.FirstRoot(), Relation::Last, key, text)
                                  : tree.AddRoot(key, text);
        model_.AnimationNames().Append(name);
    } else if (IsAnimationText(copiedText)) {
        // An animation inside another runs as a block that keeps its name as a label.
        text = blockOfAnimation(copiedText) + QStringLiteral(" : ") + AnimationName(copiedText);
        pasted = tree.Add(selected, IsBlock(selected->Text()) ? Relation::Child : Relation::Next,
                          QString(), text);
    } else if (!selected) {
        // A line with nothing selected goes to the end of the newest animation; a script
        // without animations has nowhere to put it.
        if (!tree.FirstRoot())
            return nullptr;
        pasted = tree.Add(tree.FirstRoot()->LastSibling(), Relation::Child, QString(), text);
    } else {
        pasted = tree.Add(selected, IsBlock(selected->Text()) ? Relation::Child : Relation::Next,
                          QString(), text);
    }
    AddNodes(pasted, copied, {});
    tree.SetText(pasted, text);
    model_.UndoLog(UndoOperation::Added, pasted);
    RefreshChildIcons(pasted->Parent());
    refreshBlockIcons(pasted);
    tree.EnsureVisible(pasted);
    return pasted;
}

} // namespace vessa
