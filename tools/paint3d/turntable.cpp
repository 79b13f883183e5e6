#include "turntable.h"

#include <algorithm>
#include <cmath>

namespace vessa::paint3d {

namespace {

constexpr double kFieldOfViewDegrees = 35.0;
constexpr double kRadiansPerPixel = 0.01;
constexpr double kZoomPerStep = 0.9;
// The eye's distance in radii: the whole object in view, and the bounds of zooming.
constexpr double kViewingDistance = 3.4, kNearest = 1.2, kFarthest = 10.0;

} // namespace

Turntable::Turntable(const osg::Vec3d& centre, double radius)
    : centre_(centre), radius_(std::max(radius, 1e-6)), distance_(kViewingDistance * radius_) {
    // A little from above and to the side, so the object shows its shape.
    turn_ = osg::Quat(0.5, osg::Vec3d(0, 1, 0)) * osg::Quat(0.35, osg::Vec3d(1, 0, 0));
}

void Turntable::turnBy(double dx, double dy) {
    turn_ = turn_ * osg::Quat(dx * kRadiansPerPixel, osg::Vec3d(0, 1, 0)) *
            osg::Quat(dy * kRadiansPerPixel, osg::Vec3d(1, 0, 0));
}

void Turntable::zoomBy(double steps) {
    distance_ = std::clamp(distance_ * std::pow(kZoomPerStep, steps), kNearest * radius_,
                           kFarthest * radius_);
}

void Turntable::setSize(int width, int height) {
    width_ = std::max(width, 1);
    height_ = std::max(height, 1);
}

osg::Matrixd Turntable::objectPlace() const {
    return osg::Matrixd::translate(-centre_) * osg::Matrixd::rotate(turn_);
}

osg::Matrixd Turntable::viewMatrix() const {
    return osg::Matrixd::lookAt(osg::Vec3d(0, 0, distance_), osg::Vec3d(0, 0, 0),
                                osg::Vec3d(0, 1, 0));
}

osg::Matrixd Turntable::projection() const {
    const double nearPlane = std::max(distance_ - 1.5 * radius_, distance_ * 0.01);
    return osg::Matrixd::perspective(kFieldOfViewDegrees,
                                     static_cast<double>(width_) / static_cast<double>(height_),
                                     nearPlane, distance_ + 1.5 * radius_);
}

Ray Turntable::rayAt(double x, double y) const {
    const osg::Matrixd toWindow = objectPlace() * viewMatrix() * projection() *
                                  osg::Matrixd::translate(1.0, 1.0, 1.0) *
                                  osg::Matrixd::scale(0.5 * width_, 0.5 * height_, 0.5);
    const osg::Matrixd fromWindow = osg::Matrixd::inverse(toWindow);
    const double wy = height_ - y;
    const osg::Vec3d nearPoint = osg::Vec3d(x, wy, 0.0) * fromWindow;
    const osg::Vec3d farPoint = osg::Vec3d(x, wy, 1.0) * fromWindow;
    osg::Vec3d direction = farPoint - nearPoint;
    direction.normalize();
    return {nearPoint, direction};
}

} // namespace vessa::paint3d
