#include "export/sketch_outline.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace vessa {

namespace {

// The inside of an outline is filled with points about its spacing apart; a wide shape
// is spaced so that it holds about this many.
constexpr double kMostInsidePoints = 2500;
// Sine of the angle under which three points count as one straight line.
constexpr double kStraight = 1e-3;

double cross(const SketchPoint& o, const SketchPoint& a, const SketchPoint& b) {
    return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}

double distance(const SketchPoint& a, const SketchPoint& b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

double extentOf(const std::vector<SketchPoint>& points) {
    auto [minX, maxX] = std::minmax_element(points.begin(), points.end(),
                                            [](auto& a, auto& b) { return a.x < b.x; });
    auto [minY, maxY] = std::minmax_element(points.begin(), points.end(),
                                            [](auto& a, auto& b) { return a.y < b.y; });
    return std::max(maxX->x - minX->x, maxY->y - minY->y);
}

double perimeter(const std::vector<SketchPoint>& polygon) {
    double length = 0;
    for (size_t i = 0; i < polygon.size(); ++i)
        length += distance(polygon[i], polygon[(i + 1) % polygon.size()]);
    return length;
}

// Drops points that repeat the one before them (the last against the first, too).
void dropRepeats(std::vector<SketchPoint>& polygon, double closest) {
    std::vector<SketchPoint> kept;
    for (const SketchPoint& p : polygon) {
        if (kept.empty() || distance(kept.back(), p) > closest)
            kept.push_back(p);
    }
    while (kept.size() > 1 && distance(kept.back(), kept.front()) <= closest)
        kept.pop_back();
    polygon = std::move(kept);
}

// Points `count` equal steps apart along the closed polygon.
std::vector<SketchPoint> resampled(const std::vector<SketchPoint>& polygon, int count) {
    const double step = perimeter(polygon) / count;
    std::vector<SketchPoint> points;
    points.reserve(static_cast<size_t>(count));
    double along = 0; // how far into the current edge the next point lies
    for (size_t i = 0; i < polygon.size() && static_cast<int>(points.size()) < count; ++i) {
        const SketchPoint& a = polygon[i];
        const SketchPoint& b = polygon[(i + 1) % polygon.size()];
        const double length = distance(a, b);
        while (along <= length && static_cast<int>(points.size()) < count) {
            const double t = length > 0 ? along / length : 0;
            points.push_back({a.x + t * (b.x - a.x), a.y + t * (b.y - a.y)});
            along += step;
        }
        along -= length;
    }
    return points;
}

// Where segments ab and cd meet, touching included, or nothing. `tiny` is the area
// under which three points count as in line.
std::optional<SketchPoint> meeting(const SketchPoint& a, const SketchPoint& b, const SketchPoint& c,
                                   const SketchPoint& d, double tiny) {
    if (std::max(a.x, b.x) < std::min(c.x, d.x) || std::max(c.x, d.x) < std::min(a.x, b.x) ||
        std::max(a.y, b.y) < std::min(c.y, d.y) || std::max(c.y, d.y) < std::min(a.y, b.y))
        return std::nullopt;
    const double da = cross(c, d, a);
    const double db = cross(c, d, b);
    const double dc = cross(a, b, c);
    const double dd = cross(a, b, d);
    const auto side = [tiny](double v) {
        return v > tiny ? 1 : v < -tiny ? -1 : 0;
    };
    const int sa = side(da), sb = side(db), sc = side(dc), sd = side(dd);
    if (sa * sb > 0 || sc * sd > 0)
        return std::nullopt;
    if (sa * sb < 0 && sc * sd < 0) {
        const double t = da / (da - db);
        return SketchPoint{a.x + t * (b.x - a.x), a.y + t * (b.y - a.y)};
    }
    // They touch, or lie along one line: a point of one that lies on the other (the
    // boxes overlap, so for points in line that is enough).
    const auto within = [](const SketchPoint& p, const SketchPoint& s, const SketchPoint& e) {
        return p.x >= std::min(s.x, e.x) && p.x <= std::max(s.x, e.x) &&
               p.y >= std::min(s.y, e.y) && p.y <= std::max(s.y, e.y);
    };
    if (sa == 0 && within(a, c, d))
        return a;
    if (sb == 0 && within(b, c, d))
        return b;
    if (sc == 0 && within(c, a, b))
        return c;
    if (sd == 0 && within(d, a, b))
        return d;
    return std::nullopt;
}

struct Crossing {
    size_t first;  // edge first..first+1
    size_t second; // a later edge that is not its neighbour
    SketchPoint at;
};

std::optional<Crossing> firstCrossing(const std::vector<SketchPoint>& polygon, double tiny) {
    const size_t n = polygon.size();
    for (size_t i = 0; i + 2 < n; ++i) {
        for (size_t j = i + 2; j < n; ++j) {
            if (i == 0 && j == n - 1)
                continue;
            if (auto at =
                    meeting(polygon[i], polygon[i + 1], polygon[j], polygon[(j + 1) % n], tiny))
                return Crossing{i, j, *at};
        }
    }
    return std::nullopt;
}

// Cuts the polygon where it crosses itself, again and again, keeping the bigger loop
// each time. Each cut leaves fewer points, so it ends. Answers whether it cut.
bool cutLoops(std::vector<SketchPoint>& polygon, double tiny, double closest) {
    bool cut = false;
    while (polygon.size() >= 3) {
        const auto crossing = firstCrossing(polygon, tiny);
        if (!crossing)
            break;
        cut = true;
        const size_t n = polygon.size();
        std::vector<SketchPoint> inner{crossing->at};
        for (size_t k = crossing->first + 1; k <= crossing->second; ++k)
            inner.push_back(polygon[k]);
        std::vector<SketchPoint> outer{crossing->at};
        for (size_t k = crossing->second + 1; k != crossing->first + 1 + n; ++k)
            outer.push_back(polygon[k % n]);
        polygon = std::abs(twiceSignedArea(inner)) > std::abs(twiceSignedArea(outer))
                      ? std::move(inner)
                      : std::move(outer);
        dropRepeats(polygon, closest);
    }
    return cut;
}

// Merges points that lie in a straight line with their neighbours, and the tips of
// spikes where the stroke turned straight back. Answers whether it merged any.
bool mergeStraightRuns(std::vector<SketchPoint>& polygon) {
    bool merged = false;
    for (size_t i = 0; polygon.size() >= 3 && i < polygon.size();) {
        const size_t n = polygon.size();
        const SketchPoint& a = polygon[(i + n - 1) % n];
        const SketchPoint& b = polygon[i];
        const SketchPoint& c = polygon[(i + 1) % n];
        const double lengths = distance(a, b) * distance(b, c);
        if (std::abs(cross(a, b, c)) <= kStraight * lengths) {
            polygon.erase(polygon.begin() + static_cast<std::ptrdiff_t>(i));
            merged = true;
            i = i > 0 ? i - 1 : 0;
        } else {
            ++i;
        }
    }
    return merged;
}

// Cuts loops and merges straight runs until neither finds anything more to do.
bool untangle(std::vector<SketchPoint>& polygon, double tiny, double closest) {
    bool cut = false;
    for (;;) {
        dropRepeats(polygon, closest);
        cut = cutLoops(polygon, tiny, closest) || cut;
        if (!mergeStraightRuns(polygon))
            return cut;
    }
}

} // namespace

double twiceSignedArea(const std::vector<SketchPoint>& polygon) {
    double sum = 0;
    for (size_t i = 0; i < polygon.size(); ++i) {
        const SketchPoint& a = polygon[i];
        const SketchPoint& b = polygon[(i + 1) % polygon.size()];
        sum += a.x * b.y - b.x * a.y;
    }
    return sum;
}

bool selfCrossing(const std::vector<SketchPoint>& polygon) {
    return polygon.size() >= 4 && firstCrossing(polygon, 0.0).has_value();
}

SketchOutline cleanOutline(const std::vector<SketchPoint>& stroke, double smallestSize) {
    SketchOutline outline;
    for (const SketchPoint& p : stroke) {
        if (std::isfinite(p.x) && std::isfinite(p.y))
            outline.points.push_back(p);
    }
    dropRepeats(outline.points, 0.0);
    if (outline.points.size() < 3) {
        outline.problem = OutlineProblem::TooFewPoints;
        return outline;
    }
    const double extent = extentOf(outline.points);
    if (!(extent > 0) || extent < smallestSize || !std::isfinite(extent)) {
        outline.problem = OutlineProblem::TooSmall;
        return outline;
    }
    // Lengths and areas are measured against the stroke's size, so that the same
    // drawing in another unit comes out the same.
    const double tiny = 1e-12 * extent * extent;
    const double closest = 1e-9 * extent;
    std::vector<SketchPoint>& points = outline.points;

    // Finely spaced first, to find the loops; then as widely as the area asks.
    points = resampled(points, kMostOutlinePoints);
    outline.loopsCut = untangle(points, tiny, closest);
    const double area = std::abs(twiceSignedArea(points)) / 2;
    const double length = perimeter(points);
    outline.spacing = std::max(length / kMostOutlinePoints,
                               std::sqrt(area / (kMostInsidePoints * std::sqrt(3.0) / 2)));
    const int count = static_cast<int>(std::lround(length / outline.spacing));
    if (points.size() >= 3 && count < static_cast<int>(points.size())) {
        points = resampled(points, std::max(count, 3));
        outline.loopsCut = untangle(points, tiny, closest) || outline.loopsCut;
    }
    if (points.size() < 3 ||
        std::abs(twiceSignedArea(points)) / 2 <= 2 * outline.spacing * outline.spacing) {
        outline.problem = OutlineProblem::NoArea;
        return outline;
    }
    if (twiceSignedArea(points) < 0)
        std::reverse(points.begin(), points.end());
    return outline;
}

} // namespace vessa
