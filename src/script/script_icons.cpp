#include "script/script_icons.h"

#include "controls/tree_control.h"
#include "script/script_line.h"

#include <algorithm>

namespace vessa {

void RefreshChildIcons(TreeNode* parent) {
    if (!parent || !IsBlock(parent->Text()))
        return;
    const bool inOrder = IsInOrderBlock(parent->Text());
    int number = 0;
    for (TreeNode* child = parent->Child(); child; child = child->Next()) {
        ++number;
        const int image =
            inOrder ? std::min(icons::InOrder + number, icons::LastNumber) : icons::Together;
        parent->Owner().SetImage(child, image);
    }
}

void RefreshTreeIcons(TreeNode* node) {
    for (; node; node = node->Next()) {
        RefreshChildIcons(node);
        RefreshTreeIcons(node->Child());
    }
}

} // namespace vessa
