#pragma once

#include <vector>

namespace vessa {

// A point of the sketch tool's drawing plane, in whatever unit the caller draws in.
struct SketchPoint {
    double x = 0;
    double y = 0;
};

// Why a stroke could not become an outline.
enum class OutlineProblem {
    None,
    TooFewPoints, // fewer than three distinct points
    TooSmall,     // smaller across than the smallest size asked for
    NoArea,       // encloses (next to) nothing: a line, or a scribble back and forth
};

// A stroke made into the outline of a shape: a simple polygon, counter-clockwise, its
// points about `spacing` apart, no three in a line and no two edges crossing or
// touching. `loopsCut` says that the stroke crossed itself and only its biggest loop
// was kept.
struct SketchOutline {
    std::vector<SketchPoint> points;
    double spacing = 0;
    bool loopsCut = false;
    OutlineProblem problem = OutlineProblem::None;

    bool usable() const { return problem == OutlineProblem::None; }
};

// The most points an outline is given: a longer stroke is spaced more widely, so that
// the object made from it stays quick to build and draw.
inline constexpr int kMostOutlinePoints = 400;

// Cleans one stroke, the way a mouse draws it: points that are not numbers or repeat
// are dropped, the stroke is closed from its end back to its start and spaced evenly,
// loops where it crosses itself are cut away, and points in a straight line are merged.
// A stroke smaller across than `smallestSize` is refused.
SketchOutline cleanOutline(const std::vector<SketchPoint>& stroke, double smallestSize = 0);

// Twice the signed area of a closed polygon: positive when counter-clockwise.
double twiceSignedArea(const std::vector<SketchPoint>& polygon);

// Whether any two edges of a closed polygon that are not neighbours meet.
bool selfCrossing(const std::vector<SketchPoint>& polygon);

} // namespace vessa
