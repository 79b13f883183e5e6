#include "models/model_reading.h"

#include "models/lighter_shape.h"
#include "scene/engine_frame.h"

#include <osg/ComputeBoundsVisitor>
#include <osg/Geode>
#include <osg/Geometry>
#include <osg/LOD>
#include <osg/Material>
#include <osg/MatrixTransform>
#include <osg/NodeVisitor>
#include <osg/Texture>
#include <osg/TriangleFunctor>
#include <osgDB/ReadFile>
#include <osgDB/Registry>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <vector>

namespace vessa::core {

namespace {

// Shapes with more triangles than this get a lighter copy for when they are
// small in the picture, gathered on a grid this many cells across.
constexpr int kSimplifyAbove = 400;
constexpr int kLightCells = 10;
constexpr float kFullDetailPixels = 120.0f;
constexpr const char* kDetailName = "detail levels";

std::string lowerExtension(const std::string& path) {
    std::string ext = std::filesystem::path(path).extension().string();
    if (!ext.empty())
        ext.erase(0, 1);
    std::transform(ext.begin(), ext.end(), ext.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return ext;
}

// The engine's own files are OpenSceneGraph's binary format under another
// name (and OpenSceneGraph knows an unrelated .mdl format), so they go to
// the osgb reader directly.
osg::ref_ptr<osg::Node> readEngineFile(const std::string& path) {
    osgDB::ReaderWriter* osgb = osgDB::Registry::instance()->getReaderWriterForExtension("osgb");
    std::ifstream in(path, std::ios::binary);
    if (!osgb || !in)
        return nullptr;
    return osgb->readNode(in).getNode();
}

struct TriangleCount {
    int triangles = 0;
    void operator()(const osg::Vec3&, const osg::Vec3&, const osg::Vec3&) { ++triangles; }
};

// Counts vertices and faces, gives every geometry a colour of its own for
// when it is drawn unlit (its material's, else white), and drops textures
// whose picture could not be read, so such shapes draw untextured.
class ShapePreparer : public osg::NodeVisitor {
public:
    ShapePreparer() : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN) {}

    void apply(osg::Node& node) override {
        const bool pushed = enter(node.getStateSet());
        traverse(node);
        if (pushed)
            materials_.pop_back();
    }

    void apply(osg::Drawable& drawable) override {
        const bool pushed = enter(drawable.getStateSet());
        if (osg::Geometry* geometry = drawable.asGeometry())
            prepare(*geometry);
        if (pushed)
            materials_.pop_back();
    }

    int vertices = 0;
    int faces = 0;

private:
    bool enter(osg::StateSet* look) {
        if (!look)
            return false;
        for (unsigned int unit = 0; unit < look->getTextureAttributeList().size(); ++unit) {
            auto* texture = dynamic_cast<osg::Texture*>(
                look->getTextureAttribute(unit, osg::StateAttribute::TEXTURE));
            if (texture && texture->getNumImages() > 0 && !texture->getImage(0)) {
                look->removeTextureAttribute(unit, texture);
                look->removeTextureMode(unit, GL_TEXTURE_2D);
            }
        }
        auto* material =
            dynamic_cast<osg::Material*>(look->getAttribute(osg::StateAttribute::MATERIAL));
        if (!material)
            return false;
        materials_.push_back(material);
        return true;
    }

    void prepare(osg::Geometry& geometry) {
        if (const osg::Array* points = geometry.getVertexArray())
            vertices += static_cast<int>(points->getNumElements());
        osg::TriangleFunctor<TriangleCount> count;
        geometry.accept(count);
        faces += count.triangles;
        if (!geometry.getColorArray()) {
            const osg::Vec4 color = materials_.empty()
                                        ? osg::Vec4(1, 1, 1, 1)
                                        : materials_.back()->getDiffuse(osg::Material::FRONT);
            geometry.setColorArray(new osg::Vec4Array(1, &color), osg::Array::BIND_OVERALL);
        }
    }

    std::vector<osg::Material*> materials_;
};

// The lighter copy is drawn while the shape covers fewer pixels than
// kFullDetailPixels, which is how a crowd of objects stays quick to draw.
osg::Node* withDetailLevels(osg::Node* shape, int faces) {
    if (faces <= kSimplifyAbove)
        return shape;
    osg::ref_ptr<osg::Node> light = lighterShape(shape, kLightCells);
    auto* levels = new osg::LOD;
    levels->setName(kDetailName);
    levels->setRangeMode(osg::LOD::PIXEL_SIZE_ON_SCREEN);
    levels->addChild(shape, kFullDetailPixels, std::numeric_limits<float>::max());
    levels->addChild(light.get(), 0.0f, kFullDetailPixels);
    return levels;
}

bool isPlainGroup(osg::Node* node) {
    return node->asGroup() && !node->asTransform() && !node->asGeode() && !node->getStateSet() &&
           std::string(node->className()) == "Group";
}

osg::MatrixTransform* namedTransform(osg::Node* node) {
    osg::Transform* transform = node->asTransform();
    osg::MatrixTransform* matrix = transform ? transform->asMatrixTransform() : nullptr;
    return matrix && !matrix->getName().empty() ? matrix : nullptr;
}

// Takes a graph apart at its named transforms. Every part's shape and place
// are given in the engine's standing frame, which differs from the file's by
// the rotation frame (.3ds files stand on z, the engine stands on y): with
// geometry g, a part matrix M and the frame R, g M R = (g R)(R^-1 M R).
class Splitter {
public:
    Splitter(Model& model, bool geodesAreParts, const osg::Matrixd& frame)
        : model_(model), geodesAreParts_(geodesAreParts), frame_(frame),
          unframe_(osg::Matrixd::inverse(frame)) {}

