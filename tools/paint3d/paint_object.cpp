#include "paint_object.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
#include <numeric>

namespace vessa::paint3d {

namespace {

using core::LookDescription;
using core::MeshDescription;
using core::ModelDescription;
using core::PartDescription;
using core::TextureDescription;

constexpr int kSmallestSide = 16;
constexpr int kSmallestUsualSide = 64;
constexpr int kGutterTexels = 4;
constexpr float kCoordinateSlack = 1e-4f;

using Vec3 = std::array<double, 3>;

Vec3 vertexOf(const std::vector<float>& positions, std::uint32_t i) {
    return {positions[3 * i], positions[3 * i + 1], positions[3 * i + 2]};
}

std::uint8_t byteOf(float value) {
    return static_cast<std::uint8_t>(std::lround(std::clamp(value, 0.0f, 1.0f) * 255.0f));
}

Rgba rgbaOf(const std::array<float, 4>& c) {
    return {byteOf(c[0]), byteOf(c[1]), byteOf(c[2]), byteOf(c[3])};
}

Rgba times(Rgba a, Rgba b) {
    const auto m = [](std::uint8_t x, std::uint8_t y) {
        return static_cast<std::uint8_t>((x * y + 127) / 255);
    };
    return {m(a.r, b.r), m(a.g, b.g), m(a.b, b.b), m(a.a, b.a)};
}

size_t vertexCount(const MeshDescription& mesh) {
    return mesh.positions.size() / 3;
}

// The colour a mesh shows at vertex i before any picture: its material's,
// or its own vertex colours where they stand for the material.
Rgba baseColor(const MeshDescription& mesh, size_t i) {
    const LookDescription& look = mesh.look;
    const size_t n = vertexCount(mesh);
    const bool vertexColors = !look.hasMaterial || look.litVertexColors;
    if (vertexColors && mesh.colors.size() == 4 * n && n > 0)
        return rgbaOf({mesh.colors[4 * i], mesh.colors[4 * i + 1], mesh.colors[4 * i + 2],
                       mesh.colors[4 * i + 3]});
    if (vertexColors && mesh.colors.size() == 4)
        return rgbaOf({mesh.colors[0], mesh.colors[1], mesh.colors[2], mesh.colors[3]});
    if (look.hasMaterial)
        return rgbaOf(look.diffuse);
    return {255, 255, 255, 255};
}

Skin skinOf(const TextureDescription& texture) {
    Skin picture(static_cast<int>(texture.width), static_cast<int>(texture.height), {});
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            const size_t at = (static_cast<size_t>(y) * texture.width + x) * 4;
            picture.setPixel(x, y,
                             {texture.rgba[at], texture.rgba[at + 1], texture.rgba[at + 2],
                              texture.rgba[at + 3]});
        }
    }
    return picture;
}

// The look a painted mesh keeps: its shine and see-through, with white for
// the colours the skin now carries.
LookDescription paintedLook(const LookDescription& look) {
    LookDescription painted;
    painted.hasMaterial = true;
    const float alpha = look.hasMaterial ? look.diffuse[3] : 1.0f;
    painted.diffuse = {1, 1, 1, alpha};
    painted.ambient = {1, 1, 1, alpha};
    if (look.hasMaterial) {
        painted.specular = look.specular;
        painted.emission = look.emission;
        painted.shininess = look.shininess;
    } else {
        painted.specular = {0, 0, 0, 1};
        painted.emission = {0, 0, 0, 1};
    }
    painted.blended = look.blended;
    return painted;
}

// Normals per vertex as far as the mesh has them: none, or one for each.
std::vector<float> normalsPerVertex(const MeshDescription& mesh) {
    const size_t n = vertexCount(mesh);
    if (mesh.normals.size() == 3 * n)
        return mesh.normals;
    if (mesh.normals.size() != 3)
        return {};
    std::vector<float> each;
    each.reserve(3 * n);
    for (size_t i = 0; i < n; ++i)
        each.insert(each.end(), mesh.normals.begin(), mesh.normals.end());
    return each;
}

