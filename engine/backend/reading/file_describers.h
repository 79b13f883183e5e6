#pragma once

#include <string>

namespace vessa::core {

// The reader program's work on one file, with the readers of
// OpenSceneGraph and libsndfile: an answer of description.h. These run only
// inside the reader program, where a file that leads a reader astray can
// crash nothing but that one reading.

// Model files: .mdl (OpenSceneGraph's binary format under the engine's own
// name), .obj, .3ds and what else OpenSceneGraph reads; the pictures they
// name or hold come along as textures.
std::string describeModelFile(const std::string& path);

// Sound files, whatever libsndfile reads, as 16-bit samples.
std::string describeSoundFile(const std::string& path);

// Loads the readers the files above need, once, so that each reading
// starts without loading them again.
void prepareReaders();

} // namespace vessa::core
