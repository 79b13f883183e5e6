#pragma once

#include "reading/description.h"
#include "reading/named_files.h"

#include <optional>
#include <string>

namespace vessa::core {

// A model file of another program (glTF, FBX, COLLADA, OBJ, 3DS, PLY, STL)
// read through Assimp into parts, their meshes and pictures. What it
// names is read from its folder only (ModelFolder), each file with a
// budget of reading. nullopt when Assimp can't read it. Reader program only.
std::optional<ModelDescription> describeWithAssimp(const std::string& path, ModelFolder& folder);

} // namespace vessa::core