// A part that already wears one picture, laid inside it, with no colours
// of its own per vertex: it keeps its texture coordinates.
bool wearsOnePicture(const PartDescription& part, const ModelDescription& model) {
    if (part.meshes.empty())
        return false;
    const LookDescription& first = part.meshes.front().look;
    if (first.texture < 0 || static_cast<size_t>(first.texture) >= model.textures.size())
        return false;
    return std::all_of(part.meshes.begin(), part.meshes.end(), [&](const MeshDescription& mesh) {
        const size_t n = vertexCount(mesh);
        return mesh.look == first && mesh.texCoords.size() == 2 * n && mesh.colors.size() <= 4 &&
               std::all_of(mesh.texCoords.begin(), mesh.texCoords.end(), [](float c) {
                   return c >= -kCoordinateSlack && c <= 1.0f + kCoordinateSlack;
               });
    });
}

PaintPart keepingItsPicture(const PartDescription& part, const ModelDescription& model) {
    PaintPart painted;
    const MeshDescription& first = part.meshes.front();
    const TextureDescription& texture = model.textures[static_cast<size_t>(first.look.texture)];
    Skin picture = skinOf(texture);
    painted.skin = resampled(picture, std::min(picture.width(), Skin::kLargestSide),
                             std::min(picture.height(), Skin::kLargestSide));
    const Rgba tint = baseColor(first, 0);
    for (int y = 0; y < painted.skin.height(); ++y) {
        for (int x = 0; x < painted.skin.width(); ++x)
            painted.skin.setPixel(x, y, times(painted.skin.pixel(x, y), tint));
    }
    for (const MeshDescription& mesh : part.meshes) {
        PaintMesh m;
        m.positions = mesh.positions;
        m.normals = normalsPerVertex(mesh);
        m.texCoords = mesh.texCoords;
        for (float& c : m.texCoords)
            c = std::clamp(c, 0.0f, 1.0f);
        m.triangles = mesh.triangles;
        m.look = paintedLook(mesh.look);
        painted.meshes.push_back(std::move(m));
    }
    return painted;
}

// A piece of a mesh: triangles joined by shared corners (as one ball, one
// leg, one eye), laid on the skin by itself so that no other piece shares
// its texels.
struct Piece {
    size_t mesh = 0;
    std::vector<size_t> triangles; // index of each triangle's first corner in mesh.triangles
};

// The pieces of a part's meshes: triangles that share a corner, or a
// corner's place, are of one piece.
std::vector<Piece> piecesOf(const PartDescription& part) {
    std::vector<Piece> pieces;
    for (size_t m = 0; m < part.meshes.size(); ++m) {
        const MeshDescription& mesh = part.meshes[m];
        const size_t n = vertexCount(mesh);
        std::vector<std::uint32_t> root(n);
        std::iota(root.begin(), root.end(), 0u);
        const auto find = [&](std::uint32_t v) {
            while (root[v] != v)
                v = root[v] = root[root[v]];
            return v;
        };
        const auto join = [&](std::uint32_t a, std::uint32_t b) {
            root[find(a)] = find(b);
        };
        std::map<std::array<float, 3>, std::uint32_t> places;
        for (std::uint32_t v = 0; v < n; ++v) {
            const std::array<float, 3> at{mesh.positions[3 * v], mesh.positions[3 * v + 1],
                                          mesh.positions[3 * v + 2]};
            const auto [found, added] = places.try_emplace(at, v);
            if (!added)
                join(v, found->second);
        }
        for (size_t i = 0; i + 2 < mesh.triangles.size(); i += 3) {
            join(mesh.triangles[i], mesh.triangles[i + 1]);
            join(mesh.triangles[i], mesh.triangles[i + 2]);
        }
        std::map<std::uint32_t, size_t> pieceOfRoot;
        for (size_t i = 0; i + 2 < mesh.triangles.size(); i += 3) {
            const auto [found, added] =
                pieceOfRoot.try_emplace(find(mesh.triangles[i]), pieces.size());
            if (added)
                pieces.push_back({m, {}});
            pieces[found->second].triangles.push_back(i);
        }
    }
    return pieces;
}

