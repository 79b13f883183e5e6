// The sketch tool's geometry: strokes cleaned into outlines, outlines cut into
// triangles and inflated into closed surfaces, over shapes drawn on purpose and a few
// hundred random ones from a fixed seed.

#include "export/sketch_inflation.h"
#include "export/sketch_session.h"

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <numbers>
#include <random>
#include <set>

using namespace vessa;

namespace {

constexpr double kPi = std::numbers::pi;

std::vector<SketchPoint> ellipse(double rx, double ry, int count, double cx = 0, double cy = 0) {
    std::vector<SketchPoint> points;
    for (int i = 0; i < count; ++i) {
        const double a = 2 * kPi * i / count;
        points.push_back({cx + rx * std::cos(a), cy + ry * std::sin(a)});
    }
    return points;
}

std::vector<SketchPoint> star(int tips, double outer, double inner) {
    std::vector<SketchPoint> points;
    for (int i = 0; i < 2 * tips; ++i) {
        const double r = i % 2 ? inner : outer;
        const double a = kPi * i / tips;
        points.push_back({r * std::cos(a), r * std::sin(a)});
    }
    return points;
}

// A strip of the given width wound `turns` times round: out along its outer side and
// back along its inner one.
std::vector<SketchPoint> spiral(double turns, double width) {
    std::vector<SketchPoint> out, back;
    const int steps = static_cast<int>(turns * 80);
    for (int i = 0; i <= steps; ++i) {
        const double a = 2 * kPi * turns * i / steps;
        const double r = 1 + 2.5 * width * a / (2 * kPi);
        out.push_back({(r + width / 2) * std::cos(a), (r + width / 2) * std::sin(a)});
        back.push_back({(r - width / 2) * std::cos(a), (r - width / 2) * std::sin(a)});
    }
    out.insert(out.end(), back.rbegin(), back.rend());
    return out;
}

// A simple outline around a middle: random radii at random angles in order, squashed
// and scaled at random.
std::vector<SketchPoint> randomStarShape(std::mt19937& random) {
    std::uniform_int_distribution<int> count(5, 80);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    const int n = count(random);
    std::vector<double> angles;
    for (int i = 0; i < n; ++i)
        angles.push_back(2 * kPi * unit(random));
    std::sort(angles.begin(), angles.end());
    const double squash = 0.08 + 0.92 * unit(random);
    const double scale = std::pow(10.0, -2 + 5 * unit(random));
    std::vector<SketchPoint> points;
    for (double a : angles) {
        const double r = scale * (0.2 + 0.8 * unit(random));
        points.push_back({r * std::cos(a), squash * r * std::sin(a)});
    }
    return points;
}

double volumeOf(const SketchMesh& mesh) {
    double six = 0;
    for (size_t t = 0; t < mesh.triangles.size(); t += 3) {
        const float* a = &mesh.positions[3 * mesh.triangles[t]];
        const float* b = &mesh.positions[3 * mesh.triangles[t + 1]];
        const float* c = &mesh.positions[3 * mesh.triangles[t + 2]];
        six += a[0] * (b[1] * c[2] - b[2] * c[1]) - a[1] * (b[0] * c[2] - b[2] * c[0]) +
               a[2] * (b[0] * c[1] - b[1] * c[0]);
    }
    return six / 6;
}

// Thickness (front to back) of the surface at the vertex nearest to (x, y).
double thicknessNear(const SketchMesh& mesh, double x, double y) {
    double best = 1e300, z = 0;
    for (size_t v = 0; v < mesh.vertexCount(); ++v) {
        const double d = std::hypot(mesh.positions[3 * v] - x, mesh.positions[3 * v + 1] - y);
        if (d < best)
            best = d, z = std::abs(mesh.positions[3 * v + 2]);
    }
    return 2 * z;
}

// Everything a good outline, its triangles and its surface must be; "" when all is so.
std::string faultOf(const std::vector<SketchPoint>& stroke) {
    const SketchOutline outline = cleanOutline(stroke);
    if (!outline.usable())
        return "refused";
    if (selfCrossing(outline.points))
        return "outline crosses itself";
    if (twiceSignedArea(outline.points) <= 0)
        return "outline is clockwise";
    if (outline.points.size() > static_cast<size_t>(kMostOutlinePoints))
        return "outline has too many points";
    const OutlineTriangulation inside = triangulateInside(outline);
    if (inside.triangles.empty())
        return "no triangles";
    double area = 0;
    std::map<std::pair<std::uint32_t, std::uint32_t>, int> edges;
    for (const auto& tr : inside.triangles) {
        const SketchPoint& a = inside.points[tr[0]];
        const SketchPoint& b = inside.points[tr[1]];
        const SketchPoint& c = inside.points[tr[2]];
        const double twice = (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
        if (twice <= 0)
            return "a triangle is clockwise or flat";
        area += twice;
        if (tr[0] < inside.outlinePoints && tr[1] < inside.outlinePoints &&
            tr[2] < inside.outlinePoints)
            return "a triangle lies on the outline alone";
        for (int k = 0; k < 3; ++k)
            ++edges[std::minmax(tr[static_cast<size_t>(k)], tr[static_cast<size_t>((k + 1) % 3)])];
    }
    // Triangles that cover the inside once: their areas add up to its area, and only the
    // outline's edges have one triangle.
    if (std::abs(area - twiceSignedArea(outline.points)) > 1e-7 * std::abs(area))
        return "the triangles do not cover the inside once";
    for (const auto& [edge, uses] : edges) {
        const bool rim = edge.second < inside.outlinePoints &&
                         (edge.second - edge.first == 1 ||
                          (edge.first == 0 && edge.second == inside.outlinePoints - 1));
        if (uses != (rim ? 1 : 2))
            return "an edge has the wrong number of triangles";
    }
    const SketchMesh mesh = inflate(outline);
    if (const std::string fault = surfaceFault(mesh); !fault.empty())
        return fault;
    // A closed surface without handles: V - E + F = 2; outward: the volume is positive.
    const long long faces = static_cast<long long>(mesh.triangles.size() / 3);
    const long long vertices = static_cast<long long>(mesh.vertexCount());
    if (vertices - faces * 3 / 2 + faces != 2)
        return "the surface is not one closed ball";
    if (!(volumeOf(mesh) > 0))
        return "the surface faces inward";
    return {};
}

} // namespace

TEST(SketchInflation, ShapesDrawnOnPurposeBecomeClosedSurfaces) {
    EXPECT_EQ(faultOf(ellipse(100, 100, 60)), "");
    EXPECT_EQ(faultOf(ellipse(300, 4, 200)), "") << "a thin needle";
    EXPECT_EQ(faultOf(star(5, 200, 60)), "");
    EXPECT_EQ(faultOf(star(40, 200, 150)), "") << "a star of many tips";
    EXPECT_EQ(faultOf(spiral(3, 0.4)), "");
    EXPECT_EQ(faultOf(spiral(1.5, 0.1)), "") << "a thin spiral";
    EXPECT_EQ(faultOf({{0, 0}, {1, 0}, {0, 1}}), "") << "a stroke of three points";
    EXPECT_EQ(faultOf(ellipse(2e-3, 1e-3, 40)), "") << "tiny";
    EXPECT_EQ(faultOf(ellipse(1e6, 7e5, 40, 3e6, -2e6)), "") << "huge, far from the origin";
}

TEST(SketchInflation, ThreeHundredRandomOutlinesBecomeClosedSurfaces) {
    std::mt19937 random(20240611);
    for (int i = 0; i < 300; ++i) {
        const auto outline = randomStarShape(random);
        ASSERT_EQ(faultOf(outline), "") << "outline " << i;
    }
}

TEST(SketchInflation, WidePartsAreThickAndNarrowPartsThin) {
    // Two round ends joined by a bar a fifth as wide: the ends swell, the bar stays thin.
    const double meet = std::asin(0.2);
    std::vector<SketchPoint> dumbbell;
    for (int i = 0; i <= 40; ++i) {
        const double a = kPi + meet + (2 * kPi - 2 * meet) * i / 40;
        dumbbell.push_back({3 + std::cos(a), std::sin(a)});
    }
    for (int i = 0; i <= 40; ++i) {
        const double a = meet + (2 * kPi - 2 * meet) * i / 40;
        dumbbell.push_back({-3 + std::cos(a), std::sin(a)});
    }
    const SketchOutline outline = cleanOutline(dumbbell);
    ASSERT_TRUE(outline.usable());
    const SketchMesh mesh = inflate(outline);
    ASSERT_EQ(surfaceFault(mesh), "");
    const double end = thicknessNear(mesh, 3, 0), middle = thicknessNear(mesh, 0, 0);
    EXPECT_GT(end, 3 * middle) << end << " against " << middle;

    // Long bars as thick as they are wide, give or take: twice as wide, twice as thick.
    const auto bar = [](double halfWidth) {
        return std::vector<SketchPoint>{
            {-10, -halfWidth}, {10, -halfWidth}, {10, halfWidth}, {-10, halfWidth}};
    };
    const double narrow = thicknessNear(inflate(cleanOutline(bar(0.5))), 0, 0);
    const double wide = thicknessNear(inflate(cleanOutline(bar(1))), 0, 0);
    EXPECT_NEAR(wide / narrow, 2, 0.3);
    EXPECT_NEAR(wide, 2 * 1.0, 0.8) << "a section about round";
}

TEST(SketchOutline, StrokesThatCannotMakeAShapeAreRefusedWithTheReason) {
    EXPECT_EQ(cleanOutline({}).problem, OutlineProblem::TooFewPoints);
    EXPECT_EQ(cleanOutline({{1, 1}, {1, 1}, {1, 1}, {2, 2}}).problem, OutlineProblem::TooFewPoints);
    EXPECT_EQ(cleanOutline({{0, 0}, {NAN, 1}, {INFINITY, 0}, {1, 1}}).problem,
              OutlineProblem::TooFewPoints);
    EXPECT_EQ(cleanOutline({{0, 0}, {1, 1}, {2, 2}, {3, 3}, {1.5, 1.5}}).problem,
              OutlineProblem::NoArea)
        << "a line drawn there and back";
    EXPECT_EQ(cleanOutline(ellipse(5, 5, 30), 12).problem, OutlineProblem::TooSmall);
    EXPECT_TRUE(cleanOutline(ellipse(7, 7, 30), 12).usable());
}

TEST(SketchOutline, AStrokeThatCrossesItselfKeepsItsBiggestLoop) {
    // A figure of eight, its right loop twice the size of its left.
    std::vector<SketchPoint> eight;
    for (int i = 0; i < 60; ++i) {
        const double a = 2 * kPi * i / 60;
        eight.push_back({2 - 2 * std::cos(a), 2 * std::sin(a)});
    }
    for (int i = 0; i < 60; ++i) {
        const double a = 2 * kPi * i / 60;
        eight.push_back({-1 + std::cos(a), std::sin(a)});
    }
    const SketchOutline outline = cleanOutline(eight);
    ASSERT_TRUE(outline.usable());
    EXPECT_TRUE(outline.loopsCut);
    EXPECT_FALSE(selfCrossing(outline.points));
    EXPECT_NEAR(twiceSignedArea(outline.points) / 2, kPi * 4, 0.2);
    EXPECT_EQ(surfaceFault(inflate(outline)), "");
}

TEST(SketchOutline, ScribblesAndLongStrokesNeverMakeABrokenSurface) {
    // Random walks cross themselves everywhere; each is refused or makes a whole surface.
    std::mt19937 random(7);
    std::normal_distribution<double> step(0, 10);
    int made = 0;
    for (int i = 0; i < 100; ++i) {
        std::vector<SketchPoint> scribble{{0, 0}};
        for (int k = 0; k < 300; ++k)
            scribble.push_back(
                {scribble.back().x + step(random), scribble.back().y + step(random)});
        const SketchOutline outline = cleanOutline(scribble);
        EXPECT_FALSE(outline.usable() && selfCrossing(outline.points)) << "scribble " << i;
        if (outline.usable() && !inflate(outline).empty()) {
            EXPECT_EQ(surfaceFault(inflate(outline)), "") << "scribble " << i;
            ++made;
        }
    }
    EXPECT_GT(made, 50);
    // A hundred thousand points are spaced down to what the outline may have.
    const SketchOutline dense = cleanOutline(ellipse(300, 200, 100000));
    ASSERT_TRUE(dense.usable());
    EXPECT_LE(dense.points.size(), static_cast<size_t>(kMostOutlinePoints));
}

TEST(SketchSession, StrokesMakeShapesThatUndoTakesBack) {
    SketchSession session;
    // A circle of 100 pixels' radius around (300, 200) becomes an object of 1 m radius
    // around (3, -2): y upward.
    const std::vector<SketchPoint> circle = ellipse(100, 100, 80, 300, 200);
    ASSERT_TRUE(session.addStroke(circle).made);
    const SketchMesh mesh = session.current()->mesh;
    float left = 1e9f, right = -1e9f;
    for (size_t v = 0; v < mesh.vertexCount(); ++v) {
        left = std::min(left, mesh.positions[3 * v]);
        right = std::max(right, mesh.positions[3 * v]);
    }
    EXPECT_NEAR(left, 2.0, 0.01);
    EXPECT_NEAR(right, 4.0, 0.01);
    EXPECT_NEAR(thicknessNear(mesh, 3, -2), 2 * 0.87, 0.15) << "a little flatter than a ball";
    const SketchSession::StrokeOutcome dot = session.addStroke({{5, 5}, {6, 6}, {5, 7}});
    EXPECT_FALSE(dot.made);
    EXPECT_FALSE(dot.message.isEmpty());
    ASSERT_TRUE(session.addStroke(ellipse(50, 20, 40, 100, 100)).made);
    EXPECT_TRUE(session.undo());
    EXPECT_EQ(session.current()->mesh.positions, mesh.positions);
    EXPECT_TRUE(session.undo());
    EXPECT_FALSE(session.canUndo());
    EXPECT_FALSE(session.undo());

    // Saved, it stands on the middle of its foot.
    const SketchMesh standing = standingOnItsFoot(mesh);
    float low = 1e9f, leftmost = 1e9f, rightmost = -1e9f;
    for (size_t v = 0; v < standing.vertexCount(); ++v) {
        low = std::min(low, standing.positions[3 * v + 1]);
        leftmost = std::min(leftmost, standing.positions[3 * v]);
        rightmost = std::max(rightmost, standing.positions[3 * v]);
    }
    EXPECT_NEAR(low, 0, 1e-5);
    EXPECT_NEAR(leftmost + rightmost, 0, 1e-5);
}
