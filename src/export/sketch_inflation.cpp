#include "export/sketch_inflation.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <unordered_map>

namespace vessa {

namespace {

// Δu = -kSwelling inside, u = 0 on the outline; the height is √u. A strip of half-width w
// then rises to √(kSwelling / 2)·w, a disc of radius r to √(kSwelling / 4)·r: rounder
// than a lens, a little flatter than a ball.
constexpr double kSwelling = 3.0;
// Points inside: a ring this share of the spacing in from the outline, then a lattice
// that keeps the second share from it; none falls nearer than the third share to an
// edge of the triangle it falls into, so that no triangle is a sliver.
constexpr double kRingDepth = 0.5;
constexpr double kInsideMargin = 0.95;
constexpr double kEdgeMargin = 0.05;
// Where the solution has no lift at all, the two sides still stand this share of the
// spacing apart.
constexpr double kThinnest = 0.02;

double cross(const SketchPoint& o, const SketchPoint& a, const SketchPoint& b) {
    return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}

// Positive when d lies inside the circle through the counter-clockwise a, b, c.
double inCircle(const SketchPoint& a, const SketchPoint& b, const SketchPoint& c,
                const SketchPoint& d) {
    const double ax = a.x - d.x, ay = a.y - d.y;
    const double bx = b.x - d.x, by = b.y - d.y;
    const double cx = c.x - d.x, cy = c.y - d.y;
    return (ax * ax + ay * ay) * (bx * cy - cx * by) - (bx * bx + by * by) * (ax * cy - cx * ay) +
           (cx * cx + cy * cy) * (ax * by - bx * ay);
}

double segmentDistance(const SketchPoint& p, const SketchPoint& a, const SketchPoint& b) {
    const double dx = b.x - a.x, dy = b.y - a.y;
    const double lengthSquared = dx * dx + dy * dy;
    double t = lengthSquared > 0 ? ((p.x - a.x) * dx + (p.y - a.y) * dy) / lengthSquared : 0;
    t = std::clamp(t, 0.0, 1.0);
    return std::hypot(p.x - (a.x + t * dx), p.y - (a.y + t * dy));
}

int next(int k) {
    return (k + 1) % 3;
}
int prev(int k) {
    return (k + 2) % 3;
}

// A triangulation that changes by Lawson's flips. Each triangle keeps its neighbour
// across the edge opposite each corner (-1 across the outline); the outline's edges are
// exactly those without a neighbour, so flips never touch them.
class Triangulator {
public:
    Triangulator(std::vector<SketchPoint> outline, double spacing)
        : points_(std::move(outline)), outlinePoints_(points_.size()), spacing_(spacing),
          tinyArea_(1e-12 * spacing * spacing),
          tinyCircle_(1e-12 * spacing * spacing * spacing * spacing) {}

    bool cutOutlineIntoEars();
    void makeDelaunay();
    void fillInside();
    void splitChords();
    OutlineTriangulation result() const;

private:
    struct Triangle {
        std::array<std::uint32_t, 3> v;
        std::array<int, 3> across;
    };

    const SketchPoint& at(std::uint32_t v) const { return points_[v]; }
    double areaOf(int t) const {
        const Triangle& tr = triangles_[static_cast<size_t>(t)];
        return cross(at(tr.v[0]), at(tr.v[1]), at(tr.v[2]));
    }
    int sideIn(int t, int neighbour) const {
        const Triangle& tr = triangles_[static_cast<size_t>(t)];
        for (int k = 0; k < 3; ++k) {
            if (tr.across[static_cast<size_t>(k)] == neighbour)
                return k;
        }
        return -1;
    }
    Triangle& tri(int t) { return triangles_[static_cast<size_t>(t)]; }
    void pointBack(int neighbour, int from, int to) {
        if (neighbour < 0)
            return;
        const int k = sideIn(neighbour, from);
        if (k >= 0)
            tri(neighbour).across[static_cast<size_t>(k)] = to;
    }

