#pragma once

#include <osg/Node>
#include <osg/ref_ptr>

namespace vessa::core {

struct LighterShape {
    osg::ref_ptr<osg::Node> shape;
    int triangles = 0;
};

// A copy of a shape with fewer triangles, for when it is small on screen:
// its vertices are gathered into a grid of cellsAcross cells along its
// longest side, each cell's vertices that face the same way and are of the
// same piece of the shape's pictures made one (shaded with their mean
// normal), and triangles that shrank to nothing dropped. The vertices on two
// sides of a seam in a picture stay apart, so the picture stays where it was.
// Quick (two passes over the triangles and a sort of the vertices), so big
// files still load at once; the shape itself is left as it was.
LighterShape lighterShape(osg::Node* shape, int cellsAcross);

} // namespace vessa::core
