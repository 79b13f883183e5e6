#pragma once

#include <QFont>
#include <QPoint>
#include <QRect>

namespace vessa {

class TreeNode;

// Where a tree control shows its nodes: what the mouse handlers of a tree need from
// its window. Points and rectangles are pixels in the tree's viewport.
class TreeGeometry {
public:
    virtual ~TreeGeometry() = default;
    // The node on the row under the point, from its icon rightwards; nullptr elsewhere.
    virtual TreeNode* HitTest(const QPoint& point) const = 0;
    // The node of the row at height y, wherever across the row the point lies, the
    // indentation and the blank right of the text included; nullptr below the last row.
    virtual TreeNode* NodeOnRow(int y) const = 0;
    // Where the node's text is drawn: its left edge is the left edge of the first glyph.
    // Empty for a node that is not shown.
    virtual QRect NodeRect(const TreeNode* node) const = 0;
    virtual int ItemHeight() const = 0;
    // How far a child's row stands in from its parent's.
    virtual int Indentation() const = 0;
    // The font the node texts are drawn in.
    virtual QFont TextFont() const = 0;
    // 1440 / the screen's logical dots per inch.
    virtual double TwipsPerPixel() const = 0;
};

} // namespace vessa
