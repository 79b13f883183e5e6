#pragma once

#include "skin.h"

#include "reading/description.h"

#include <array>
#include <string>
#include <vector>

namespace vessa::paint3d {

// One mesh of a part as it is painted: its own vertices, with texture
// coordinates into its part's skin for every vertex.
struct PaintMesh {
    std::vector<float> positions; // x y z per vertex, in the part's frame
    std::vector<float> normals;   // x y z per vertex, or none
    std::vector<float> texCoords; // s t per vertex, into the part's skin
    std::vector<std::uint32_t> triangles;
    core::LookDescription look; // its colours; the skin stands for its picture
};

// A part of the object: where it is, what it is made of, and its skin.
struct PaintPart {
    std::string name;
    int parent = -1;                            // an earlier part; -1 for the object itself
    std::array<double, 3> position{};           // relative to the parent, OpenSceneGraph's axes
    std::array<double, 4> rotation{0, 0, 0, 1}; // x y z w
    std::vector<PaintMesh> meshes;
    Skin skin;
};

// An object made ready for painting: every part wears a skin of its own,
// and every vertex has a place on it. A part whose meshes already wear one
// picture, with texture coordinates inside it, keeps them and the picture
// becomes its skin; any other part is laid onto its skin by box
// projections: each piece of it (triangles joined by their corners: a
// ball, an ear) has a box of its own, each triangle goes onto the side of
// its piece's box it faces most, and the boxes' sides lie apart on the
// skin, so no two places of the surface share a texel (but for hollows
// inside one piece). Its colours and pictures are painted onto the skin
// first, so that it looks as it did. The material's
// diffuse and ambient colour become white: the skin carries the colour.
struct PaintObject {
    std::string name;
    std::vector<PaintPart> parts; // parents before their children
};

// At most this many texels over all skins (64 MiB of pixels); a part's
// skin side is a power of two, as large as its surface's boxes are beside
// the largest part's, and no larger than Skin::kLargestSide.
constexpr long long kTexelBudget = 16LL << 20;

PaintObject paintableFrom(const core::ModelDescription& model);

} // namespace vessa::paint3d