// The box around a piece, and where each of its six sides lies on the
// skin: side by side, seen from outside, upright (y up; the top seen with
// the front below). In the box's units until placed on the skin.
class BoxLayout {
public:
    BoxLayout(const MeshDescription& mesh, const Piece& piece) {
        low_.fill(std::numeric_limits<double>::max());
        Vec3 high;
        high.fill(std::numeric_limits<double>::lowest());
        for (size_t first : piece.triangles) {
            for (size_t c = 0; c < 3; ++c) {
                const Vec3 p = vertexOf(mesh.positions, mesh.triangles[first + c]);
                for (int k = 0; k < 3; ++k) {
                    low_[k] = std::min(low_[k], p[k]);
                    high[k] = std::max(high[k], p[k]);
                }
            }
        }
        for (int k = 0; k < 3; ++k)
            size_[k] = std::max(high[k] - low_[k], 1e-6);
    }

    // Its size on the skin at a scale (texels a unit), with a gutter of
    // texels around each side.
    double width(double scale, int gutter) const {
        return 2 * (size_[0] + size_[2]) * scale + 5 * gutter;
    }
    double height(double scale, int gutter) const {
        return (size_[1] + size_[2]) * scale + 3 * gutter;
    }
    // How much room it takes at a scale of one.
    double area() const { return 2 * (size_[0] + size_[2]) * (size_[1] + size_[2]); }

    void placeAt(double left, double bottom, double scale, int gutter, int side) {
        left_ = left, bottom_ = bottom, scale_ = scale, gutter_ = gutter, side_ = side;
    }

    // Which side of the box a triangle faces most: 0 +x, 1 -x, 2 +y, 3 -y, 4 +z, 5 -z.
    static int sideFaced(const Vec3& a, const Vec3& b, const Vec3& c) {
        const Vec3 u{b[0] - a[0], b[1] - a[1], b[2] - a[2]};
        const Vec3 w{c[0] - a[0], c[1] - a[1], c[2] - a[2]};
        const Vec3 n{u[1] * w[2] - u[2] * w[1], u[2] * w[0] - u[0] * w[2],
                     u[0] * w[1] - u[1] * w[0]};
        int axis = 2;
        if (std::abs(n[0]) >= std::abs(n[1]) && std::abs(n[0]) >= std::abs(n[2]))
            axis = 0;
        else if (std::abs(n[1]) >= std::abs(n[2]))
            axis = 1;
        return 2 * axis + (n[axis] < 0 ? 1 : 0);
    }

    // Where p lies on the skin when seen from the given side, in texture coordinates.
    std::array<float, 2> place(const Vec3& p, int seenFrom) const {
        const double x = p[0] - low_[0], y = p[1] - low_[1], z = p[2] - low_[2];
        const double X = size_[0], Y = size_[1], Z = size_[2];
        double u = 0, v = 0;
        int column = 0, row = 0;     // the side's place among the sides
        double left = 0, bottom = 0; // the box units before it, across and up
        switch (seenFrom) {
        case 4:
            u = x, v = y;
            break; // front
        case 5:
            u = X - x, v = y, left = X, column = 1;
            break; // back
        case 0:
            u = Z - z, v = y, left = 2 * X, column = 2;
            break; // +x
        case 1:
            u = z, v = y, left = 2 * X + Z, column = 3;
            break; // -x
        case 2:
            u = x, v = Z - z, bottom = Y, row = 1;
            break; // top
        default:
            u = x, v = z, left = X, bottom = Y, column = 1, row = 1;
            break; // bottom
        }
        const double s = left_ + gutter_ * (column + 1) + (left + u) * scale_;
        const double t = bottom_ + gutter_ * (row + 1) + (bottom + v) * scale_;
        return {static_cast<float>(s / side_), static_cast<float>(t / side_)};
    }

private:
    Vec3 low_{}, size_{};
    double left_ = 0, bottom_ = 0, scale_ = 1;
    int gutter_ = 0, side_ = 1;
};

