#pragma once

#include "mesh.h"

#include <osg/Vec4>

namespace gallery {

// A coloured piece of an object. Its mesh is kept in object coordinates and
// each shape is placed by its centre: the middle of its bounds unless said
// otherwise below.
struct Shape {
    Mesh mesh;
    osg::Vec3 center;
    osg::Vec4 color;

    Shape at(const osg::Vec3& newCenter) const;
    Shape turned(float degrees, const osg::Vec3& axis) const; // about its centre
    Shape turnedAbout(float degrees, const osg::Vec3& axis, const osg::Vec3& point) const;
    Shape transformed(const osg::Matrix& matrix) const; // about the object's origin
};

inline const osg::Vec3 XAxis{1, 0, 0};
inline const osg::Vec3 YAxis{0, 1, 0};
inline const osg::Vec3 ZAxis{0, 0, 1};

Shape box(const osg::Vec3& size, const osg::Vec4& color);
Shape ball(float radius, const osg::Vec4& color);
Shape egg(const osg::Vec3& radii, const osg::Vec4& color);
// A slice of a ball's peel between two fractions of a turn around y, placed by
// the ball's centre.
Shape ballSlice(float radius, float startTurn, float endTurn, const osg::Vec4& color);
Shape rod(float radius, float length, const osg::Vec4& color); // upright
Shape frustum(float bottomRadius, float topRadius, float height, const osg::Vec4& color);
Shape cone(float radius, float height, const osg::Vec4& color);         // tip up
Shape capsule(float radius, float length, const osg::Vec4& color);      // upright, ends included
Shape ring(float ringRadius, float tubeRadius, const osg::Vec4& color); // lying flat
Shape taperedBox(const osg::Vec3& size, float topWidthFactor, float topDepthFactor,
                 const osg::Vec4& color);
// Half an egg on its flat base, placed by the middle of the base.
Shape dome(const osg::Vec3& radii, const osg::Vec4& color);
// A flat outline in the xy plane made thick along z, placed by the outline's
// origin. The outline runs counter-clockwise and is convex, or star-shaped
// about its centroid.
Shape slab(const std::vector<osg::Vec2>& outline, float thickness, const osg::Vec4& color);
// A lumpy, low-poly stone whose lowest point is radii.y below its centre.
Shape rock(const osg::Vec3& radii, unsigned seed, const osg::Vec4& color);

// A rod or a rounded limb running from one point to another.
Shape stick(float radius, const osg::Vec3& from, const osg::Vec3& to, const osg::Vec4& color);
Shape limb(float radius, const osg::Vec3& from, const osg::Vec3& to, const osg::Vec4& color);

// The point on the surface of an egg seen from its front (+z), turned towards
// the egg's left (+x) and raised by the given angles: where eyes and spots go.
osg::Vec3 onEgg(const osg::Vec3& center, const osg::Vec3& radii, float turnDegrees,
                float riseDegrees);

} // namespace gallery
