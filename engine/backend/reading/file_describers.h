#pragma once

#include <string>

namespace vessa::core {

// The reader program's work on one file, with the readers of
// OpenSceneGraph, Assimp and libsndfile: an answer of description.h. These
// run only inside the reader program, where a file that leads a reader
// astray can crash nothing but that one reading.

// Model files of the kinds in formats.h: .mdl (OpenSceneGraph's binary
// format under the engine's own name) through OpenSceneGraph, the others
// through Assimp; the pictures they name or hold come along as textures,
// and the answer says which files they named.
std::string describeModelFile(const std::string& path);

// Sound files, whatever libsndfile reads, as 16-bit samples.
std::string describeSoundFile(const std::string& path);

// Loads the readers the files above need, once, so that each reading
// starts without loading them again.
void prepareReaders();

} // namespace vessa::core
