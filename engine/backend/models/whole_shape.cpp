#include "models/whole_shape.h"

#include "models/lighter_shape.h"
#include "models/model_reading.h"
#include "scene/engine_frame.h"

#include <osg/Geometry>
#include <osg/Material>
#include <osg/NodeVisitor>
#include <osg/TriangleIndexFunctor>

#include <map>
#include <optional>

namespace vessa::core {

namespace {

struct Corners {
    std::vector<unsigned int> indices;
    void operator()(unsigned int a, unsigned int b, unsigned int c) {
        indices.insert(indices.end(), {a, b, c});
    }
};

class Geometries : public osg::NodeVisitor {
public:
    Geometries() : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN) {}
    void apply(osg::Drawable& drawable) override {
        if (osg::Geometry* geometry = drawable.asGeometry())
            found.push_back(geometry);
    }
    std::vector<osg::Geometry*> found;
};

// An array's value for vertex i: its own, the one for all, or fallback.
template <typename Array, typename Value>
Value ofVertex(const Array* array, unsigned int i, Value fallback) {
    if (!array || array->empty())
        return fallback;
    return array->getBinding() == osg::Array::BIND_PER_VERTEX && i < array->size() ? (*array)[i]
                                                                                   : (*array)[0];
}

// Meshes merged in one frame: every vertex with its own normal, colour and
// picture place.
struct Merged {
    osg::ref_ptr<osg::Vec3Array> points = new osg::Vec3Array;
    osg::ref_ptr<osg::Vec3Array> normals = new osg::Vec3Array;
    osg::ref_ptr<osg::Vec4Array> colors = new osg::Vec4Array;
    osg::ref_ptr<osg::Vec2Array> coords = new osg::Vec2Array;
    osg::ref_ptr<osg::DrawElementsUInt> triangles = new osg::DrawElementsUInt(GL_TRIANGLES);

    // color: the one for every vertex (a material's), or none for the mesh's own.
    void add(osg::Geometry& geometry, const osg::Matrixd& toFrame, std::optional<osg::Vec4> color) {
        const auto* points0 = dynamic_cast<const osg::Vec3Array*>(geometry.getVertexArray());
        if (!points0 || points0->empty())
            return;
        const auto first = static_cast<unsigned int>(points->size());
        const unsigned int count = points0->size();
        const auto* normals0 = dynamic_cast<const osg::Vec3Array*>(geometry.getNormalArray());
        const auto* colors0 = dynamic_cast<const osg::Vec4Array*>(geometry.getColorArray());
        const auto* coords0 = dynamic_cast<const osg::Vec2Array*>(geometry.getTexCoordArray(0));
        for (unsigned int i = 0; i < count; ++i) {
            points->push_back((*points0)[i] * toFrame);
            osg::Vec3 normal =
                osg::Matrixd::transform3x3(ofVertex(normals0, i, osg::Vec3(0, 0, 1)), toFrame);
            normal.normalize();
            normals->push_back(normal);
            colors->push_back(color ? *color : ofVertex(colors0, i, osg::Vec4(1, 1, 1, 1)));
            coords->push_back(ofVertex(coords0, i, osg::Vec2()));
        }
        osg::TriangleIndexFunctor<Corners> corners;
        geometry.accept(corners);
        for (unsigned int index : corners.indices) {
            if (index < count)
                triangles->push_back(first + index);
        }
    }

    osg::ref_ptr<osg::Geometry> geometry(osg::StateSet* look) const {
        osg::ref_ptr<osg::Geometry> merged = new osg::Geometry;
        merged->setVertexArray(points);
        merged->setNormalArray(normals, osg::Array::BIND_PER_VERTEX);
        merged->setColorArray(colors, osg::Array::BIND_PER_VERTEX);
        merged->setTexCoordArray(0, coords, osg::Array::BIND_PER_VERTEX);
        merged->addPrimitiveSet(triangles);
        merged->setStateSet(look);
        return merged;
    }
};

// A look that only colours a mesh can be drawn in vertex colours with the
// view's own material; a picture or see-through can't.
bool onlyColours(const osg::StateSet* look) {
    return !look || (!look->getTextureAttribute(0, osg::StateAttribute::TEXTURE) &&
                     look->getRenderingHint() != osg::StateSet::TRANSPARENT_BIN);
}

// The colour a material gives a mesh whose vertex colours it does not take.
std::optional<osg::Vec4> materialColour(const osg::StateSet* look) {
    const auto* material =
        look ? dynamic_cast<const osg::Material*>(look->getAttribute(osg::StateAttribute::MATERIAL))
             : nullptr;
    if (!material || material->getColorMode() != osg::Material::OFF)
        return std::nullopt;
    return material->getDiffuse(osg::Material::FRONT);
}

} // namespace

MergedShape mergedShape(const std::vector<std::pair<osg::Node*, osg::Matrixd>>& placed) {
    std::map<osg::StateSet*, Merged> byLook; // null: the meshes only coloured
    MergedShape shape{new osg::Geode, 0};
    for (const auto& [node, toFrame] : placed) {
        Geometries geometries;
        node->accept(geometries);
        for (osg::Geometry* geometry : geometries.found) {
            osg::StateSet* look = geometry->getStateSet();
            const bool plain = onlyColours(look);
            byLook[plain ? nullptr : look].add(*geometry, toFrame,
                                               plain ? materialColour(look) : std::nullopt);
            ++shape.meshes;
        }
    }
    for (const auto& [look, merged] : byLook)
        shape.geode->addDrawable(merged.geometry(look));
    return shape;
}

MergedShape wholeShape(const Model& model) {
    std::vector<std::pair<osg::Node*, osg::Matrixd>> placed;
    std::vector<osg::Matrixd> toObject(model.parts.size());
    for (size_t k = 0; k < model.parts.size(); ++k) {
        const ModelPart& part = model.parts[k];
        // The object's own place is where the engine puts it: its frame.
        if (k > 0 && part.parent >= 0 && static_cast<size_t>(part.parent) < k)
            toObject[k] = osg::Matrixd::rotate(toOsgRotation(part.orientation)) *
                          osg::Matrixd::translate(toOsgPoint(part.position)) *
                          toObject[static_cast<size_t>(part.parent)];
        if (part.shape)
            placed.emplace_back(fullDetail(part.shape.get()), toObject[k]);
    }
    return mergedShape(placed);
}

} // namespace vessa::core
