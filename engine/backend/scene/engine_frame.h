#pragma once

#include "scene/channels.h"

#include <osg/Matrixd>
#include <osg/Quat>
#include <osg/Vec3d>

namespace vessa::core {

// The engine's axes are x right, y up, z forward: a left-handed frame.
// OpenSceneGraph's are right-handed. Mirroring x carries one into the other,
// so an engine object's right side is on the right of the picture, and a
// model made in a right-handed tool keeps its handedness.
osg::Vec3d toOsgPoint(const ChannelValue& point);
ChannelValue fromOsgPoint(const osg::Vec3d& point);
osg::Quat toOsgRotation(const ChannelValue& quaternion);
ChannelValue fromOsgRotation(const osg::Quat& rotation);

// Quaternion arithmetic in the engine's (w, x, y, z) order, as the engine's
// Python layer does it, so both backends agree to the last bit that matters.
ChannelValue quatMultiply(const ChannelValue& p, const ChannelValue& q);
ChannelValue quatNormalized(const ChannelValue& q);
ChannelValue quatFromAxisAngle(double x, double y, double z, double angle);

} // namespace vessa::core
