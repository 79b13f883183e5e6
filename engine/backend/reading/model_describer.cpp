#include "reading/assimp_describer.h"
#include "reading/budgeted_buffer.h"
#include "reading/description.h"
#include "reading/file_describers.h"
#include "reading/formats.h"
#include "reading/named_files.h"
#include "reading/pictures.h"

#include <osg/Geode>
#include <osg/Geometry>
#include <osg/Material>
#include <osg/MatrixTransform>
#include <osg/NodeVisitor>
#include <osg/Texture>
#include <osg/TriangleIndexFunctor>
#include <osgDB/Registry>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <vector>

namespace vessa::core {

namespace {

// The engine's own files are OpenSceneGraph's binary format under another
// name (and OpenSceneGraph knows an unrelated .mdl format), so they go to
// the osgb reader. The pictures a file names are looked for beside it.
osg::ref_ptr<osg::Node> readOwnModel(const std::string& path) {
    osgDB::ReaderWriter* reader = osgDB::Registry::instance()->getReaderWriterForExtension("osgb");
    std::ifstream file(path, std::ios::binary);
    if (!reader || !file)
        return nullptr;
    std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const std::size_t budget = readingBudget(bytes.size());
    BudgetedBuffer buffer(std::move(bytes), budget);
    std::istream in(&buffer);
    osg::ref_ptr<osgDB::Options> options = new osgDB::Options;
    options->setDatabasePath(std::filesystem::path(path).parent_path().string());
    return reader->readNode(in, options.get()).getNode();
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

// A part found in the graph: its place, and the nodes that are its shape.
struct FoundPart {
    PartDescription description;
    osg::ref_ptr<osg::Group> shape;
};

// Takes one of the engine's object files apart at its named transforms.
class Splitter {
public:
    explicit Splitter(std::vector<FoundPart>& parts) : parts_(parts) {}

    int addPart(const std::string& name, int parent, const osg::Matrixd& place,
                osg::StateSet* look) {
        osg::Vec3d translation, scale;
        osg::Quat rotation, scaleOrientation;
        place.decompose(translation, rotation, scale, scaleOrientation);
        FoundPart part;
        part.description.name = name;
        part.description.parent = parent;
        part.description.position = {translation.x(), translation.y(), translation.z()};
        part.description.rotation = {rotation.x(), rotation.y(), rotation.z(), rotation.w()};
        const osg::Matrixd shaping = osg::Matrixd::scale(scale);
        if (shaping.isIdentity())
            part.shape = new osg::Group;
        else
            part.shape = new osg::MatrixTransform(shaping);
        // A part's state (its material, say) reaches its sub-parts, as in the file.
        part.shape->setStateSet(look          ? look
                                : parent >= 0 ? shapeOf(parent)->getStateSet()
                                              : nullptr);
        parts_.push_back(part);
        return static_cast<int>(parts_.size()) - 1;
    }

    void collect(osg::Group& group, int part) {
        for (unsigned int i = 0; i < group.getNumChildren(); ++i) {
            osg::Node* child = group.getChild(i);
            if (!child)
                continue;
            if (osg::MatrixTransform* transform = namedTransform(child)) {
                const int added = addPart(transform->getName(), part, transform->getMatrix(),
                                          transform->getStateSet());
                collect(*transform, added);
            } else if (isPlainGroup(child)) {
                collect(*child->asGroup(), part);
            } else {
                shapeOf(part)->addChild(child);
            }
        }
    }

private:
    osg::Group* shapeOf(int part) { return parts_[static_cast<size_t>(part)].shape.get(); }

    std::vector<FoundPart>& parts_;
};

// What state sets along the way down give a geometry.
struct Look {
    const osg::Material* material = nullptr;
    osg::Image* picture = nullptr;
    bool blended = false;
};

// The i-th element of an array of 2, 3 or 4 numbers, as far as it has them.
std::optional<osg::Vec4d> elementOf(const osg::Array* array, unsigned i) {
    if (!array || i >= array->getNumElements())
        return std::nullopt;
    switch (array->getType()) {
    case osg::Array::Vec2ArrayType: {
        const auto& v = static_cast<const osg::Vec2Array&>(*array)[i];
        return osg::Vec4d(v.x(), v.y(), 0, 1);
    }
    case osg::Array::Vec2dArrayType: {
        const auto& v = static_cast<const osg::Vec2dArray&>(*array)[i];
        return osg::Vec4d(v.x(), v.y(), 0, 1);
    }
    case osg::Array::Vec3ArrayType: {
        const auto& v = static_cast<const osg::Vec3Array&>(*array)[i];
        return osg::Vec4d(v.x(), v.y(), v.z(), 1);
    }
    case osg::Array::Vec3dArrayType: {
        const auto& v = static_cast<const osg::Vec3dArray&>(*array)[i];
        return osg::Vec4d(v.x(), v.y(), v.z(), 1);
    }
    case osg::Array::Vec4ArrayType:
        return osg::Vec4d(static_cast<const osg::Vec4Array&>(*array)[i]);
    case osg::Array::Vec4dArrayType:
        return static_cast<const osg::Vec4dArray&>(*array)[i];
    case osg::Array::Vec4ubArrayType: {
        const auto& v = static_cast<const osg::Vec4ubArray&>(*array)[i];
        return osg::Vec4d(v.r(), v.g(), v.b(), v.a()) / 255.0;
    }
    default:
        return std::nullopt;
    }
}

// Primitive sets that stay within the vertices; indices are checked one
// by one as the triangles come.
bool withinVertices(const osg::PrimitiveSet& set, unsigned vertices) {
    if (const auto* arrays = dynamic_cast<const osg::DrawArrays*>(&set))
        return arrays->getFirst() >= 0 && arrays->getCount() >= 0 &&
               static_cast<unsigned long long>(arrays->getFirst()) +
                       static_cast<unsigned long long>(arrays->getCount()) <=
                   vertices;
    if (const auto* lengths = dynamic_cast<const osg::DrawArrayLengths*>(&set)) {
        unsigned long long total = lengths->getFirst() >= 0 ? lengths->getFirst() : vertices + 1ull;
        for (GLsizei length : *lengths)
            total += length >= 0 ? static_cast<unsigned long long>(length) : vertices + 1ull;
        return total <= vertices;
    }
    return set.getDrawElements() != nullptr;
}

struct TriangleSink {
    std::vector<std::uint32_t>* triangles = nullptr;
    unsigned vertices = 0;
    void operator()(unsigned a, unsigned b, unsigned c) {
        if (a < vertices && b < vertices && c < vertices)
            triangles->insert(triangles->end(), {a, b, c});
    }
};

std::array<float, 4> colorOf(const osg::Vec4& c) {
    return {sensible(c.r(), 1), sensible(c.g(), 1), sensible(c.b(), 1), sensible(c.a(), 1)};
}

// Every geometry under a part's shape, with the transforms and states
// above it, as meshes in the part's frame.
class MeshGatherer : public osg::NodeVisitor {
public:
    MeshGatherer(ModelDescription& model, std::vector<MeshDescription>& meshes)
        : osg::NodeVisitor(TRAVERSE_ACTIVE_CHILDREN), model_(model), meshes_(meshes) {
        places_.push_back(osg::Matrixd::identity());
        looks_.emplace_back();
    }

    void apply(osg::Node& node) override {
        enter(node.getStateSet());
        traverse(node);
        looks_.pop_back();
    }

    void apply(osg::Transform& transform) override {
        osg::Matrixd place = places_.back();
        transform.computeLocalToWorldMatrix(place, this);
        places_.push_back(place);
        enter(transform.getStateSet());
        traverse(transform);
        looks_.pop_back();
        places_.pop_back();
    }

    void apply(osg::Drawable& drawable) override {
        enter(drawable.getStateSet());
        if (osg::Geometry* geometry = drawable.asGeometry())
            gather(*geometry);
        looks_.pop_back();
    }

private:
    void enter(osg::StateSet* state) {
        Look look = looks_.back();
        if (state) {
            if (auto* material = dynamic_cast<osg::Material*>(
                    state->getAttribute(osg::StateAttribute::MATERIAL)))
                look.material = material;
            if (auto* texture = dynamic_cast<osg::Texture*>(
                    state->getTextureAttribute(0, osg::StateAttribute::TEXTURE)))
                look.picture = texture->getNumImages() > 0 ? texture->getImage(0) : nullptr;
            if ((state->getMode(GL_BLEND) & osg::StateAttribute::ON) ||
                state->getRenderingHint() == osg::StateSet::TRANSPARENT_BIN)
                look.blended = true;
        }
        looks_.push_back(look);
    }

    void gather(osg::Geometry& geometry) {
        const osg::Array* points = geometry.getVertexArray();
        if (!points || points->getNumElements() == 0)
            return;
        const unsigned n = points->getNumElements();
        const osg::Matrixd& place = places_.back();
        osg::Matrixd normalPlace;
        if (!normalPlace.invert(place))
            normalPlace = place;
        MeshDescription mesh;
        for (unsigned i = 0; i < n; ++i) {
            const auto point = elementOf(points, i);
            if (!point)
                return;
            const osg::Vec3d at = osg::Vec3d(point->x(), point->y(), point->z()) * place;
            mesh.positions.insert(mesh.positions.end(),
                                  {static_cast<float>(at.x()), static_cast<float>(at.y()),
                                   static_cast<float>(at.z())});
        }
        const osg::Array* normals = geometry.getNormalArray();
        const unsigned normalCount = perVertexOrOverall(normals, n);
        for (unsigned i = 0; i < normalCount; ++i) {
            const osg::Vec4d v = *elementOf(normals, i);
            osg::Vec3d normal =
                osg::Matrixd::transform3x3(normalPlace, osg::Vec3d(v.x(), v.y(), v.z()));
            normal.normalize();
            mesh.normals.insert(mesh.normals.end(),
                                {static_cast<float>(normal.x()), static_cast<float>(normal.y()),
                                 static_cast<float>(normal.z())});
        }
        const osg::Array* colors = geometry.getColorArray();
        const unsigned colorCount = perVertexOrOverall(colors, n);
        for (unsigned i = 0; i < colorCount; ++i) {
            const osg::Vec4d c = *elementOf(colors, i);
            mesh.colors.insert(mesh.colors.end(),
                               {static_cast<float>(c.r()), static_cast<float>(c.g()),
                                static_cast<float>(c.b()), static_cast<float>(c.a())});
        }
        const osg::Array* coords = geometry.getTexCoordArray(0);
        if (coords && coords->getNumElements() >= n && coords->getDataSize() == 2) {
            for (unsigned i = 0; i < n; ++i) {
                const osg::Vec4d st = *elementOf(coords, i);
                mesh.texCoords.insert(mesh.texCoords.end(),
                                      {static_cast<float>(st.x()), static_cast<float>(st.y())});
            }
        }
        osg::TriangleIndexFunctor<TriangleSink> triangles;
        triangles.triangles = &mesh.triangles;
        triangles.vertices = n;
        for (const auto& set : geometry.getPrimitiveSetList()) {
            if (set && withinVertices(*set, n))
                set->accept(triangles);
        }
        mesh.look = describeLook(looks_.back());
        meshes_.push_back(std::move(mesh));
    }

    // How many elements of an array bound per vertex (n) or to the whole
    // geometry (1) to take; 0 for none.
    static unsigned perVertexOrOverall(const osg::Array* array, unsigned n) {
        if (!array || !elementOf(array, 0))
            return 0;
        if (array->getBinding() == osg::Array::BIND_OVERALL)
            return 1;
        if (array->getBinding() == osg::Array::BIND_PER_VERTEX && array->getNumElements() >= n)
            return n;
        return 0;
    }

    LookDescription describeLook(const Look& look) {
        LookDescription d;
        if (const osg::Material* m = look.material) {
            d.hasMaterial = true;
            d.diffuse = colorOf(m->getDiffuse(osg::Material::FRONT));
            d.ambient = colorOf(m->getAmbient(osg::Material::FRONT));
            d.specular = colorOf(m->getSpecular(osg::Material::FRONT));
            d.emission = colorOf(m->getEmission(osg::Material::FRONT));
            d.shininess = sensible(m->getShininess(osg::Material::FRONT), 128);
            d.litVertexColors = m->getColorMode() != osg::Material::OFF;
        }
        d.blended = look.blended;
        d.texture = textureOf(look.picture);
        return d;
    }

    // Pictures that could not be read, or that are too big, are left out:
    // such shapes are drawn without them.
    std::int32_t textureOf(osg::Image* picture) {
        if (!picture)
            return -1;
        auto [found, added] = textures_.try_emplace(picture, -1);
        if (!added)
            return found->second;
        if (auto texture = describePicture(*picture)) {
            model_.textures.push_back(std::move(*texture));
            found->second = static_cast<std::int32_t>(model_.textures.size()) - 1;
        }
        return found->second;
    }

    ModelDescription& model_;
    std::vector<MeshDescription>& meshes_;
    std::vector<osg::Matrixd> places_;
    std::vector<Look> looks_;
    std::map<const osg::Image*, std::int32_t> textures_;
};

ModelDescription describe(osg::Node& root) {
    std::vector<FoundPart> parts;
    Splitter splitter(parts);
    splitter.addPart(root.getName(), -1, osg::Matrixd::identity(), root.getStateSet());
    if (root.asGroup() && std::string(root.className()) == "Group")
        splitter.collect(*root.asGroup(), 0);
    else
        parts[0].shape->addChild(&root);
    ModelDescription model;
    model.name = root.getName();
    for (FoundPart& part : parts) {
        MeshGatherer gatherer(model, part.description.meshes);
        part.shape->accept(gatherer);
        model.parts.push_back(std::move(part.description));
    }
    return model;
}

std::optional<ModelDescription> describeOwnModel(const std::string& path, ModelFolder& folder) {
    osgDB::Registry::instance()->setReadFileCallback(new FilesBesideTheModel(folder));
    osg::ref_ptr<osg::Node> root = readOwnModel(path);
    if (!root)
        return std::nullopt;
    return describe(*root);
}

// What the model read besides itself, as far as an answer can carry it: a
// file whose name can't be carried was read but can't be copied with it,
// so it counts as missing.
void keepNamedFiles(ModelDescription& model, const ModelFolder& folder) {
    for (const std::string& file : folder.found()) {
        auto& list = isPathInside(file) ? model.files : model.missing;
        if (list.size() < kMaxNamedFiles)
            list.push_back(file);
    }
    for (const std::string& name : folder.missing()) {
        if (model.missing.size() < kMaxNamedFiles)
            model.missing.push_back(name.substr(0, kMaxFileNameBytes));
    }
}

} // namespace

void prepareReaders() {
    osgDB::Registry* registry = osgDB::Registry::instance();
    registry->getReaderWriterForExtension("osgb");
    preparePictureReaders();
    // The binary format's classes come from a library of their own.
    registry->getObjectWrapperManager()->findWrapper("osg::Geometry");
}

std::string describeModelFile(const std::string& path) {
    const std::string ext = lowerExtension(path);
    if (!oneOf(kModelFormats, ext))
        return refusalAnswer(Answer::NoReader);
    ModelFolder folder(path);
    std::optional<ModelDescription> model =
        ext == "mdl" ? describeOwnModel(path, folder) : describeWithAssimp(path, folder);
    if (!model)
        return refusalAnswer(Answer::NotRead);
    keepNamedFiles(*model, folder);
    std::string answer = modelAnswer(*model);
    return answer.size() <= kMaxAnswerBytes ? answer : refusalAnswer(Answer::TooBig);
}

} // namespace vessa::core