    void linkNeighbours();
    bool flipIfIllegal(int t, int k);
    void legalizeAround(std::uint32_t p, std::vector<std::pair<int, int>> edges);
    std::optional<int> locate(const SketchPoint& p);
    void splitTriangle(int t, std::uint32_t p);
    void splitEdge(int t, int k, std::uint32_t p);
    bool insertIfRoomy(const SketchPoint& p);

    std::vector<SketchPoint> points_;
    size_t outlinePoints_;
    double spacing_;
    double tinyArea_;
    double tinyCircle_;
    std::vector<Triangle> triangles_;
    int lastFound_ = 0;
    unsigned walkSeed_ = 1;
};

bool Triangulator::cutOutlineIntoEars() {
    const size_t n = outlinePoints_;
    std::vector<std::uint32_t> left(n);
    for (size_t i = 0; i < n; ++i)
        left[i] = static_cast<std::uint32_t>(i);
    const auto isEar = [&](size_t i) {
        const size_t m = left.size();
        const SketchPoint& a = at(left[(i + m - 1) % m]);
        const SketchPoint& b = at(left[i]);
        const SketchPoint& c = at(left[(i + 1) % m]);
        if (cross(a, b, c) <= tinyArea_)
            return false;
        for (size_t j = 0; j < m; ++j) {
            if (j == i || j == (i + 1) % m || j == (i + m - 1) % m)
                continue;
            const SketchPoint& p = at(left[j]);
            if (cross(a, b, p) >= 0 && cross(b, c, p) >= 0 && cross(c, a, p) >= 0)
                return false;
        }
        return true;
    };
    size_t i = 0;
    size_t triedSinceCut = 0;
    while (left.size() > 3) {
        const size_t m = left.size();
        if (triedSinceCut > m)
            return false; // no ear: numbers too close to call
        if (isEar(i % m)) {
            const size_t e = i % m;
            triangles_.push_back(
                {{left[(e + m - 1) % m], left[e], left[(e + 1) % m]}, {-1, -1, -1}});
            left.erase(left.begin() + static_cast<std::ptrdiff_t>(e));
            triedSinceCut = 0;
            i = e == 0 ? 0 : e - 1;
        } else {
            ++i;
            ++triedSinceCut;
        }
    }
    if (cross(at(left[0]), at(left[1]), at(left[2])) <= tinyArea_)
        return false;
    triangles_.push_back({{left[0], left[1], left[2]}, {-1, -1, -1}});
    linkNeighbours();
    return true;
}

void Triangulator::linkNeighbours() {
    std::unordered_map<std::uint64_t, std::pair<int, int>> edges;
    const auto key = [](std::uint32_t a, std::uint32_t b) {
        return (static_cast<std::uint64_t>(a) << 32) | b;
    };
    for (int t = 0; t < static_cast<int>(triangles_.size()); ++t) {
        for (int k = 0; k < 3; ++k) {
            const Triangle& tr = tri(t);
            edges[key(tr.v[static_cast<size_t>(next(k))], tr.v[static_cast<size_t>(prev(k))])] = {
                t, k};
        }
    }
    for (int t = 0; t < static_cast<int>(triangles_.size()); ++t) {
        for (int k = 0; k < 3; ++k) {
            Triangle& tr = tri(t);
            const auto found = edges.find(
                key(tr.v[static_cast<size_t>(prev(k))], tr.v[static_cast<size_t>(next(k))]));
            tr.across[static_cast<size_t>(k)] = found == edges.end() ? -1 : found->second.first;
        }
    }
}

// Flips the edge opposite corner k of t when the corner across it lies inside t's
// circle. t becomes (a, b, d) and its neighbour (a, d, c), a in both at index 0.
bool Triangulator::flipIfIllegal(int t, int k) {
    const int u = tri(t).across[static_cast<size_t>(k)];
    if (u < 0)
        return false;
    const int m = sideIn(u, t);
    if (m < 0)
        return false;
    const std::uint32_t a = tri(t).v[static_cast<size_t>(k)];
    const std::uint32_t b = tri(t).v[static_cast<size_t>(next(k))];
    const std::uint32_t c = tri(t).v[static_cast<size_t>(prev(k))];
    const std::uint32_t d = tri(u).v[static_cast<size_t>(m)];
    if (inCircle(at(a), at(b), at(c), at(d)) <= tinyCircle_ ||
        cross(at(a), at(b), at(d)) <= tinyArea_ || cross(at(a), at(d), at(c)) <= tinyArea_)
        return false;
    const int acrossCA = tri(t).across[static_cast<size_t>(next(k))];
    const int acrossAB = tri(t).across[static_cast<size_t>(prev(k))];
    const int acrossBD = tri(u).across[static_cast<size_t>(next(m))];
    const int acrossDC = tri(u).across[static_cast<size_t>(prev(m))];
    tri(t) = {{a, b, d}, {acrossBD, u, acrossAB}};
    tri(u) = {{a, d, c}, {acrossDC, acrossCA, t}};
    pointBack(acrossBD, u, t);
    pointBack(acrossCA, t, u);
    return true;
}

// Lawson's flips from a new point p outward, over the edges opposite it.
void Triangulator::legalizeAround(std::uint32_t p, std::vector<std::pair<int, int>> edges) {
    while (!edges.empty()) {
        const auto [t, k] = edges.back();
        edges.pop_back();
        if (tri(t).v[static_cast<size_t>(k)] != p)
            continue;
        const int u = tri(t).across[static_cast<size_t>(k)];
        if (flipIfIllegal(t, k)) {
            edges.emplace_back(t, 0);
            edges.emplace_back(u, 0);
        }
    }
}

void Triangulator::makeDelaunay() {
    std::vector<std::pair<int, int>> edges;
    for (int t = 0; t < static_cast<int>(triangles_.size()); ++t) {
        for (int k = 0; k < 3; ++k)
            edges.emplace_back(t, k);
    }
    // Each flip makes the triangulation strictly better, so this ends; the bound is a
    // guard against numbers too close to call.
    size_t budget = 64 * triangles_.size() * triangles_.size() + 1000;
    while (!edges.empty() && budget-- > 0) {
        const auto [t, k] = edges.back();
        edges.pop_back();
        const int u = tri(t).across[static_cast<size_t>(k)];
        if (flipIfIllegal(t, k)) {
            for (int j = 0; j < 3; ++j) {
                edges.emplace_back(t, j);
                edges.emplace_back(u, j);
            }
        }
    }
}

// The triangle that holds p, by a walk from the last one found (crossing edges in
// turns that vary, so that it never circles), or by looking at all of them where the
// walk meets the outline.
std::optional<int> Triangulator::locate(const SketchPoint& p) {
    int t = std::clamp(lastFound_, 0, static_cast<int>(triangles_.size()) - 1);
    for (size_t steps = 0; steps < triangles_.size(); ++steps) {
        walkSeed_ = walkSeed_ * 1103515245u + 12345u;
        const int first = static_cast<int>((walkSeed_ >> 16) % 3);
        int moveTo = -2;
        for (int j = 0; j < 3 && moveTo == -2; ++j) {
            const int k = (first + j) % 3;
            const Triangle& tr = tri(t);
            if (cross(at(tr.v[static_cast<size_t>(next(k))]),
                      at(tr.v[static_cast<size_t>(prev(k))]), p) < 0)
                moveTo = tr.across[static_cast<size_t>(k)];
        }
        if (moveTo == -2)
            return lastFound_ = t;
        if (moveTo < 0)
            break;
        t = moveTo;
    }
    for (int s = 0; s < static_cast<int>(triangles_.size()); ++s) {
        const Triangle& tr = tri(s);
        if (cross(at(tr.v[0]), at(tr.v[1]), p) >= 0 && cross(at(tr.v[1]), at(tr.v[2]), p) >= 0 &&
            cross(at(tr.v[2]), at(tr.v[0]), p) >= 0)
            return lastFound_ = s;
    }
    return std::nullopt;
}

void Triangulator::splitTriangle(int t, std::uint32_t p) {
    const Triangle old = tri(t);
    const std::uint32_t a = old.v[0], b = old.v[1], c = old.v[2];
    const int t1 = static_cast<int>(triangles_.size());
    const int t2 = t1 + 1;
    tri(t) = {{a, b, p}, {t1, t2, old.across[2]}};
    triangles_.push_back({{b, c, p}, {t2, t, old.across[0]}});
    triangles_.push_back({{c, a, p}, {t, t1, old.across[1]}});
    pointBack(old.across[0], t, t1);
    pointBack(old.across[1], t, t2);
    legalizeAround(p, {{t, 2}, {t1, 2}, {t2, 2}});
}

// Splits the edge opposite corner k of t, which has a neighbour, at p on it.
void Triangulator::splitEdge(int t, int k, std::uint32_t p) {
    const int u = tri(t).across[static_cast<size_t>(k)];
    const int m = sideIn(u, t);
    const std::uint32_t a = tri(t).v[static_cast<size_t>(k)];
    const std::uint32_t b = tri(t).v[static_cast<size_t>(next(k))];
    const std::uint32_t c = tri(t).v[static_cast<size_t>(prev(k))];
    const std::uint32_t d = tri(u).v[static_cast<size_t>(m)];
    const int acrossCA = tri(t).across[static_cast<size_t>(next(k))];
    const int acrossAB = tri(t).across[static_cast<size_t>(prev(k))];
    const int acrossBD = tri(u).across[static_cast<size_t>(next(m))];
    const int acrossDC = tri(u).across[static_cast<size_t>(prev(m))];
    const int t1 = static_cast<int>(triangles_.size());
    const int u1 = t1 + 1;
    tri(t) = {{a, b, p}, {u1, t1, acrossAB}};
    triangles_.push_back({{a, p, c}, {u, acrossCA, t}});
    tri(u) = {{d, c, p}, {t1, u1, acrossDC}};
    triangles_.push_back({{d, p, b}, {t, acrossBD, u}});
    pointBack(acrossCA, t, t1);
    pointBack(acrossBD, u, u1);
    legalizeAround(p, {{t, 2}, {t1, 1}, {u, 2}, {u1, 1}});
}

// Points inside the outline: a ring along it, then a triangular lattice, each point far
// enough from the outline and the ring.
void Triangulator::fillInside() {
    const std::vector<SketchPoint> outline(
        points_.begin(), points_.begin() + static_cast<std::ptrdiff_t>(outlinePoints_));
    double minX = outline[0].x, maxX = minX, minY = outline[0].y, maxY = minY;
    for (const SketchPoint& p : outline) {
        minX = std::min(minX, p.x), maxX = std::max(maxX, p.x);
        minY = std::min(minY, p.y), maxY = std::max(maxY, p.y);
    }
    // The outline's edges and the ring's points in cells of the spacing, so that what
    // lies near a point is in its cell and the cells around it.
    const double cell = spacing_;
    const int columns = static_cast<int>((maxX - minX) / cell) + 1;
    const int rows = static_cast<int>((maxY - minY) / cell) + 1;
    std::vector<std::vector<std::uint32_t>> edgeCells(static_cast<size_t>(columns * rows));
    std::vector<std::vector<std::uint32_t>> ringCells(edgeCells.size());
    const auto column = [&](double x) {
        return std::clamp(static_cast<int>((x - minX) / cell), 0, columns - 1);
    };
    const auto row = [&](double y) {
        return std::clamp(static_cast<int>((y - minY) / cell), 0, rows - 1);
    };
    const auto cellOf = [&](const SketchPoint& p) {
        return static_cast<size_t>(row(p.y) * columns + column(p.x));
    };
    const size_t n = outline.size();
    for (size_t i = 0; i < n; ++i) {
        const SketchPoint& a = outline[i];
        const SketchPoint& b = outline[(i + 1) % n];
        for (int r = row(std::min(a.y, b.y)); r <= row(std::max(a.y, b.y)); ++r)
            for (int c = column(std::min(a.x, b.x)); c <= column(std::max(a.x, b.x)); ++c)
                edgeCells[static_cast<size_t>(r * columns + c)].push_back(
                    static_cast<std::uint32_t>(i));
    }
    // Whether p keeps `margin` spacings from the outline and from the ring's points.
    const auto roomAround = [&](const SketchPoint& p, double margin) {
        const int pc = column(p.x), pr = row(p.y);
        for (int r = std::max(pr - 1, 0); r <= std::min(pr + 1, rows - 1); ++r) {
            for (int c = std::max(pc - 1, 0); c <= std::min(pc + 1, columns - 1); ++c) {
                const size_t k = static_cast<size_t>(r * columns + c);
                for (std::uint32_t i : edgeCells[k])
                    if (segmentDistance(p, outline[i], outline[(i + 1) % n]) < margin * spacing_)
                        return false;
                for (std::uint32_t v : ringCells[k])
                    if (std::hypot(p.x - at(v).x, p.y - at(v).y) < kRingDepth * spacing_)
                        return false;
            }
        }
        return true;
    };

    // A ring half a spacing in from the outline, so that the rim rounds evenly.
    for (size_t i = 0; i < n; ++i) {
        const SketchPoint& before = outline[(i + n - 1) % n];
        const SketchPoint& v = outline[i];
        const SketchPoint& after = outline[(i + 1) % n];
        const double l1 = std::hypot(v.x - before.x, v.y - before.y);
        const double l2 = std::hypot(after.x - v.x, after.y - v.y);
        // The inward normals of the two edges (the outline is counter-clockwise).
        const double nx = -(v.y - before.y) / l1 - (after.y - v.y) / l2;
        const double ny = (v.x - before.x) / l1 + (after.x - v.x) / l2;
        const double length = std::hypot(nx, ny);
        if (!(length > 1e-6))
            continue;
        const SketchPoint p{v.x + nx / length * kRingDepth * spacing_,
                            v.y + ny / length * kRingDepth * spacing_};
        if (roomAround(p, kRingDepth * 0.8) && insertIfRoomy(p))
            ringCells[cellOf(p)].push_back(static_cast<std::uint32_t>(points_.size() - 1));
    }

    // A triangular lattice inside the ring.
    const double rowStep = spacing_ * std::sqrt(3.0) / 2;
    std::vector<double> crossings;
    int rowIndex = 0;
    for (double y = minY + rowStep / 2; y < maxY; y += rowStep, ++rowIndex) {
        // Where this row crosses the outline: inside lies between pairs.
        crossings.clear();
        for (size_t i = 0; i < n; ++i) {
            const SketchPoint& a = outline[i];
            const SketchPoint& b = outline[(i + 1) % n];
            if ((a.y <= y) != (b.y <= y))
                crossings.push_back(a.x + (y - a.y) / (b.y - a.y) * (b.x - a.x));
        }
        std::sort(crossings.begin(), crossings.end());
        const double shift = (rowIndex % 2) * spacing_ / 2;
        for (size_t pair = 0; pair + 1 < crossings.size(); pair += 2) {
            const double from =
                minX + shift + std::ceil((crossings[pair] - minX - shift) / spacing_) * spacing_;
            for (double x = from; x < crossings[pair + 1]; x += spacing_) {
                const SketchPoint p{x, y};
                if (roomAround(p, kInsideMargin))
                    insertIfRoomy(p);
            }
        }
    }
}

// Makes p a corner unless it falls too near an edge of the triangle it is in (or in
// none); answers whether it did.
bool Triangulator::insertIfRoomy(const SketchPoint& p) {
    const auto t = locate(p);
    if (!t)
        return false;
    const Triangle& tr = tri(*t);
    for (int k = 0; k < 3; ++k) {
        const SketchPoint& e0 = at(tr.v[static_cast<size_t>(next(k))]);
        const SketchPoint& e1 = at(tr.v[static_cast<size_t>(prev(k))]);
        if (segmentDistance(p, e0, e1) < kEdgeMargin * spacing_)
            return false;
    }
    points_.push_back(p);
    splitTriangle(*t, static_cast<std::uint32_t>(points_.size() - 1));
    return true;
}

// Splits every inside edge between two points of the outline at its middle, so that
// the inside lifts everywhere: the front and the back then share no edge but the rim.
void Triangulator::splitChords() {
    bool split = true;
    while (split) {
        split = false;
        for (int t = 0; t < static_cast<int>(triangles_.size()); ++t) {
            for (int k = 0; k < 3; ++k) {
                const Triangle& tr = tri(t);
                const std::uint32_t b = tr.v[static_cast<size_t>(next(k))];
                const std::uint32_t c = tr.v[static_cast<size_t>(prev(k))];
                if (tr.across[static_cast<size_t>(k)] < 0 || b >= outlinePoints_ ||
                    c >= outlinePoints_)
                    continue;
                points_.push_back({(at(b).x + at(c).x) / 2, (at(b).y + at(c).y) / 2});
                splitEdge(t, k, static_cast<std::uint32_t>(points_.size() - 1));
                split = true;
                break;
            }
        }
    }
}

OutlineTriangulation Triangulator::result() const {
    OutlineTriangulation out;
    out.points = points_;
    out.outlinePoints = outlinePoints_;
    out.triangles.reserve(triangles_.size());
    for (const Triangle& tr : triangles_)
        out.triangles.push_back(tr.v);
    return out;
}

// Solves the Poisson equation over the triangulation with the cotangent Laplacian, by
// conjugate gradients with Jacobi's preconditioner; zero on the outline.
std::vector<double> swelling(const OutlineTriangulation& mesh) {
    const size_t count = mesh.points.size();
    const size_t outline = mesh.outlinePoints;
    const size_t unknowns = count - outline;
    std::vector<double> u(count, 0.0);
    if (unknowns == 0)
        return u;
    std::vector<std::pair<std::uint64_t, double>> weights;
    weights.reserve(mesh.triangles.size() * 3);
    std::vector<double> load(unknowns, 0.0);
    for (const auto& tr : mesh.triangles) {
        const double area = cross(mesh.points[tr[0]], mesh.points[tr[1]], mesh.points[tr[2]]) / 2;
        for (int k = 0; k < 3; ++k) {
            const std::uint32_t o = tr[static_cast<size_t>(k)];
            const std::uint32_t i = tr[static_cast<size_t>(next(k))];
            const std::uint32_t j = tr[static_cast<size_t>(prev(k))];
            const SketchPoint& po = mesh.points[o];
            const double ex = mesh.points[i].x - po.x, ey = mesh.points[i].y - po.y;
            const double fx = mesh.points[j].x - po.x, fy = mesh.points[j].y - po.y;
            const double cotangent = (ex * fx + ey * fy) / std::abs(ex * fy - ey * fx);
            weights.emplace_back(
                (static_cast<std::uint64_t>(std::min(i, j)) << 32) | std::max(i, j), cotangent / 2);
            if (o >= outline)
                load[o - outline] += kSwelling * area / 3;
        }
    }
    std::sort(weights.begin(), weights.end());
    std::vector<double> diagonal(unknowns, 0.0);
    std::vector<std::vector<std::pair<std::uint32_t, double>>> offDiagonal(unknowns);
    for (size_t w = 0; w < weights.size();) {
        const std::uint64_t key = weights[w].first;
        double sum = 0;
        for (; w < weights.size() && weights[w].first == key; ++w)
            sum += weights[w].second;
        const auto i = static_cast<std::uint32_t>(key >> 32);
        const auto j = static_cast<std::uint32_t>(key & 0xffffffffu);
        if (i >= outline)
            diagonal[i - outline] += sum;
        if (j >= outline)
            diagonal[j - outline] += sum;
        if (i >= outline && j >= outline) {
            offDiagonal[i - outline].emplace_back(j - outline, -sum);
            offDiagonal[j - outline].emplace_back(i - outline, -sum);
        }
    }
    const auto multiply = [&](const std::vector<double>& x, std::vector<double>& y) {
        for (size_t i = 0; i < unknowns; ++i) {
            double s = diagonal[i] * x[i];
            for (const auto& [j, w] : offDiagonal[i])
                s += w * x[j];
            y[i] = s;
        }
    };
    std::vector<double> x(unknowns, 0.0), r = load, z(unknowns), p(unknowns), q(unknowns);
    for (size_t i = 0; i < unknowns; ++i)
        z[i] = diagonal[i] > 0 ? r[i] / diagonal[i] : r[i];
    p = z;
    double rz = 0, loadNorm = 0;
    for (size_t i = 0; i < unknowns; ++i)
        rz += r[i] * z[i], loadNorm += load[i] * load[i];
    for (size_t iteration = 0; iteration < 4 * unknowns + 100; ++iteration) {
        multiply(p, q);
        double pq = 0;
        for (size_t i = 0; i < unknowns; ++i)
            pq += p[i] * q[i];
        if (!(pq > 0))
            break;
        const double alpha = rz / pq;
        double rr = 0;
        for (size_t i = 0; i < unknowns; ++i) {
            x[i] += alpha * p[i];
            r[i] -= alpha * q[i];
            rr += r[i] * r[i];
        }
        if (rr <= 1e-18 * loadNorm)
            break;
        double rzNext = 0;
        for (size_t i = 0; i < unknowns; ++i) {
            z[i] = diagonal[i] > 0 ? r[i] / diagonal[i] : r[i];
            rzNext += r[i] * z[i];
        }
        const double beta = rzNext / rz;
        rz = rzNext;
        for (size_t i = 0; i < unknowns; ++i)
            p[i] = z[i] + beta * p[i];
    }
    for (size_t i = 0; i < unknowns; ++i)
        u[outline + i] = x[i];
    return u;
}

void addVertexNormals(SketchMesh& mesh) {
    std::vector<double> sums(mesh.positions.size(), 0.0);
    const auto position = [&](std::uint32_t v, int axis) {
        return static_cast<double>(mesh.positions[3 * v + static_cast<size_t>(axis)]);
    };
    for (size_t t = 0; t < mesh.triangles.size(); t += 3) {
        const std::uint32_t a = mesh.triangles[t], b = mesh.triangles[t + 1],
                            c = mesh.triangles[t + 2];
        const double ux = position(b, 0) - position(a, 0), uy = position(b, 1) - position(a, 1),
                     uz = position(b, 2) - position(a, 2);
        const double vx = position(c, 0) - position(a, 0), vy = position(c, 1) - position(a, 1),
                     vz = position(c, 2) - position(a, 2);
        const double n[3] = {uy * vz - uz * vy, uz * vx - ux * vz, ux * vy - uy * vx};
        for (std::uint32_t v : {a, b, c})
            for (int axis = 0; axis < 3; ++axis)
                sums[3 * v + static_cast<size_t>(axis)] += n[axis];
    }
    mesh.normals.resize(mesh.positions.size());
    for (size_t v = 0; v < sums.size(); v += 3) {
        const double length =
            std::sqrt(sums[v] * sums[v] + sums[v + 1] * sums[v + 1] + sums[v + 2] * sums[v + 2]);
        for (size_t axis = 0; axis < 3; ++axis)
            mesh.normals[v + axis] = static_cast<float>(length > 0 ? sums[v + axis] / length : 0.0);
    }
}

} // namespace

OutlineTriangulation triangulateInside(const SketchOutline& outline) {
    if (!outline.usable() || outline.points.size() < 3 || !(outline.spacing > 0))
        return {};
    Triangulator triangulator(outline.points, outline.spacing);
    if (!triangulator.cutOutlineIntoEars())
        return {};
    triangulator.makeDelaunay();
    triangulator.fillInside();
    triangulator.splitChords();
    return triangulator.result();
}

SketchMesh inflate(const SketchOutline& outline) {
    const OutlineTriangulation inside = triangulateInside(outline);
    if (inside.triangles.empty())
        return {};
    const std::vector<double> u = swelling(inside);
    const size_t count = inside.points.size();
    const size_t rim = inside.outlinePoints;
    // The rim once, then the front's inside points, then the back's.
    SketchMesh mesh;
    mesh.positions.reserve(3 * (2 * count - rim));
    const auto add = [&](const SketchPoint& p, double z) {
        mesh.positions.insert(
            mesh.positions.end(),
            {static_cast<float>(p.x), static_cast<float>(p.y), static_cast<float>(z)});
    };
    for (size_t v = 0; v < count; ++v)
        add(inside.points[v],
            v < rim ? 0.0 : std::max(std::sqrt(std::max(u[v], 0.0)), kThinnest * outline.spacing));
    for (size_t v = rim; v < count; ++v)
        add(inside.points[v],
            -std::max(std::sqrt(std::max(u[v], 0.0)), kThinnest * outline.spacing));
    const auto back = [&](std::uint32_t v) {
        return v < rim ? v : static_cast<std::uint32_t>(v - rim + count);
    };
    mesh.triangles.reserve(6 * inside.triangles.size());
    for (const auto& tr : inside.triangles)
        mesh.triangles.insert(mesh.triangles.end(), {tr[0], tr[1], tr[2]});
    for (const auto& tr : inside.triangles)
        mesh.triangles.insert(mesh.triangles.end(), {back(tr[0]), back(tr[2]), back(tr[1])});
    addVertexNormals(mesh);
    return mesh;
}

std::string surfaceFault(const SketchMesh& mesh) {
    const size_t vertices = mesh.vertexCount();
    if (mesh.triangles.empty() || mesh.triangles.size() % 3 != 0)
        return "no triangles, or a triangle short of corners";
    if (mesh.positions.size() % 3 != 0 || mesh.normals.size() != mesh.positions.size())
        return "positions and normals do not match";
    for (float value : mesh.positions)
        if (!std::isfinite(value))
            return "a position is not a number";
    for (float value : mesh.normals)
        if (!std::isfinite(value))
            return "a normal is not a number";
    std::unordered_map<std::uint64_t, int> directedEdges;
    for (size_t t = 0; t < mesh.triangles.size(); t += 3) {
        std::array<std::uint32_t, 3> v{mesh.triangles[t], mesh.triangles[t + 1],
                                       mesh.triangles[t + 2]};
        for (std::uint32_t index : v)
            if (index >= vertices)
                return "a triangle names a vertex that is not there";
        double n[3];
        const float* a = &mesh.positions[3 * v[0]];
        const float* b = &mesh.positions[3 * v[1]];
        const float* c = &mesh.positions[3 * v[2]];
        const double ux = b[0] - a[0], uy = b[1] - a[1], uz = b[2] - a[2];
        const double vx = c[0] - a[0], vy = c[1] - a[1], vz = c[2] - a[2];
        n[0] = uy * vz - uz * vy, n[1] = uz * vx - ux * vz, n[2] = ux * vy - uy * vx;
        const double area = std::sqrt(n[0] * n[0] + n[1] * n[1] + n[2] * n[2]) / 2;
        const double longest = std::max({ux * ux + uy * uy + uz * uz, vx * vx + vy * vy + vz * vz});
        if (!(area > 1e-9 * longest))
            return "triangle " + std::to_string(t / 3) + " has no area";
        for (int k = 0; k < 3; ++k) {
            const std::uint64_t key =
                (static_cast<std::uint64_t>(v[static_cast<size_t>(k)]) << 32) |
                v[static_cast<size_t>(next(k))];
            if (++directedEdges[key] > 1)
                return "an edge is used twice the same way round";
        }
    }
    for (const auto& [key, uses] : directedEdges) {
        const std::uint64_t reverse = (key << 32) | (key >> 32);
        if (!directedEdges.count(reverse))
            return "an edge has a triangle on one side only";
    }
    return {};
}

} // namespace vessa
