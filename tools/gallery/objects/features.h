#pragma once

#include "../primitives.h"

#include <vector>

namespace gallery {

// Two black eyes with a spark of light, on the front of a round head, turned
// out to each side and raised by the given angles.
std::vector<Shape> eyes(const osg::Vec3& headCenter, const osg::Vec3& headRadii, float radius,
                        float turnDegrees, float riseDegrees);

// Round wheels turned to roll along z: a tyre, a hub and a cap.
std::vector<Shape> wheel(const osg::Vec3& axle, float radius, float width);

} // namespace gallery
