#include "controls/node_ref.h"

#include "controls/tree_control.h"

namespace vessa {

NodeRef NodeRef::To(TreeControl& tree, const TreeNode* node) {
    return node ? NodeRef{&tree, node->Index()} : NodeRef{};
}

TreeNode* NodeRef::Get() const {
    return Tree ? Tree->Node(Index) : nullptr;
}

} // namespace vessa
