#include "text/script_find.h"

#include "controls/tree_control.h"

namespace vessa {

QString lineAsShown(const QString& line) {
    static const QString marker = QStringLiteral("more...");
    if (!line.contains(marker, Qt::CaseInsensitive))
        return line;
    QString shown = line;
    shown.replace(QStringLiteral(", more..."), QString(), Qt::CaseInsensitive);
    return shown.replace(QStringLiteral("(more...)"), QStringLiteral("()"), Qt::CaseInsensitive);
}

TreeNode* nodeAfter(const TreeNode* node) {
    if (TreeNode* child = node->Child())
        return child;
    for (; node; node = node->Parent())
        if (TreeNode* next = node->Next())
            return next;
    return nullptr;
}

QString ScriptFind::Caption(Step step) {
    switch (step) {
    case Step::FindNext:
        return QStringLiteral("Find Next");
    case Step::FindAgain:
        return QStringLiteral("Find Again");
    case Step::Find:
        break;
    }
    return QStringLiteral("Find");
}

bool ScriptFind::FindButton_Click(const QString& target, const FindOptions& options) {
    TreeNode* first = tree_.FirstRoot();
    if (!first)
        return false;
    TreeNode* selected = tree_.SelectedItem();
    if (step_ != Step::FindNext) {
        StopNode = NodeRef::To(tree_, selected ? selected : first);
        step_ = Step::FindNext;
    }
    const TreeNode* stop = StopNode.Get();
    // With nothing selected the round begins on the first node, which is then also
    // where it ends; a stop node deleted since ends it after one whole round.
    TreeNode* node = selected ? nodeAfter(selected) : first;
    for (int visited = 0; visited <= tree_.Count(); ++visited, node = nodeAfter(node)) {
        if (!node)
            node = first;
        if (node == stop && (selected || visited > 0))
            break;
        if (node != selected && findText(lineAsShown(node->Text()), target, 0, options) >= 0) {
            tree_.SetSelectedItem(node);
            tree_.SetDropHighlight(node);
            tree_.EnsureVisible(node);
            return true;
        }
    }
    TreeNode* back = StopNode.Get();
    tree_.SetSelectedItem(back);
    tree_.SetDropHighlight(back);
    if (back)
        tree_.EnsureVisible(back);
    step_ = Step::FindAgain;
    return false;
}

} // namespace vessa
