#pragma once

#include "export/sketch_outline.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace vessa {

// The inside of an outline cut into triangles: the outline's points first, in their
// order, then points inside about the outline's spacing apart. Triangles are
// counter-clockwise, none has all three corners on the outline, and no edge between
// two points of the outline crosses the inside; the triangles meet their
// neighbours as Delaunay's do, the outline's edges given.
struct OutlineTriangulation {
    std::vector<SketchPoint> points;
    size_t outlinePoints = 0;
    std::vector<std::array<std::uint32_t, 3>> triangles;
};

// A closed surface: three numbers a vertex for positions and for normals, three
// vertex indices a triangle, counter-clockwise seen from outside.
struct SketchMesh {
    std::vector<float> positions;
    std::vector<float> normals;
    std::vector<std::uint32_t> triangles;

    size_t vertexCount() const { return positions.size() / 3; }
    bool empty() const { return triangles.empty(); }
};

OutlineTriangulation triangulateInside(const SketchOutline& outline);

// The rounded object of an outline in the x-y plane: the outline stays its rim at
// z = 0, and the inside rises to the front (+z) and to the back alike, by the square
// root of the solution of a Poisson equation over the inside that is zero on the
// outline. So a round part comes out as a ball, a long part of any width as a
// sausage with about a round section, and each part is as thick as it is wide.
// Empty when the outline is not usable or its inside could not be cut into triangles.
SketchMesh inflate(const SketchOutline& outline);

// What is wrong with a mesh as a closed surface, or "" when nothing: every edge in
// exactly two triangles, once each way round; no triangle without area; no index
// beyond the vertices; numbers all finite.
std::string surfaceFault(const SketchMesh& mesh);

} // namespace vessa
