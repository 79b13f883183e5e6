#pragma once

#include <osg/Node>

#include <string>

namespace vessa::core {

// The engine's built-in shapes. A model without a file is a box one meter on
// each side, centered on its place; the object's size stretches it.
osg::Node* unitBox();

// Words standing up as solid letters, about one meter high, on the front of
// the object: they read left to right for whoever it faces.
osg::Node* textShape(const std::string& words);

} // namespace vessa::core
