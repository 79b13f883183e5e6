#pragma once

#include <QColor>
#include <functional>

namespace vessa {

class TreeNode;

// The grey of nodes that can't be chosen or are left out.
inline const QColor kGreyedOut(0xC0, 0xC0, 0xC0);

// Finishes one copied node: source is the node it was copied from.
using CopyFinish = std::function<void(TreeNode* copy, const TreeNode* source)>;

// Copies source's Text, Tag, Image, ForeColor and BackColor onto target, lets
// finish adjust the copy, then adds a copy of each child below target, in order,
// all the way down. target may belong to another tree than source.
void CopySubtree(TreeNode* target, const TreeNode* source, const CopyFinish& finish);

} // namespace vessa
