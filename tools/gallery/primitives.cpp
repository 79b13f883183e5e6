#include "primitives.h"

#include <algorithm>
#include <cmath>

namespace gallery {

namespace {

// Enough facets to look round in a thumbnail and in a crowded world. A multiple
// of four puts a vertex at each quarter turn, so that a wheel touches the
// ground exactly.
constexpr int roundSlices = 20;
constexpr int roundStacks = 12;

Shape centred(Mesh mesh, const osg::Vec4& color) {
    return Shape{std::move(mesh), {}, color};
}

Shape between(Mesh mesh, const osg::Vec3& from, const osg::Vec3& to, const osg::Vec4& color) {
    osg::Vec3 direction = to - from;
    direction.normalize();
    return centred(std::move(mesh), color)
        .transformed(osg::Matrix::rotate(YAxis, direction))
        .at((from + to) * 0.5f);
}

} // namespace

Shape Shape::at(const osg::Vec3& newCenter) const {
    Shape moved = transformed(osg::Matrix::translate(newCenter - center));
    moved.center = newCenter;
    return moved;
}

Shape Shape::turned(float degrees, const osg::Vec3& axis) const {
    return turnedAbout(degrees, axis, center);
}

Shape Shape::turnedAbout(float degrees, const osg::Vec3& axis, const osg::Vec3& point) const {
    return transformed(osg::Matrix::translate(-point) *
                       osg::Matrix::rotate(osg::DegreesToRadians(degrees), axis) *
                       osg::Matrix::translate(point));
}

Shape Shape::transformed(const osg::Matrix& matrix) const {
    Shape result = *this;
    result.mesh.transform(matrix);
    result.center = center * matrix;
    return result;
}

Shape box(const osg::Vec3& size, const osg::Vec4& color) {
    return centred(boxMesh(size), color);
}

Shape ball(float radius, const osg::Vec4& color) {
    return centred(sphereMesh(radius, roundSlices, roundStacks), color);
}

Shape egg(const osg::Vec3& radii, const osg::Vec4& color) {
    return ball(1, color).transformed(osg::Matrix::scale(radii));
}

Shape ballSlice(float radius, float startTurn, float endTurn, const osg::Vec4& color) {
    return centred(sphereMesh(radius, roundSlices / 3, roundStacks, startTurn, endTurn), color);
}

Shape rod(float radius, float length, const osg::Vec4& color) {
    return frustum(radius, radius, length, color);
}

Shape frustum(float bottomRadius, float topRadius, float height, const osg::Vec4& color) {
    return centred(cylinderMesh(bottomRadius, topRadius, height, roundSlices), color);
}

Shape cone(float radius, float height, const osg::Vec4& color) {
    return frustum(radius, 0, height, color);
}

Shape capsule(float radius, float length, const osg::Vec4& color) {
    return centred(capsuleMesh(radius, length, roundSlices, roundStacks), color);
}

Shape ring(float ringRadius, float tubeRadius, const osg::Vec4& color) {
    return centred(torusMesh(ringRadius, tubeRadius, 2 * roundSlices, roundStacks), color);
}

Shape taperedBox(const osg::Vec3& size, float topWidthFactor, float topDepthFactor,
                 const osg::Vec4& color) {
    return centred(taperedBoxMesh(size, topWidthFactor, topDepthFactor), color);
}

Shape dome(const osg::Vec3& radii, const osg::Vec4& color) {
    Mesh half = domeMesh(1, roundSlices, roundStacks / 2);
    half.transform(osg::Matrix::scale(radii));
    return centred(std::move(half), color);
}

Shape slab(const std::vector<osg::Vec2>& outline, float thickness, const osg::Vec4& color) {
    return centred(extrudedMesh(outline, thickness), color);
}

Shape rock(const osg::Vec3& radii, unsigned seed, const osg::Vec4& color) {
    Mesh lumpy = jittered(sphereMesh(1, 9, 6), 0.18f, seed);
    lumpy.transform(osg::Matrix::scale(radii));
    float lowest = 0;
    for (const auto& p : lumpy.positions) {
        lowest = std::min(lowest, p.y());
    }
    lumpy.transform(osg::Matrix::translate(0, -radii.y() - lowest, 0));
    return centred(faceted(lumpy), color);
}

Shape stick(float radius, const osg::Vec3& from, const osg::Vec3& to, const osg::Vec4& color) {
    const float length = (to - from).length();
    return between(cylinderMesh(radius, radius, length, roundSlices), from, to, color);
}

Shape limb(float radius, const osg::Vec3& from, const osg::Vec3& to, const osg::Vec4& color) {
    // The ends are rounded over the two points, as an arm is over its joints.
    const float length = (to - from).length() + 2 * radius;
    return between(capsuleMesh(radius, length, roundSlices, roundStacks), from, to, color);
}

osg::Vec3 onEgg(const osg::Vec3& center, const osg::Vec3& radii, float turnDegrees,
                float riseDegrees) {
    const float turn = osg::DegreesToRadians(turnDegrees);
    const float rise = osg::DegreesToRadians(riseDegrees);
    return center + osg::componentMultiply(radii, {std::cos(rise) * std::sin(turn), std::sin(rise),
                                                   std::cos(rise) * std::cos(turn)});
}

} // namespace gallery
