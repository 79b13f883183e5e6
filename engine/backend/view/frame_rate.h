#pragma once

#include <deque>

namespace vessa::core {

// Frames drawn over the last second. A still world draws nothing, so its
// rate is honestly zero.
class FrameRate {
public:
    void frameDrawn(double now);
    double perSecond(double now);

private:
    std::deque<double> frames_;
};

} // namespace vessa::core