// Lays the pieces' boxes on a skin of the given side in rows, tallest
// first, at the largest scale at which all fit. False when even the gutters
// don't fit (a part of very many tiny pieces).
bool packBoxes(std::vector<BoxLayout>& boxes, int side, int gutter) {
    std::vector<size_t> order(boxes.size());
    std::iota(order.begin(), order.end(), size_t{0});
    std::sort(order.begin(), order.end(), [&](size_t a, size_t b) {
        return boxes[a].height(1.0, 0) > boxes[b].height(1.0, 0);
    });
    // Lays them at a scale, or says they don't fit.
    const auto lay = [&](double scale, bool place) {
        double x = 0, y = 0, rowHeight = 0;
        for (size_t k : order) {
            const double w = boxes[k].width(scale, gutter), h = boxes[k].height(scale, gutter);
            if (x + w > side) {
                x = 0;
                y += rowHeight;
                rowHeight = 0;
            }
            if (x + w > side || y + h > side)
                return false;
            if (place)
                boxes[k].placeAt(x, y, scale, gutter, side);
            x += w;
            rowHeight = std::max(rowHeight, h);
        }
        return true;
    };
    double fits = 0.0, fitsNot = 0.0;
    for (const BoxLayout& box : boxes)
        fitsNot = std::max(fitsNot, side / std::min(box.width(1.0, 0), box.height(1.0, 0)));
    if (!lay(fitsNot * 1e-9, false))
        return false;
    for (int step = 0; step < 40; ++step) {
        const double middle = (fits + fitsNot) / 2.0;
        (lay(middle, false) ? fits : fitsNot) = middle;
    }
    return fits > 0.0 && lay(fits, true);
}

// Paints one triangle's colours onto the skin at its place there, a texel
// beyond its edges so that no seam shows between neighbours.
class TriangleBaker {
public:
    TriangleBaker(Skin& skin, const std::vector<Skin>& pictures)
        : skin_(skin), pictures_(pictures),
          covered_(static_cast<size_t>(skin.width()) * static_cast<size_t>(skin.height())) {}

    // Carries the colours at the pieces' edges outwards into the gutters
    // between them, a texel a pass, so that a blurred (smaller) copy of the
    // skin shows no seams of the background there.
    void spreadIntoGutters(int passes) {
        const int w = skin_.width(), h = skin_.height();
        for (int pass = 0; pass < passes; ++pass) {
            std::vector<std::pair<size_t, Rgba>> spread;
            for (int y = 0; y < h; ++y) {
                for (int x = 0; x < w; ++x) {
                    if (covered_[index(x, y)])
                        continue;
                    int r = 0, g = 0, b = 0, n = 0;
                    for (const auto& [dx, dy] : {std::pair{-1, 0}, {1, 0}, {0, -1}, {0, 1}}) {
                        const int nx = x + dx, ny = y + dy;
                        if (nx < 0 || ny < 0 || nx >= w || ny >= h || !covered_[index(nx, ny)])
                            continue;
                        const Rgba c = skin_.pixel(nx, ny);
                        r += c.r, g += c.g, b += c.b, ++n;
                    }
                    if (n > 0)
                        spread.push_back(
                            {index(x, y),
                             {static_cast<std::uint8_t>(r / n), static_cast<std::uint8_t>(g / n),
                              static_cast<std::uint8_t>(b / n), 255}});
                }
            }
            for (const auto& [at, color] : spread) {
                skin_.setPixel(static_cast<int>(at % static_cast<size_t>(w)),
                               static_cast<int>(at / static_cast<size_t>(w)), color);
                covered_[at] = true;
            }
        }
    }

