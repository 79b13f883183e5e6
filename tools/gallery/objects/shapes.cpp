#include "objects.h"

#include "../palette.h"

#include <cmath>
#include <numbers>

namespace gallery {

using namespace palette;

namespace {

// Plain shapes of about a metre, one piece each, to build with.
ObjectRecipe shape(const std::string& name, std::vector<Shape> pieces) {
    return {"Shapes", name, std::move(pieces), {}};
}

std::vector<Shape> beachBall() {
    const osg::Vec4 colors[] = {Red, White, Blue, Yellow, Green, Orange};
    std::vector<Shape> slices;
    for (int i = 0; i < 6; ++i) {
        slices.push_back(
            ballSlice(0.5f, float(i) / 6, float(i + 1) / 6, colors[i]).at({0, 0.5f, 0}));
    }
    return slices;
}

std::vector<osg::Vec2> starOutline(float outer, float inner, int points) {
    std::vector<osg::Vec2> outline;
    for (int i = 0; i < 2 * points; ++i) {
        const float angle = std::numbers::pi_v<float> * (0.5f + float(i) / float(points));
        const float radius = i % 2 ? inner : outer;
        outline.emplace_back(radius * std::cos(angle), radius * std::sin(angle));
    }
    return outline;
}

} // namespace

std::vector<ObjectRecipe> shapes() {
    // The star stands on its two lower points.
    const float starFeet = 0.5f * std::cos(std::numbers::pi_v<float> / 5);
    return {shape("Cube", {box({1, 1, 1}, Blue).at({0, 0.5f, 0})}),
            shape("Ball", beachBall()),
            shape("Cylinder", {rod(0.5f, 1, Green).at({0, 0.5f, 0})}),
            shape("Cone", {cone(0.5f, 1, Orange).at({0, 0.5f, 0})}),
            shape("Pyramid", {taperedBox({1, 1, 1}, 0, 0, Yellow).at({0, 0.5f, 0})}),
            shape("Ring", {ring(0.38f, 0.12f, Purple).turned(90, XAxis).at({0, 0.5f, 0})}),
            shape("Capsule", {capsule(0.3f, 1.2f, Teal).at({0, 0.6f, 0})}),
            shape("Star", {slab(starOutline(0.5f, 0.22f, 5), 0.2f, Yellow).at({0, starFeet, 0})})};
}

} // namespace gallery