    int addPart(const std::string& name, int parent, const osg::Matrixd& place,
                osg::StateSet* look) {
        osg::Vec3d translation, scale;
        osg::Quat rotation, scaleOrientation;
        (unframe_ * place * frame_).decompose(translation, rotation, scale, scaleOrientation);
        ModelPart part;
        part.name = name;
        part.parent = parent;
        part.position = fromOsgPoint(translation);
        part.orientation = fromOsgRotation(rotation);
        const osg::Matrixd shaping = frame_ * osg::Matrixd::scale(scale);
        osg::ref_ptr<osg::Group> shape;
        if (shaping.isIdentity())
            shape = new osg::Group;
        else
            shape = new osg::MatrixTransform(shaping);
        // A part's state (its material, say) reaches its sub-parts, as in the file.
        shape->setStateSet(look ? look : parent >= 0 ? shapeOf(parent)->getStateSet() : nullptr);
        part.shape = shape;
        model_.parts.push_back(part);
        return static_cast<int>(model_.parts.size()) - 1;
    }

    void collect(osg::Group& group, int part) {
        for (unsigned int i = 0; i < group.getNumChildren(); ++i) {
            osg::Node* child = group.getChild(i);
            if (osg::MatrixTransform* transform = namedTransform(child)) {
                const int added = addPart(transform->getName(), part, transform->getMatrix(),
                                          transform->getStateSet());
                collect(*transform, added);
            } else if (geodesAreParts_ && child->asGeode() && !child->getName().empty()) {
                addPivotedGeode(*child->asGeode(), part);
            } else if (isPlainGroup(child)) {
                collect(*child->asGroup(), part);
            } else {
                shapeOf(part)->addChild(child);
            }
        }
    }

private:
    osg::Group* shapeOf(int part) {
        return model_.parts[static_cast<size_t>(part)].shape->asGroup();
    }

    // A named piece of a file without transforms turns about its middle.
    void addPivotedGeode(osg::Geode& geode, int parent) {
        osg::ComputeBoundsVisitor measure;
        geode.accept(measure);
        const osg::Vec3d center = measure.getBoundingBox().valid()
                                      ? osg::Vec3d(measure.getBoundingBox().center())
                                      : osg::Vec3d();
        const int part = addPart(geode.getName(), parent, osg::Matrixd::translate(center), nullptr);
        auto* back = new osg::MatrixTransform(osg::Matrixd::translate(-center));
        back->addChild(&geode);
        shapeOf(part)->addChild(back);
    }

    Model& model_;
    bool geodesAreParts_;
    osg::Matrixd frame_;
    osg::Matrixd unframe_;
};

} // namespace

osg::ref_ptr<osg::Node> readModelFile(const std::string& path) {
    if (!std::filesystem::is_regular_file(path))
        throw ModelError("There is no object file " + path);
    const std::string ext = lowerExtension(path);
    osg::ref_ptr<osg::Node> node;
    if (ext == "mdl") {
        node = readEngineFile(path);
    } else {
        if (!osgDB::Registry::instance()->getReaderWriterForExtension(ext))
            throw ModelError("Vessa47 can't read ." + ext +
                             " files; objects come as .mdl, .obj or .3ds files");
        // The OBJ reader would turn y-up models onto their backs.
        osg::ref_ptr<osgDB::Options> options = new osgDB::Options("noRotation");
        node = osgDB::readRefNodeFile(path, options.get());
    }
    if (!node)
        throw ModelError(path + " is not an object Vessa47 can read: the file is broken or of "
                                "another kind");
    return node;
}

Model partsOf(osg::Node* root, const std::string& fallbackName, const std::string& path) {
    Model model;
    model.name = root->getName().empty() ? fallbackName : root->getName();
    const std::string ext = lowerExtension(path);
    const osg::Matrixd frame = ext == "3ds" ? osg::Matrixd::rotate(-osg::PI_2, osg::Vec3d(1, 0, 0))
                                            : osg::Matrixd::identity();
    // Files of other programs name their pieces but seldom give them pivots.
    Splitter splitter(model, ext != "mdl", frame);
    splitter.addPart(model.name, -1, osg::Matrixd::identity(), root->getStateSet());
    if (root->asGroup() && std::string(root->className()) == "Group")
        splitter.collect(*root->asGroup(), 0);
    else
        model.parts[0].shape->asGroup()->addChild(root);
    return model;
}

void prepareShape(ModelPart& part) {
    ShapePreparer preparer;
    part.shape->accept(preparer);
    part.vertices = preparer.vertices;
    part.faces = preparer.faces;
    part.shape->setDataVariance(osg::Object::STATIC);
    part.shape = withDetailLevels(part.shape.get(), part.faces);
}

osg::Node* fullDetail(osg::Node* shape) {
    auto* levels = dynamic_cast<osg::LOD*>(shape);
    if (levels && levels->getName() == kDetailName && levels->getNumChildren() > 0)
        return levels->getChild(0);
    return shape;
}

} // namespace vessa::core
