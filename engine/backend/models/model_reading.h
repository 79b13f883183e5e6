#pragma once

#include "models/model_library.h"

#include <osg/Node>

#include <string>

namespace vessa::core {

// The steps of reading a model: the file into OpenSceneGraph, the graph
// into parts, each part's shape made ready to be drawn by the view.
osg::ref_ptr<osg::Node> readModelFile(const std::string& path); // throws ModelError
// path says what kind of file the graph came from.
Model partsOf(osg::Node* root, const std::string& fallbackName, const std::string& path);
void prepareShape(ModelPart& part);

// The full-detail shape inside what prepareShape made of it.
osg::Node* fullDetail(osg::Node* shape);

} // namespace vessa::core
