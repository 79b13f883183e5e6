#include "scene/engine_frame.h"

#include <cmath>

namespace vessa::core {

osg::Vec3d toOsgPoint(const ChannelValue& point) {
    return {-point[0], point[1], point[2]};
}

ChannelValue fromOsgPoint(const osg::Vec3d& point) {
    return {-point.x(), point.y(), point.z(), 0.0};
}

// A mirror turns the axis of a rotation into minus its mirror image.
osg::Quat toOsgRotation(const ChannelValue& q) {
    return {q[1], -q[2], -q[3], q[0]};
}

ChannelValue fromOsgRotation(const osg::Quat& r) {
    return {r.w(), r.x(), -r.y(), -r.z()};
}

ChannelValue quatMultiply(const ChannelValue& p, const ChannelValue& q) {
    const auto [pw, px, py, pz] = p;
    const auto [qw, qx, qy, qz] = q;
    return {pw * qw - px * qx - py * qy - pz * qz, pw * qx + px * qw + py * qz - pz * qy,
            pw * qy - px * qz + py * qw + pz * qx, pw * qz + px * qy - py * qx + pz * qw};
}

ChannelValue quatNormalized(const ChannelValue& q) {
    const double n = std::sqrt(q[0] * q[0] + q[1] * q[1] + q[2] * q[2] + q[3] * q[3]);
    if (n <= 1e-12)
        return defaultValue(Channel::Orientation);
    return {q[0] / n, q[1] / n, q[2] / n, q[3] / n};
}

ChannelValue quatFromAxisAngle(double x, double y, double z, double angle) {
    const double n = std::sqrt(x * x + y * y + z * z);
    const double s = n > 1e-12 ? std::sin(angle / 2.0) / n : 0.0;
    return {std::cos(angle / 2.0), x * s, y * s, z * s};
}

} // namespace vessa::core
