#include "models/lighter_shape.h"

#include <osg/ComputeBoundsVisitor>
#include <osg/Geometry>
#include <osg/NodeVisitor>
#include <osg/TriangleIndexFunctor>

#include <algorithm>
#include <array>
#include <cmath>
#include <map>
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
        // The first vertex met in a cell stands for all of them that face
        // the same way: the faces of a box, the two sides of a thin plate,
        // stay apart.
        std::map<std::array<int, 4>, unsigned int> cells;
        std::vector<unsigned int> kept;
        std::vector<unsigned int> standIn(points->size());
        for (unsigned int i = 0; i < points->size(); ++i) {
            const osg::Vec3 at = ((*points)[i] - origin_) / cell_;
            const std::array<int, 4> key = {
                static_cast<int>(std::floor(at.x())), static_cast<int>(std::floor(at.y())),
                static_cast<int>(std::floor(at.z())), normals ? facing((*normals)[i]) : 0};
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
