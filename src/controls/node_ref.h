#pragma once

namespace vessa {

// What a drag of a node carries between the program's views: the node itself is the
// program's one DragNode; the data only tells a drop target that a node is coming.
inline constexpr char NodeDragMimeType[] = "application/x-vessa47-node";
// What a drag of a row of a list carries: the row's Key. The row is the list's selected
// one, which the press that began the drag chose.
inline constexpr char RowDragMimeType[] = "application/x-vessa47-row";

class TreeControl;
class TreeNode;

// A node held by its tree and Index, so that a removed node reads as none.
struct NodeRef {
    TreeControl* Tree = nullptr; // Not owned.
    int Index = 0;

    static NodeRef To(TreeControl& tree, const TreeNode* node);
    TreeNode* Get() const;
};

} // namespace vessa
