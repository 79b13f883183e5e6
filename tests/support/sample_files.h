#pragma once

// Files of every kind the readers take, made here, and damaged copies of
// them, the same for the same seed. Shared by the readers' tests and their
// benchmark; needs OpenSceneGraph and libsndfile, not Qt.

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace vessa::samples {

// A folder of its own under the system's temporary folder, removed with
// everything in it when this goes.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    std::string file(const std::string& name) const { return (path_ / name).string(); }

private:
    std::filesystem::path path_;
};

using Bytes = std::vector<char>;

Bytes readBytes(const std::string& path);
void writeBytes(const std::string& path, const Bytes& bytes);

// An object as the gallery makes them, with parts, materials, a shape big
// enough for a lighter copy, and a picture held inside. Its parts: Bunny,
// Head, LeftEar, Skin.
void writeModelFile(const std::string& path);
// Name.obj with Name.mtl and the picture it names (Name.png); parts Base and Top.
void writeObjFile(const std::string& folder, const std::string& name);
// Parts Pole and Flag.
void write3dsFile(const std::string& path);
// A second of a tone. format: a libsndfile major format such as SF_FORMAT_WAV.
void writeSoundFile(const std::string& path, int format, int channels);

// A damaged copy: bits turned over, cut short, random bytes, huge counts
// written over numbers of the format, or (in text) huge numbers written
// over numbers, chosen by the seed.
Bytes damaged(const Bytes& original, std::uint32_t seed);

} // namespace vessa::samples