    void bake(const MeshDescription& mesh, const PaintMesh& laid,
              const std::array<std::uint32_t, 3>& source,
              const std::array<std::uint32_t, 3>& placed) {
        std::array<double, 3> xs{}, ys{};
        for (int k = 0; k < 3; ++k) {
            xs[k] = laid.texCoords[2 * placed[k]] * skin_.width();
            ys[k] = laid.texCoords[2 * placed[k] + 1] * skin_.height();
        }
        const double area = (xs[1] - xs[0]) * (ys[2] - ys[0]) - (xs[2] - xs[0]) * (ys[1] - ys[0]);
        if (std::abs(area) < 1e-12)
            return;
        const int x0 =
            std::max(0, static_cast<int>(std::floor(*std::min_element(xs.begin(), xs.end()))) - 1);
        const int y0 =
            std::max(0, static_cast<int>(std::floor(*std::min_element(ys.begin(), ys.end()))) - 1);
        const int x1 =
            std::min(skin_.width(),
                     static_cast<int>(std::ceil(*std::max_element(xs.begin(), xs.end()))) + 1);
        const int y1 =
            std::min(skin_.height(),
                     static_cast<int>(std::ceil(*std::max_element(ys.begin(), ys.end()))) + 1);
        // A texel's reach past an edge, in the weights' units.
        std::array<double, 3> slack{};
        for (int k = 0; k < 3; ++k) {
            const int a = (k + 1) % 3, b = (k + 2) % 3;
            const double edge = std::hypot(xs[b] - xs[a], ys[b] - ys[a]);
            slack[k] = 1.5 * edge / std::abs(area);
        }
        const Skin* picture = pictureOf(mesh);
        for (int y = y0; y < y1; ++y) {
            for (int x = x0; x < x1; ++x) {
                const double px = x + 0.5, py = y + 0.5;
                std::array<double, 3> w{};
                for (int k = 0; k < 3; ++k) {
                    const int a = (k + 1) % 3, b = (k + 2) % 3;
                    w[k] = ((xs[b] - xs[a]) * (py - ys[a]) - (ys[b] - ys[a]) * (px - xs[a])) / area;
                }
                if (w[0] < -slack[0] || w[1] < -slack[1] || w[2] < -slack[2])
                    continue;
                for (double& weight : w)
                    weight = std::max(weight, 0.0);
                const double sum = w[0] + w[1] + w[2];
                for (double& weight : w)
                    weight /= sum;
                skin_.setPixel(x, y, colorAt(mesh, source, w, picture));
                covered_[index(x, y)] = true;
            }
        }
    }

private:
    size_t index(int x, int y) const {
        return static_cast<size_t>(y) * static_cast<size_t>(skin_.width()) + static_cast<size_t>(x);
    }

    const Skin* pictureOf(const MeshDescription& mesh) const {
        const auto index = mesh.look.texture;
        if (index < 0 || static_cast<size_t>(index) >= pictures_.size() ||
            mesh.texCoords.size() != 2 * vertexCount(mesh))
            return nullptr;
        return &pictures_[static_cast<size_t>(index)];
    }

    static Rgba colorAt(const MeshDescription& mesh, const std::array<std::uint32_t, 3>& v,
                        const std::array<double, 3>& w, const Skin* picture) {
        std::array<double, 4> c{};
        for (int k = 0; k < 3; ++k) {
            const Rgba base = baseColor(mesh, v[k]);
            c[0] += w[k] * base.r, c[1] += w[k] * base.g, c[2] += w[k] * base.b,
                c[3] += w[k] * base.a;
        }
        const auto round = [](double x) {
            return static_cast<std::uint8_t>(std::lround(x));
        };
        Rgba color{round(c[0]), round(c[1]), round(c[2]), round(c[3])};
        if (picture) {
            double s = 0, t = 0;
            for (int k = 0; k < 3; ++k) {
                s += w[k] * mesh.texCoords[2 * v[k]];
                t += w[k] * mesh.texCoords[2 * v[k] + 1];
            }
            color = times(color, picture->sample(s, t));
        }
        color.a = 255; // see-through lives in the material
        return color;
    }

    Skin& skin_;
    const std::vector<Skin>& pictures_;
    std::vector<bool> covered_;
};

