#include "features.h"

#include "../palette.h"

namespace gallery {

using namespace palette;

std::vector<Shape> eyes(const osg::Vec3& headCenter, const osg::Vec3& headRadii, float radius,
                        float turnDegrees, float riseDegrees) {
    std::vector<Shape> pair;
    for (float side : {1.0f, -1.0f}) {
        const osg::Vec3 at = onEgg(headCenter, headRadii, side * turnDegrees, riseDegrees);
        pair.push_back(ball(radius, Black).at(at));
        pair.push_back(ball(radius * 0.35f, White).at(at + osg::Vec3(0.3f, 0.4f, 0.8f) * radius));
    }
    return pair;
}

std::vector<Shape> wheel(const osg::Vec3& axle, float radius, float width) {
    const float side = axle.x() < 0 ? -1.0f : 1.0f;
    return {rod(radius, width, Black).turned(90, ZAxis).at(axle),
            rod(radius * 0.55f, width * 1.08f, Gray).turned(90, ZAxis).at(axle),
            ball(radius * 0.2f, White).at(axle + osg::Vec3(side * width * 0.5f, 0, 0))};
}

} // namespace gallery
