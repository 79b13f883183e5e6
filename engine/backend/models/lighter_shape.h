#pragma once

#include <osg/Node>
#include <osg/ref_ptr>

namespace vessa::core {

// A copy of a shape with fewer triangles, for when it is small on screen:
// its vertices are gathered into a grid of cellsAcross cells along its
// longest side, each cell's vertices made one, and triangles that shrank to
// nothing dropped. Quick (one pass over the triangles), so big files still
// load at once; the shape itself is left as it was.
osg::ref_ptr<osg::Node> lighterShape(osg::Node* shape, int cellsAcross);

} // namespace vessa::core
