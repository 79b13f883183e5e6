#include "model.h"

#include <osg/Geode>
#include <osg/Geometry>
#include <osg/Material>
#include <osg/MatrixTransform>
#include <osg/TriangleIndexFunctor>
#include <osgDB/WriteFile>

#include <iostream>
#include <map>

namespace gallery {

namespace {

// Shapes of one colour share one state set, and in the file one material.
class Materials {
public:
    osg::StateSet* forColor(const osg::Vec4& color) {
        auto& stateSet = byColor_[color];
        if (!stateSet) {
            auto material = new osg::Material;
            material->setDiffuse(osg::Material::FRONT_AND_BACK, color);
            material->setAmbient(osg::Material::FRONT_AND_BACK, color);
            material->setSpecular(osg::Material::FRONT_AND_BACK, {0.2f, 0.2f, 0.2f, 1});
            material->setShininess(osg::Material::FRONT_AND_BACK, 24);
            stateSet = new osg::StateSet;
            stateSet->setAttributeAndModes(material);
        }
        return stateSet.get();
    }

private:
    std::map<osg::Vec4, osg::ref_ptr<osg::StateSet>> byColor_;
};

osg::ref_ptr<osg::Geometry> geometryOf(const Mesh& mesh) {
    auto vertices = new osg::Vec3Array(mesh.positions.begin(), mesh.positions.end());
    auto normals = new osg::Vec3Array(mesh.normals.begin(), mesh.normals.end());
    auto triangles =
        new osg::DrawElementsUInt(GL_TRIANGLES, mesh.indices.begin(), mesh.indices.end());
    osg::ref_ptr<osg::Geometry> geometry = new osg::Geometry;
    geometry->setVertexArray(vertices);
    geometry->setNormalArray(normals, osg::Array::BIND_PER_VERTEX);
    geometry->addPrimitiveSet(triangles);
    return geometry;
}

// One geometry per colour, with coordinates relative to the given origin.
osg::ref_ptr<osg::Geode> geodeOf(const std::vector<Shape>& shapes, const osg::Vec3& origin,
                                 Materials& materials) {
    std::map<osg::Vec4, Mesh> meshByColor;
    for (const auto& shape : shapes) {
        meshByColor[shape.color].append(shape.transformed(osg::Matrix::translate(-origin)).mesh);
    }
    osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    for (const auto& [color, mesh] : meshByColor) {
        auto geometry = geometryOf(mesh);
        geometry->setStateSet(materials.forColor(color));
        geode->addDrawable(geometry);
    }
    return geode;
}

osg::ref_ptr<osg::MatrixTransform> partNode(const Part& part, const osg::Vec3& parentPivot,
                                            Materials& materials) {
    osg::ref_ptr<osg::MatrixTransform> node = new osg::MatrixTransform;
    node->setName(part.name);
    node->setMatrix(osg::Matrix::translate(part.pivot - parentPivot));
    // Parts move at run time, so optimisers must not fold them away.
    node->setDataVariance(osg::Object::DYNAMIC);
    if (!part.shapes.empty()) {
        node->addChild(geodeOf(part.shapes, part.pivot, materials));
    }
    for (const auto& child : part.parts) {
        node->addChild(partNode(child, part.pivot, materials));
    }
    return node;
}

} // namespace

osg::ref_ptr<osg::Group> buildModel(const ObjectRecipe& recipe) {
    Materials materials;
    osg::ref_ptr<osg::Group> root = new osg::Group;
    root->setName(recipe.name);
    if (!recipe.body.empty()) {
        root->addChild(geodeOf(recipe.body, {}, materials));
    }
    for (const auto& part : recipe.parts) {
        root->addChild(partNode(part, {}, materials));
    }
    return root;
}

bool writeModel(const osg::Node& model, const std::filesystem::path& file) {
    // The binary writer picks its format from the file name, so write under
    // the format's own extension and then take the object file's name.
    std::filesystem::path binary = file;
    binary.replace_extension(".osgb");
    if (!osgDB::writeNodeFile(model, binary.string())) {
        std::cerr << "Could not write " << binary << "\n";
        return false;
    }
    std::error_code error;
    std::filesystem::rename(binary, file, error);
    if (error) {
        std::cerr << "Could not rename " << binary << " to " << file << ": " << error.message()
                  << "\n";
        return false;
    }
    return true;
}

std::vector<unsigned> triangleIndices(osg::Geometry& geometry) {
    struct Sink {
        std::vector<unsigned> indices;
        void operator()(unsigned a, unsigned b, unsigned c) {
            indices.insert(indices.end(), {a, b, c});
        }
    };
    osg::TriangleIndexFunctor<Sink> sink;
    geometry.accept(sink);
    return sink.indices;
}

} // namespace gallery
