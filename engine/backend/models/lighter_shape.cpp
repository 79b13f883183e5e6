#include "models/lighter_shape.h"

#include <osg/ComputeBoundsVisitor>
#include <osg/Geometry>
#include <osg/NodeVisitor>
#include <osg/TriangleIndexFunctor>

#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <map>
#include <numeric>
#include <vector>

namespace vessa::core {

namespace {

struct TriangleList {
    std::vector<unsigned int> corners;
    void operator()(unsigned int a, unsigned int b, unsigned int c) {
        corners.insert(corners.end(), {a, b, c});
    }
};

template <typename Array>
osg::ref_ptr<Array> gathered(const Array& from, const std::vector<unsigned int>& kept) {
    osg::ref_ptr<Array> to = new Array;
    to->reserve(kept.size());
    for (unsigned int i : kept)
        to->push_back(from[i]);
    return to;
}

// Which of the six axis directions a normal is nearest.
int facing(const osg::Vec3& normal) {
    int axis = 0;
    for (int i = 1; i < 3; ++i) {
        if (std::abs(normal[i]) > std::abs(normal[axis]))
            axis = i;
    }
    return 2 * axis + (normal[axis] < 0.0f ? 1 : 0);
}

// The pieces of a geometry's pictures: vertices joined by its triangles, and
// vertices at one place with one place in every picture, are of one piece. A
// seam in a picture parts two pieces: its vertices stand there twice, once for
// each side, at two places of the picture. Without pictures all is one piece.
std::vector<unsigned int> picturePieces(const osg::Geometry& geometry, const osg::Vec3Array& points,
                                        const std::vector<unsigned int>& corners) {
    std::vector<const osg::Vec2Array*> pictures;
    for (unsigned int unit = 0; unit < geometry.getNumTexCoordArrays(); ++unit) {
        const auto* coords = dynamic_cast<const osg::Vec2Array*>(geometry.getTexCoordArray(unit));
        if (coords && coords->getBinding() == osg::Array::BIND_PER_VERTEX &&
            coords->size() == points.size())
            pictures.push_back(coords);
    }
    std::vector<unsigned int> piece(points.size(), 0);
    if (pictures.empty())
        return piece;
    std::iota(piece.begin(), piece.end(), 0u);
    const auto root = [&](unsigned int v) {
        while (piece[v] != v)
            v = piece[v] = piece[piece[v]];
        return v;
    };
    const auto join = [&](unsigned int a, unsigned int b) {
        piece[root(a)] = root(b);
    };
    for (size_t t = 0; t + 2 < corners.size(); t += 3) {
        join(corners[t], corners[t + 1]);
        join(corners[t], corners[t + 2]);
    }
    // Vertices alike in place and pictures, found next to each other once sorted.
    const auto alike = [&](unsigned int a, unsigned int b, auto compare) {
        for (int k = 0; k < 3; ++k) {
            if (points[a][k] != points[b][k])
                return compare(points[a][k], points[b][k]);
        }
        for (const osg::Vec2Array* coords : pictures) {
            for (int k = 0; k < 2; ++k) {
                if ((*coords)[a][k] != (*coords)[b][k])
                    return compare((*coords)[a][k], (*coords)[b][k]);
            }
        }
        return compare(0.0f, 0.0f);
    };
    std::vector<unsigned int> order(points.size());
    std::iota(order.begin(), order.end(), 0u);
    std::sort(order.begin(), order.end(),
              [&](unsigned int a, unsigned int b) { return alike(a, b, std::less<float>()); });
    for (size_t k = 1; k < order.size(); ++k) {
        if (alike(order[k - 1], order[k], std::equal_to<float>()))
            join(order[k - 1], order[k]);
    }
    for (unsigned int v = 0; v < piece.size(); ++v)
        piece[v] = root(v);
    return piece;
}

class Gatherer : public osg::NodeVisitor {
public:
    Gatherer(const osg::BoundingBox& bounds, int cellsAcross)
        : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN), origin_(bounds._min) {
        const osg::Vec3 extent = bounds._max - bounds._min;
        const float longest = std::max({extent.x(), extent.y(), extent.z(), 1e-6F});
        cell_ = longest / static_cast<float>(cellsAcross);
    }

    void apply(osg::Drawable& drawable) override {
        if (osg::Geometry* geometry = drawable.asGeometry())
            gather(*geometry);
    }

