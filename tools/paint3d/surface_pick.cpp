#include "surface_pick.h"

#include <osg/BoundingSphere>
#include <osg/Quat>

#include <algorithm>
#include <cmath>
#include <limits>

namespace vessa::paint3d {

namespace {

osg::Vec3d vertexOf(const PaintMesh& mesh, std::uint32_t i) {
    return {mesh.positions[3 * i], mesh.positions[3 * i + 1], mesh.positions[3 * i + 2]};
}

// Where along the ray it meets triangle abc, with the weights of b and c
// there (Moller and Trumbore); nullopt when it misses.
std::optional<std::array<double, 3>> meet(const osg::Vec3d& from, const osg::Vec3d& along,
                                          const osg::Vec3d& a, const osg::Vec3d& b,
                                          const osg::Vec3d& c) {
    const osg::Vec3d e1 = b - a, e2 = c - a;
    const osg::Vec3d p = along ^ e2;
    const double det = e1 * p;
    if (std::abs(det) < 1e-14)
        return std::nullopt;
    const double inv = 1.0 / det;
    const osg::Vec3d s = from - a;
    const double u = (s * p) * inv;
    if (u < 0.0 || u > 1.0)
        return std::nullopt;
    const osg::Vec3d q = s ^ e1;
    const double v = (along * q) * inv;
    if (v < 0.0 || u + v > 1.0)
        return std::nullopt;
    const double t = (e2 * q) * inv;
    if (t < 0.0)
        return std::nullopt;
    return std::array<double, 3>{t, u, v};
}

} // namespace

std::vector<osg::Matrixd> partPlaces(const PaintObject& object) {
    std::vector<osg::Matrixd> places;
    for (const PaintPart& part : object.parts) {
        const osg::Quat turn(part.rotation[0], part.rotation[1], part.rotation[2],
                             part.rotation[3]);
        osg::Matrixd place =
            osg::Matrixd::rotate(turn) *
            osg::Matrixd::translate(part.position[0], part.position[1], part.position[2]);
        if (part.parent >= 0 && static_cast<size_t>(part.parent) < places.size())
            place = place * places[static_cast<size_t>(part.parent)];
        else
            place = osg::Matrixd::identity(); // the object itself is its own frame
        places.push_back(place);
    }
    return places;
}

SurfacePicker::SurfacePicker(const PaintObject& object)
    : object_(object), places_(partPlaces(object)) {
    osg::BoundingSphered all;
    for (size_t p = 0; p < object.parts.size(); ++p) {
        toParts_.push_back(osg::Matrixd::inverse(places_[p]));
        const auto& meshes = object.parts[p].meshes;
        for (size_t m = 0; m < meshes.size(); ++m) {
            osg::BoundingSphered sphere;
            const PaintMesh& mesh = meshes[m];
            for (std::uint32_t v : mesh.triangles)
                sphere.expandBy(vertexOf(mesh, v));
            if (!sphere.valid())
                continue;
            bounds_.push_back(
                {static_cast<int>(p), static_cast<int>(m), sphere.center(), sphere.radius()});
            all.expandBy(osg::BoundingSphered(sphere.center() * places_[p], sphere.radius()));
        }
    }
    if (all.valid()) {
        centre_ = all.center();
        radius_ = std::max(all.radius(), 1e-6);
    }
}

std::optional<SurfaceHit> SurfacePicker::pick(const Ray& ray) const {
    std::optional<SurfaceHit> nearest;
    double nearestDistance = std::numeric_limits<double>::max();
    for (const MeshBounds& bound : bounds_) {
        const osg::Matrixd& toPart = toParts_[static_cast<size_t>(bound.part)];
        const osg::Vec3d from = ray.origin * toPart;
        const osg::Vec3d along = osg::Matrixd::transform3x3(ray.direction, toPart);
        // Past the mesh's sphere, or behind the ray: no triangle of it can be met.
        const osg::Vec3d toCentre = bound.centre - from;
        const double lengthSquared = along.length2();
        if (lengthSquared <= 0.0)
            return std::nullopt;
        const double closest = std::max(0.0, (toCentre * along) / lengthSquared);
        if ((from + along * closest - bound.centre).length() > bound.radius)
            continue;
        const PaintMesh& mesh =
            object_.parts[static_cast<size_t>(bound.part)].meshes[static_cast<size_t>(bound.mesh)];
        for (size_t i = 0; i + 2 < mesh.triangles.size(); i += 3) {
            const std::uint32_t a = mesh.triangles[i], b = mesh.triangles[i + 1],
                                c = mesh.triangles[i + 2];
            const auto met =
                meet(from, along, vertexOf(mesh, a), vertexOf(mesh, b), vertexOf(mesh, c));
            if (!met || (*met)[0] >= nearestDistance)
                continue;
            const auto [t, u, v] = *met;
            nearestDistance = t;
            SurfaceHit hit;
            hit.part = bound.part;
            hit.s = (1 - u - v) * mesh.texCoords[2 * a] + u * mesh.texCoords[2 * b] +
                    v * mesh.texCoords[2 * c];
            hit.t = (1 - u - v) * mesh.texCoords[2 * a + 1] + u * mesh.texCoords[2 * b + 1] +
                    v * mesh.texCoords[2 * c + 1];
            nearest = hit;
        }
    }
    return nearest;
}

} // namespace vessa::paint3d
