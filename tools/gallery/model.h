#pragma once

#include "recipe.h"

#include <osg/Geometry>
#include <osg/Group>

#include <filesystem>
#include <vector>

namespace gallery {

// The object as a scene graph: a group named after it, each part a named
// transform placed at its pivot with its geometry relative to the pivot.
osg::ref_ptr<osg::Group> buildModel(const ObjectRecipe& recipe);

// Writes the model in OpenSceneGraph's binary format under the object file's
// own name. Returns false, with a message on standard error, if it could not.
bool writeModel(const osg::Node& model, const std::filesystem::path& file);

// The vertex indices of a geometry's triangles, three by three, whatever
// primitive sets it is made of.
std::vector<unsigned> triangleIndices(osg::Geometry& geometry);

} // namespace gallery
