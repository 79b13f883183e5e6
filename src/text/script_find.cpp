#include "text/script_find.h"

#include "controls/tree_control.h"

namespace vessa {

QString lineAsShown(const QString& line) {
    // One pass that copies what stands between the markers: the find runs this on every
    // line, most of which end in one.
    static constexpr QStringView marker = u"more...";
    qsizetype at = indexIgnoringCase(line, marker, 0);
    if (at < 0)
        return line;
    const QStringView text(line);
    QString shown;
    shown.reserve(line.size());
    qsizetype copied = 0;
    for (; at >= 0; at = indexIgnoringCase(line, marker, at + marker.size())) {
        const qsizetype end = at + marker.size();
        if (at >= 2 && text.sliced(at - 2, 2) == u", ") {
            shown += text.sliced(copied, at - 2 - copied); // ", more..." goes
            copied = end;
        } else if (at >= 1 && text[at - 1] == u'(' && end < text.size() && text[end] == u')') {
            shown += text.sliced(copied, at - copied); // "(more...)" becomes "()"
            copied = end;
        }
    }
    shown += text.sliced(copied);
    return shown;
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
