#pragma once

#include <osg/Node>

#include <QImage>

namespace gallery {

// A square picture of the model seen from the front, a little to its left and
// above, drawn without a graphics card: Lambert-shaded triangles with a depth
// test, on a light background.
QImage drawThumbnail(osg::Node& model, int size);

} // namespace gallery