    int triangles() const { return triangles_; }

private:
    void gather(osg::Geometry& geometry) {
        auto* points = dynamic_cast<osg::Vec3Array*>(geometry.getVertexArray());
        if (!points || points->empty())
            return;
        osg::TriangleIndexFunctor<TriangleList> triangles;
        geometry.accept(triangles);
        const auto* normals = dynamic_cast<const osg::Vec3Array*>(geometry.getNormalArray());
        if (normals && (normals->getBinding() != osg::Array::BIND_PER_VERTEX ||
                        normals->size() != points->size()))
            normals = nullptr;
        const std::vector<unsigned int> pieces =
            picturePieces(geometry, *points, triangles.corners);
        // The first vertex met in a cell stands for all of them that face
        // the same way and are of the same piece of the pictures: the faces
        // of a box, the two sides of a thin plate, the two sides of a seam
        // in a picture, stay apart.
        std::map<std::array<int, 5>, unsigned int> cells;
        std::vector<unsigned int> kept;
        std::vector<unsigned int> standIn(points->size());
        for (unsigned int i = 0; i < points->size(); ++i) {
            const osg::Vec3 at = ((*points)[i] - origin_) / cell_;
            const std::array<int, 5> key = {
                static_cast<int>(std::floor(at.x())), static_cast<int>(std::floor(at.y())),
                static_cast<int>(std::floor(at.z())), normals ? facing((*normals)[i]) : 0,
                static_cast<int>(pieces[i])};
            auto [found, made] = cells.try_emplace(key, static_cast<unsigned int>(kept.size()));
            if (made)
                kept.push_back(i);
            standIn[i] = found->second;
        }
        auto* faces = new osg::DrawElementsUInt(GL_TRIANGLES);
        const auto& corners = triangles.corners;
        for (size_t t = 0; t + 2 < corners.size(); t += 3) {
            const unsigned int a = standIn[corners[t]], b = standIn[corners[t + 1]],
                               c = standIn[corners[t + 2]];
            if (a != b && b != c && a != c) {
                faces->push_back(a);
                faces->push_back(b);
                faces->push_back(c);
            }
        }
        replaceArrays(geometry, kept, standIn);
        geometry.removePrimitiveSet(0, geometry.getNumPrimitiveSets());
        geometry.addPrimitiveSet(faces);
        triangles_ += static_cast<int>(faces->size() / 3);
    }

    // A cell's vertex takes the first one's colour and picture place, and
    // the mean of their normals, so that it is shaded as the surface around it.
    static osg::ref_ptr<osg::Vec3Array> meanNormals(const osg::Vec3Array& normals,
                                                    const std::vector<unsigned int>& kept,
                                                    const std::vector<unsigned int>& standIn) {
        osg::ref_ptr<osg::Vec3Array> means = gathered(normals, kept);
        for (unsigned int i = 0; i < normals.size(); ++i) {
            if (kept[standIn[i]] != i)
                (*means)[standIn[i]] += normals[i];
        }
        for (unsigned int k = 0; k < means->size(); ++k) {
            if ((*means)[k].normalize() == 0.0f)
                (*means)[k] = normals[kept[k]];
        }
        return means;
    }

    static void replaceArrays(osg::Geometry& geometry, const std::vector<unsigned int>& kept,
                              const std::vector<unsigned int>& standIn) {
        geometry.setVertexArray(
            gathered(*static_cast<osg::Vec3Array*>(geometry.getVertexArray()), kept));
        auto perVertex = [](const osg::Array* array) {
            return array && array->getBinding() == osg::Array::BIND_PER_VERTEX;
        };
        if (auto* normals = dynamic_cast<osg::Vec3Array*>(geometry.getNormalArray());
            normals && perVertex(normals) && normals->size() == standIn.size())
            geometry.setNormalArray(meanNormals(*normals, kept, standIn),
                                    osg::Array::BIND_PER_VERTEX);
        if (auto* colors = dynamic_cast<osg::Vec4Array*>(geometry.getColorArray());
            colors && perVertex(colors))
            geometry.setColorArray(gathered(*colors, kept), osg::Array::BIND_PER_VERTEX);
        for (unsigned int unit = 0; unit < geometry.getNumTexCoordArrays(); ++unit) {
            if (auto* coords = dynamic_cast<osg::Vec2Array*>(geometry.getTexCoordArray(unit)))
                geometry.setTexCoordArray(unit, gathered(*coords, kept),
                                          osg::Array::BIND_PER_VERTEX);
            else
                geometry.setTexCoordArray(unit, nullptr);
        }
    }

    osg::Vec3 origin_;
    float cell_ = 1.0f;
    int triangles_ = 0;
};

} // namespace

LighterShape lighterShape(osg::Node* shape, int cellsAcross) {
    osg::ComputeBoundsVisitor measure;
    shape->accept(measure);
    LighterShape light{
        osg::clone(shape, osg::CopyOp::DEEP_COPY_NODES | osg::CopyOp::DEEP_COPY_DRAWABLES), 0};
    if (measure.getBoundingBox().valid()) {
        Gatherer gatherer(measure.getBoundingBox(), cellsAcross);
        light.shape->accept(gatherer);
        light.triangles = gatherer.triangles();
    }
    return light;
}

} // namespace vessa::core
