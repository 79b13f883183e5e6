#pragma once

#include "mesh.h"

#include <osg/Vec4>

namespace gallery {

// A coloured piece of an object. Its mesh is kept in object coordinates and
// each shape is placed by its centre: the middle of its bounds, or of the whole
// ball for a slice of one.
struct Shape {
    Mesh mesh;
    osg::Vec3 center;
    osg::Vec4 color;

    Shape at(const osg::Vec3& newCenter) const;
    Shape turned(float degrees, const osg::Vec3& axis) const; // about its centre
    Shape transformed(const osg::Matrix& matrix) const;       // about the object's origin
};

inline const osg::Vec3 XAxis{1, 0, 0};
inline const osg::Vec3 YAxis{0, 1, 0};
inline const osg::Vec3 ZAxis{0, 0, 1};

Shape box(const osg::Vec3& size, const osg::Vec4& color);
Shape ball(float radius, const osg::Vec4& color);
Shape egg(const osg::Vec3& radii, const osg::Vec4& color);
// A slice of a ball's peel between two fractions of a turn around y.
Shape ballSlice(float radius, float startTurn, float endTurn, const osg::Vec4& color);
Shape rod(float radius, float length, const osg::Vec4& color); // upright
Shape frustum(float bottomRadius, float topRadius, float height, const osg::Vec4& color);
Shape cone(float radius, float height, const osg::Vec4& color);         // tip up
Shape capsule(float radius, float length, const osg::Vec4& color);      // upright, ends included
Shape ring(float ringRadius, float tubeRadius, const osg::Vec4& color); // lying flat
// Upright prism with a polygon for its cross-section, flat-shaded (a hexagonal
// tower, a triangular fin).
Shape prism(float radius, float height, int sides, const osg::Vec4& color);
Shape taperedBox(const osg::Vec3& size, float topWidthFactor, float topDepthFactor,
                 const osg::Vec4& color);
Shape rock(const osg::Vec3& radii, unsigned seed, const osg::Vec4& color);

// A rod or a rounded limb running from one point to another.
Shape stick(float radius, const osg::Vec3& from, const osg::Vec3& to, const osg::Vec4& color);
Shape limb(float radius, const osg::Vec3& from, const osg::Vec3& to, const osg::Vec4& color);

} // namespace gallery
