#include "mesh.h"

#include <cmath>
#include <cstdint>
#include <numbers>

namespace gallery {

namespace {

// A point of a profile turned around the y axis: its distance from the axis,
// its height, and the outward normal in the (r, y) plane.
struct ProfilePoint {
    float radius;
    float y;
    float normalRadius;
    float normalY;
};

constexpr float pi = std::numbers::pi_v<float>;

void flipWinding(std::vector<unsigned>& indices) {
    for (std::size_t i = 0; i + 2 < indices.size(); i += 3) {
        std::swap(indices[i + 1], indices[i + 2]);
    }
}

// Adds the two triangles of a quad whose corners are listed counter-clockwise,
// leaving out a triangle that collapses where a profile touches the axis.
void addQuad(Mesh& mesh, unsigned a, unsigned b, unsigned c, unsigned d, bool collapsedAB,
             bool collapsedCD) {
    if (!collapsedAB) {
        mesh.indices.insert(mesh.indices.end(), {a, b, d});
    }
    if (!collapsedCD) {
        mesh.indices.insert(mesh.indices.end(), {b, c, d});
    }
}

std::vector<ProfilePoint> circleProfile(float radius, int stacks, float capOffset,
                                        float fromLatitude = -pi / 2) {
    std::vector<ProfilePoint> profile;
    for (int i = 0; i <= stacks; ++i) {
        const float latitude = fromLatitude + (pi / 2 - fromLatitude) * float(i) / float(stacks);
        // At the poles the ring shrinks to a point; make it exactly one (the
        // cosine comes out a hair above zero), so that the lathe leaves out
        // the triangles that vanish there.
        const float cosine = std::cos(latitude);
        const float c = std::abs(cosine) < 1e-6f ? 0 : cosine;
        const float s = std::sin(latitude);
        const float offset = latitude < 0 ? -capOffset : capOffset;
        profile.push_back({radius * c, radius * s + offset, c, s});
        // A capsule repeats its equator so the straight middle joins both caps.
        if (capOffset > 0 && 2 * i == stacks) {
            profile.push_back({radius * c, radius * s + capOffset, c, s});
        }
    }
    return profile;
}

// A cheap, repeatable hash of a position, so that equal positions get equal values.
float hashToUnit(const osg::Vec3& p, unsigned seed) {
    auto quantize = [](float v) {
        return std::uint32_t(std::lround(v * 1000.0f));
    };
    std::uint32_t h = seed * 2654435761u;
    for (std::uint32_t v : {quantize(p.x()), quantize(p.y()), quantize(p.z())}) {
        h ^= v + 0x9e3779b9u + (h << 6) + (h >> 2);
        h *= 2246822519u;
    }
    h ^= h >> 15;
    return float(h % 10000u) / 10000.0f;
}

// Turns a profile, listed from bottom to top along the outside, around the y
// axis. A wedge (startTurn..endTurn, in turns) makes a slice of the solid.
Mesh lathe(const std::vector<ProfilePoint>& profile, int slices, float startTurn = 0,
           float endTurn = 1) {
    Mesh mesh;
    for (const auto& point : profile) {
        for (int j = 0; j <= slices; ++j) {
            const float turn = startTurn + (endTurn - startTurn) * float(j) / float(slices);
            const float s = std::sin(2 * pi * turn);
            const float c = std::cos(2 * pi * turn);
            mesh.positions.emplace_back(point.radius * s, point.y, point.radius * c);
            mesh.normals.emplace_back(point.normalRadius * s, point.normalY,
                                      point.normalRadius * c);
        }
    }
    const auto row = unsigned(slices + 1);
    for (unsigned i = 0; i + 1 < profile.size(); ++i) {
        if (profile[i].radius == profile[i + 1].radius && profile[i].y == profile[i + 1].y) {
            continue; // a point repeated to give an edge two normals spans no surface
        }
        const bool lowerOnAxis = profile[i].radius == 0;
        const bool upperOnAxis = profile[i + 1].radius == 0;
        for (unsigned j = 0; j < unsigned(slices); ++j) {
            const unsigned a = i * row + j;
            addQuad(mesh, a, a + 1, a + 1 + row, a + row, lowerOnAxis, upperOnAxis);
        }
    }
    return mesh;
}

} // namespace

void Mesh::transform(const osg::Matrix& matrix) {
    const osg::Matrix inverse = osg::Matrix::inverse(matrix);
    for (auto& p : positions) {
        p = p * matrix;
    }
    for (auto& n : normals) {
        // Normals follow the inverse transpose, which keeps them upright under
        // uneven scaling.
        n = osg::Matrix::transform3x3(inverse, n);
        n.normalize();
    }
    const osg::Vec3 x(matrix(0, 0), matrix(0, 1), matrix(0, 2));
    const osg::Vec3 y(matrix(1, 0), matrix(1, 1), matrix(1, 2));
    const osg::Vec3 z(matrix(2, 0), matrix(2, 1), matrix(2, 2));
    if ((x ^ y) * z < 0) {
        flipWinding(indices); // a mirror turns the surface inside out
    }
}

void Mesh::append(const Mesh& other) {
    const auto base = unsigned(positions.size());
    positions.insert(positions.end(), other.positions.begin(), other.positions.end());
    normals.insert(normals.end(), other.normals.begin(), other.normals.end());
    for (unsigned i : other.indices) {
        indices.push_back(base + i);
    }
}

Mesh sphereMesh(float radius, int slices, int stacks, float startTurn, float endTurn) {
    return lathe(circleProfile(radius, stacks, 0), slices, startTurn, endTurn);
}

Mesh capsuleMesh(float radius, float length, int slices, int stacks) {
    const float halfMiddle = std::max(0.0f, length / 2 - radius);
    return lathe(circleProfile(radius, stacks, halfMiddle), slices);
}

Mesh cylinderMesh(float bottomRadius, float topRadius, float height, int slices) {
    const float h = height / 2;
    osg::Vec2 side(height, bottomRadius - topRadius); // outward normal of the slanted side
    side.normalize();
    std::vector<ProfilePoint> profile;
    if (bottomRadius > 0) {
        profile.push_back({0, -h, 0, -1});
        profile.push_back({bottomRadius, -h, 0, -1});
    }
    profile.push_back({bottomRadius, -h, side.x(), side.y()});
    profile.push_back({topRadius, h, side.x(), side.y()});
    if (topRadius > 0) {
        profile.push_back({topRadius, h, 0, 1});
        profile.push_back({0, h, 0, 1});
    }
    return lathe(profile, slices);
}

Mesh torusMesh(float ringRadius, float tubeRadius, int slices, int sides) {
    std::vector<ProfilePoint> profile;
    for (int i = 0; i <= sides; ++i) {
        // From the inner edge, under the tube, round the outside and back.
        const float angle = -pi + 2 * pi * float(i) / float(sides);
        const float c = std::cos(angle);
        const float s = std::sin(angle);
        profile.push_back({ringRadius + tubeRadius * c, tubeRadius * s, c, s});
    }
    return lathe(profile, slices);
}

Mesh domeMesh(float radius, int slices, int stacks) {
    std::vector<ProfilePoint> profile = circleProfile(radius, stacks, 0, 0);
    profile.insert(profile.begin(), {{0, 0, 0, -1}, {radius, 0, 0, -1}});
    return lathe(profile, slices);
}

Mesh extrudedMesh(const std::vector<osg::Vec2>& outline, float thickness) {
    osg::Vec2 centroid;
    for (const auto& point : outline) {
        centroid += point / float(outline.size());
    }
    const float front = thickness / 2;
    Mesh solid;
    auto add = [&solid](const osg::Vec3& a, const osg::Vec3& b, const osg::Vec3& c) {
        const auto base = unsigned(solid.positions.size());
        solid.positions.insert(solid.positions.end(), {a, b, c});
        solid.normals.insert(solid.normals.end(), 3, osg::Vec3()); // faceted() fills them in
        solid.indices.insert(solid.indices.end(), {base, base + 1, base + 2});
    };
    for (std::size_t i = 0; i < outline.size(); ++i) {
        const osg::Vec2& p = outline[i];
        const osg::Vec2& q = outline[(i + 1) % outline.size()];
        add({centroid, front}, {p, front}, {q, front});
        add({centroid, -front}, {q, -front}, {p, -front});
        add({p, -front}, {q, -front}, {q, front});
        add({p, -front}, {q, front}, {p, front});
    }
    return faceted(solid);
}

Mesh boxMesh(const osg::Vec3& size) {
    // Each face spans two axes u, v with u x v pointing out of the face.
    struct Face {
        osg::Vec3 normal, u, v;
    };
    static const Face faces[] = {
        {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}, {{-1, 0, 0}, {0, 0, 1}, {0, 1, 0}},
        {{0, 1, 0}, {0, 0, 1}, {1, 0, 0}}, {{0, -1, 0}, {1, 0, 0}, {0, 0, 1}},
        {{0, 0, 1}, {1, 0, 0}, {0, 1, 0}}, {{0, 0, -1}, {0, 1, 0}, {1, 0, 0}},
    };
    const osg::Vec3 half = size * 0.5f;
    Mesh mesh;
    for (const auto& face : faces) {
        const auto base = unsigned(mesh.positions.size());
        for (auto [su, sv] : {std::pair{-1, -1}, {1, -1}, {1, 1}, {-1, 1}}) {
            const osg::Vec3 corner = face.normal + face.u * float(su) + face.v * float(sv);
            mesh.positions.push_back(osg::componentMultiply(corner, half));
            mesh.normals.push_back(face.normal);
        }
        mesh.indices.insert(mesh.indices.end(),
                            {base, base + 1, base + 2, base, base + 2, base + 3});
    }
    return mesh;
}

Mesh taperedBoxMesh(const osg::Vec3& size, float topWidthFactor, float topDepthFactor) {
    Mesh mesh = boxMesh(size);
    for (auto& p : mesh.positions) {
        if (p.y() > 0) {
            p.x() *= topWidthFactor;
            p.z() *= topDepthFactor;
        }
    }
    return faceted(mesh);
}

Mesh faceted(const Mesh& mesh) {
    Mesh flat;
    for (std::size_t i = 0; i + 2 < mesh.indices.size(); i += 3) {
        const osg::Vec3& a = mesh.positions[mesh.indices[i]];
        const osg::Vec3& b = mesh.positions[mesh.indices[i + 1]];
        const osg::Vec3& c = mesh.positions[mesh.indices[i + 2]];
        osg::Vec3 normal = (b - a) ^ (c - a);
        if (normal.normalize() < 1e-9f) {
            continue; // a face squeezed to nothing
        }
        const auto base = unsigned(flat.positions.size());
        flat.positions.insert(flat.positions.end(), {a, b, c});
        flat.normals.insert(flat.normals.end(), {normal, normal, normal});
        flat.indices.insert(flat.indices.end(), {base, base + 1, base + 2});
    }
    return flat;
}

Mesh jittered(const Mesh& mesh, float amount, unsigned seed) {
    Mesh bumpy = mesh;
    for (std::size_t i = 0; i < bumpy.positions.size(); ++i) {
        const float push = (hashToUnit(mesh.positions[i], seed) - 0.5f) * 2 * amount;
        osg::Vec3 outward = mesh.positions[i];
        outward.normalize();
        bumpy.positions[i] += outward * push;
    }
    return bumpy;
}

} // namespace gallery
