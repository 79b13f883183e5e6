#pragma once

#include "surface_pick.h"

#include <osg/Matrixd>
#include <osg/Quat>

namespace vessa::paint3d {

// How the object is seen: turned about its middle in front of a fixed eye
// that looks along -z with y up, far enough back to see all of it. Gives
// the matrices to draw with and the ray under a point of the view.
class Turntable {
public:
    Turntable(const osg::Vec3d& centre, double radius);

    // Turns by a drag of dx, dy pixels: across turns about the view's up,
    // up and down about its side.
    void turnBy(double dx, double dy);
    // Nearer (positive steps) or farther, within bounds.
    void zoomBy(double steps);
    void setSize(int width, int height);

    osg::Matrixd objectPlace() const; // the object's frame into the eye's world
    osg::Matrixd viewMatrix() const;
    osg::Matrixd projection() const;
    // The ray under (x, y) pixels from the top left, in the object's frame.
    Ray rayAt(double x, double y) const;

private:
    osg::Vec3d centre_;
    double radius_;
    double distance_;
    osg::Quat turn_;
    int width_ = 1, height_ = 1;
};

} // namespace vessa::paint3d
