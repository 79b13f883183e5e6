#pragma once

// Model files as other programs write them (.obj with its .mtl, .3ds,
// .gltf with its .bin, .glb, .fbx, .stl), made here from one description, with a
// picture in a folder of its own (or held inside) and a camera where the
// format has cameras. Shared by the readers' tests, the view's and the
// benchmarks; needs OpenSceneGraph (for the picture), not Qt.

#include <array>
#include <string>
#include <vector>

namespace vessa::samples {

// A box of a model, in the file's axes: y up, its front toward +z.
struct Piece {
    std::string name;
    int parent = -1;           // an earlier piece; -1 for one at the file's top
    std::array<float, 3> at{}; // its middle, from its parent's (meters before scaling)
    std::array<float, 3> size{1, 1, 1};
    std::array<float, 3> color{1, 1, 1};
    bool pictured = false; // wears the picture: blue below, yellow above
};

struct ThirdPartyModel {
    std::vector<Piece> pieces;
    float scale = 1.0f; // every length times this
};

// A robot two meters tall (times scale) facing +z: a pictured Body, a Head
// on it with a red Nose in front, a magenta Tail behind the body.
ThirdPartyModel robot(float scale = 1.0f);

// Each writes folder/name.<ext> and what it names: the picture as
// folder/textures/skin.png for .obj (with name.mtl), .3ds and .gltf (with
// name.bin); a .glb holds its picture. .obj and .stl files have no camera,
// and pieces at the top of an .obj, .3ds or .stl file (none has a tree).
void writeObj(const ThirdPartyModel& model, const std::string& folder, const std::string& name);
void write3ds(const ThirdPartyModel& model, const std::string& folder, const std::string& name);
void writeGltf(const ThirdPartyModel& model, const std::string& folder, const std::string& name);
void writeGlb(const ThirdPartyModel& model, const std::string& folder, const std::string& name);
// An .fbx file as text; its lengths in centimeters, as is usual (times
// 100), or in meters.
void writeFbx(const ThirdPartyModel& model, const std::string& folder, const std::string& name,
              bool inCentimeters);
// An .stl file stands on z, as printers have it: y of the model is z there.
void writeStl(const ThirdPartyModel& model, const std::string& folder, const std::string& name);

} // namespace vessa::samples
