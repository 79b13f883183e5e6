#pragma once

namespace vessa {

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
