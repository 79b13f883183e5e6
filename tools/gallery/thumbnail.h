#pragma once

#include <osg/Node>

#include <QImage>

namespace gallery {

// A square picture of the model seen from the front, a little to its left and
// above, drawn without a graphics card: flat-shaded triangles painted from the
// back to the front on a light background.
QImage drawThumbnail(osg::Node& model, int size);

} // namespace gallery
