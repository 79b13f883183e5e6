#pragma once

#include "models/model_library.h"
#include "reading/description.h"

#include <osg/Node>

#include <string>

namespace vessa::core {

class ReaderProcess;

// A model file read by the reader program (reading/), its description
// checked and made into parts whose shapes are ready to be drawn.
Model readModel(const std::string& path, ReaderProcess& reader); // throws ModelError

// The checked description alone, as the reader program gave it: what a
// model is made of, for drawing it elsewhere (a web page).
ModelDescription readDescription(const std::string& path,
                                 ReaderProcess& reader); // throws ModelError

// The parts of a checked description, each with a shape made of its meshes
// (and a lighter copy of a big shape for when it is small on screen).
// fallbackName names a model whose file gives it no name.
Model modelFrom(const ModelDescription& description, const std::string& fallbackName);

// The full-detail shape inside what modelFrom made of it.
osg::Node* fullDetail(osg::Node* shape);

} // namespace vessa::core
