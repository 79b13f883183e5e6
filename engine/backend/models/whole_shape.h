#pragma once

#include "models/model_library.h"

#include <osg/Geode>
#include <osg/Matrixd>
#include <osg/Node>
#include <osg/ref_ptr>

#include <utility>
#include <vector>

namespace vessa::core {

struct MergedShape {
    osg::ref_ptr<osg::Geode> geode;
    size_t meshes = 0; // how many went into it
};

// Shapes, each placed by its matrix, merged into as few geometries as their
// looks allow: every mesh that is only coloured into one, drawn in its
// colours with the view's own material (one drawing instead of one for each
// colour), each pictured or see-through look into one of its own. For
// lighter copies: up close, each mesh keeps its own material.
MergedShape mergedShape(const std::vector<std::pair<osg::Node*, osg::Matrixd>>& placed);

// A whole object of a model file: every part's shape, placed where the file
// places it about the object, merged (see mergedShape). Its lighter copies
// (lighterShape) are drawn instead of an object and its parts while the
// object is small on screen and stands as its file has it, so that a crowd
// costs about one drawing an object, not one a part and colour.
MergedShape wholeShape(const Model& model);

} // namespace vessa::core
