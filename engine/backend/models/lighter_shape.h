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
// longest side, each cell's vertices that face the same way made one
// (shaded with their mean normal), and triangles that shrank to nothing
// dropped. Quick (one pass
// over the triangles), so big files still load at once; the shape itself is
// left as it was.
LighterShape lighterShape(osg::Node* shape, int cellsAcross);

} // namespace vessa::core
