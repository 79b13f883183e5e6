#pragma once

namespace vessa {

class TreeNode;

// Image numbers of the script's icons. Below a DoInOrder block the icons number the
// children 1 to 42 (images 11 to 52, the last also for every child after the 42nd);
// below a DoTogether block every child shows the together icon.
namespace icons {
constexpr int Together = 9;
constexpr int InOrder = 10; // the palette's DoInOrder block
constexpr int FirstNumber = 11;
constexpr int LastNumber = 52;
} // namespace icons

// Gives the children of a block the icons of its kind; nothing for nullptr or a line.
void RefreshChildIcons(TreeNode* parent);
// RefreshChildIcons for node, everything below it and its later siblings.
void RefreshTreeIcons(TreeNode* node);

} // namespace vessa
