#include "controls/tree_copy.h"

#include "controls/tree_control.h"

namespace vessa {

void CopySubtree(TreeNode* target, const TreeNode* source, const CopyFinish& finish) {
    TreeControl& tree = target->Owner();
    tree.SetText(target, source->Text());
    tree.SetTag(target, source->Tag());
    tree.SetImage(target, source->Image());
    tree.SetForeColor(target, source->ForeColor());
    tree.SetBackColor(target, source->BackColor());
    finish(target, source);
    for (const TreeNode* child = source->Child(); child; child = child->Next())
        CopySubtree(tree.Add(target, Relation::Child, QString(), QString()), child, finish);
}

} // namespace vessa
