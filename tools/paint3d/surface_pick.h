#pragma once

#include "paint_object.h"

#include <osg/Matrixd>
#include <osg/Vec3d>

#include <optional>
#include <vector>

namespace vessa::paint3d {

// A ray in the object's frame (the frame of its first part).
struct Ray {
    osg::Vec3d origin;
    osg::Vec3d direction;
};

// Where a ray meets the object's surface first.
struct SurfaceHit {
    int part = -1;
    double s = 0.0, t = 0.0; // texture coordinates on the part's skin
};

// Each part's place in the object's frame, from its place in its parent's.
std::vector<osg::Matrixd> partPlaces(const PaintObject& object);

// Finds what a ray meets on an object's surfaces. The object's shape must
// not change while the picker lives; its skins may.
class SurfacePicker {
public:
    explicit SurfacePicker(const PaintObject& object);
    std::optional<SurfaceHit> pick(const Ray& ray) const;
    // The sphere around everything, in the object's frame.
    osg::Vec3d centre() const { return centre_; }
    double radius() const { return radius_; }

private:
    struct MeshBounds {
        int part;
        int mesh;
        osg::Vec3d centre; // in the part's frame
        double radius;
    };
    const PaintObject& object_;
    std::vector<osg::Matrixd> places_, toParts_;
    std::vector<MeshBounds> bounds_;
    osg::Vec3d centre_;
    double radius_ = 1.0;
};

} // namespace vessa::paint3d
