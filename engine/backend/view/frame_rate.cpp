#include "view/frame_rate.h"

namespace vessa::core {

namespace {

constexpr double kWindowSeconds = 1.0;

} // namespace

void FrameRate::frameDrawn(double now) {
    frames_.push_back(now);
    perSecond(now);
}

double FrameRate::perSecond(double now) {
    while (!frames_.empty() && frames_.front() <= now - kWindowSeconds)
        frames_.pop_front();
    return static_cast<double>(frames_.size()) / kWindowSeconds;
}

} // namespace vessa::core