PaintPart laidOnBoxes(const PartDescription& part, int side, const std::vector<Skin>& pictures) {
    PaintPart painted;
    std::vector<Piece> pieces = piecesOf(part);
    std::vector<BoxLayout> boxes;
    for (const Piece& piece : pieces)
        boxes.emplace_back(part.meshes[piece.mesh], piece);
    if (!packBoxes(boxes, side, kGutterTexels) && !packBoxes(boxes, side, 0)) {
        // Too many pieces to lie apart: the whole of each mesh is one piece.
        pieces.clear();
        boxes.clear();
        for (size_t m = 0; m < part.meshes.size(); ++m) {
            Piece whole{m, {}};
            for (size_t i = 0; i + 2 < part.meshes[m].triangles.size(); i += 3)
                whole.triangles.push_back(i);
            boxes.emplace_back(part.meshes[m], whole);
            pieces.push_back(std::move(whole));
        }
        packBoxes(boxes, side, 0);
    }
    Rgba background{200, 200, 200, 255};
    if (!part.meshes.empty() && vertexCount(part.meshes.front()) > 0) {
        background = baseColor(part.meshes.front(), 0);
        background.a = 255;
    }
    painted.skin = Skin(side, side, background);
    for (const MeshDescription& mesh : part.meshes) {
        PaintMesh laid;
        laid.look = paintedLook(mesh.look);
        painted.meshes.push_back(std::move(laid));
    }
    TriangleBaker baker(painted.skin, pictures);
    for (size_t k = 0; k < pieces.size(); ++k) {
        const MeshDescription& mesh = part.meshes[pieces[k].mesh];
        PaintMesh& laid = painted.meshes[pieces[k].mesh];
        const std::vector<float> normals = normalsPerVertex(mesh);
        // A vertex on two sides of the box lies in two places on the skin.
        std::map<std::pair<std::uint32_t, int>, std::uint32_t> copies;
        for (size_t first : pieces[k].triangles) {
            const std::array<std::uint32_t, 3> v{mesh.triangles[first], mesh.triangles[first + 1],
                                                 mesh.triangles[first + 2]};
            const int seen =
                BoxLayout::sideFaced(vertexOf(mesh.positions, v[0]), vertexOf(mesh.positions, v[1]),
                                     vertexOf(mesh.positions, v[2]));
            std::array<std::uint32_t, 3> placed{};
            for (int c = 0; c < 3; ++c) {
                const std::uint32_t source = v[static_cast<size_t>(c)];
                auto [found, added] = copies.try_emplace(
                    {source, seen}, static_cast<std::uint32_t>(laid.positions.size() / 3));
                if (added) {
                    laid.positions.insert(laid.positions.end(), mesh.positions.begin() + 3 * source,
                                          mesh.positions.begin() + 3 * source + 3);
                    if (!normals.empty())
                        laid.normals.insert(laid.normals.end(), normals.begin() + 3 * source,
                                            normals.begin() + 3 * source + 3);
                    const auto st = boxes[k].place(vertexOf(mesh.positions, source), seen);
                    laid.texCoords.insert(laid.texCoords.end(), st.begin(), st.end());
                }
                placed[static_cast<size_t>(c)] = found->second;
                laid.triangles.push_back(found->second);
            }
            baker.bake(mesh, laid, v, placed);
        }
    }
    baker.spreadIntoGutters(kGutterTexels * 2);
    return painted;
}

int powerOfTwoAtLeast(double value) {
    int side = kSmallestUsualSide;
    while (side < Skin::kLargestSide && side < value)
        side *= 2;
    return side;
}

// Each part's skin side: as large as the part is beside the largest one,
// all of them halved until they fit the budget.
std::vector<int> skinSides(const ModelDescription& model) {
    // A part's skin is as large as the room its pieces' boxes take.
    std::vector<double> across;
    for (const PartDescription& part : model.parts) {
        double room = 0.0;
        for (const Piece& piece : piecesOf(part))
            room += BoxLayout(part.meshes[piece.mesh], piece).area();
        across.push_back(std::sqrt(room));
    }
    const double largest = std::max(1e-6, *std::max_element(across.begin(), across.end()));
    std::vector<int> sides;
    for (double a : across)
        sides.push_back(powerOfTwoAtLeast(Skin::kLargestSide * a / largest));
    const auto texels = [&] {
        return std::accumulate(sides.begin(), sides.end(), 0LL,
                               [](long long sum, int s) { return sum + 1LL * s * s; });
    };
    while (texels() > kTexelBudget &&
           std::any_of(sides.begin(), sides.end(), [](int s) { return s > kSmallestSide; })) {
        for (int& s : sides)
            s = std::max(kSmallestSide, s / 2);
    }
    return sides;
}

} // namespace

PaintObject paintableFrom(const ModelDescription& model) {
    PaintObject object;
    object.name = model.name;
    if (model.parts.empty())
        return object;
    std::vector<Skin> pictures;
    for (const TextureDescription& texture : model.textures)
        pictures.push_back(skinOf(texture));
    const std::vector<int> sides = skinSides(model);
    for (size_t k = 0; k < model.parts.size(); ++k) {
        const PartDescription& part = model.parts[k];
        PaintPart painted = wearsOnePicture(part, model) ? keepingItsPicture(part, model)
                                                         : laidOnBoxes(part, sides[k], pictures);
        painted.name = part.name.empty() ? "Part" + std::to_string(k) : part.name;
        painted.parent = part.parent;
        painted.position = part.position;
        painted.rotation = part.rotation;
        object.parts.push_back(std::move(painted));
    }
    return object;
}

} // namespace vessa::paint3d
