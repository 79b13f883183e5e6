#pragma once

#include <osg/Matrix>
#include <osg/Vec2>
#include <osg/Vec3>

#include <vector>

namespace gallery {

// A triangle mesh with one normal per vertex. Triangles wind counter-clockwise
// seen from outside, so that back faces can be culled.
struct Mesh {
    std::vector<osg::Vec3> positions;
    std::vector<osg::Vec3> normals;
    std::vector<unsigned> indices;

    void transform(const osg::Matrix& matrix);
    void append(const Mesh& other);
};

// Centred on the origin, along the y axis where there is an axis.
Mesh sphereMesh(float radius, int slices, int stacks, float startTurn = 0, float endTurn = 1);
Mesh capsuleMesh(float radius, float length, int slices, int stacks);
Mesh cylinderMesh(float bottomRadius, float topRadius, float height, int slices);
Mesh torusMesh(float ringRadius, float tubeRadius, int slices, int sides);
// Half a ball on a flat base, the base centred on the origin.
Mesh domeMesh(float radius, int slices, int stacks);
Mesh boxMesh(const osg::Vec3& size);
// A flat outline in the xy plane, given counter-clockwise around its centroid
// (convex or star-shaped about it), made thick along z about the origin.
Mesh extrudedMesh(const std::vector<osg::Vec2>& outline, float thickness);
// A box whose top face is shrunk by the given factors across x and z: a roof
// with a depth factor of 0, a pyramid with both 0.
Mesh taperedBoxMesh(const osg::Vec3& size, float topWidthFactor, float topDepthFactor);

// One normal per face instead of per vertex: crisp edges for low-poly shapes.
Mesh faceted(const Mesh& mesh);
// Moves every vertex of a mesh centred on the origin towards or away from the
// centre by a repeatable pseudo-random amount; vertices at the same place move
// together, so the surface stays closed.
Mesh jittered(const Mesh& mesh, float amount, unsigned seed);

} // namespace gallery
