#include "models/model_reading.h"

#include "models/lighter_shape.h"
#include "models/whole_shape.h"
#include "reading/formats.h"
#include "reading/reader_process.h"
#include "scene/engine_frame.h"

#include <osg/BlendFunc>
#include <osg/Geode>
#include <osg/Geometry>
#include <osg/Image>
#include <osg/LOD>
#include <osg/Material>
#include <osg/Texture2D>

#include <algorithm>
#include <filesystem>
#include <limits>
#include <map>

namespace vessa::core {

namespace {

// Shapes of more triangles than this, or of more than one mesh, are drawn
// from lighter copies while they are small on screen: one gathered on a grid
// kFineCells across under kFullDetailPixels across, one kCoarseCells across
// under kFineDetailPixels, so that a cell stays within a few pixels. A copy
// draws its coloured meshes at once, and is kept when it has at most half
// the triangles of the level above it, or fewer drawings.
constexpr int kSimplifyAbove = 100;
constexpr int kFineCells = 14;
constexpr int kCoarseCells = 6;
constexpr float kFullDetailPixels = 150.0f;
constexpr float kFineDetailPixels = 50.0f;
constexpr const char* kDetailName = "detail levels";

std::string damaged(const std::string& path) {
    return path + " is damaged, or is not an object Vessa47 can read";
}

osg::Vec4 vec4(const std::array<float, 4>& c) {
    return {c[0], c[1], c[2], c[3]};
}

osg::ref_ptr<osg::Texture2D> textureFrom(const TextureDescription& picture) {
    osg::ref_ptr<osg::Image> image = new osg::Image;
    image->allocateImage(static_cast<int>(picture.width), static_cast<int>(picture.height), 1,
                         GL_RGBA, GL_UNSIGNED_BYTE);
    std::copy(picture.rgba.begin(), picture.rgba.end(), image->data());
    osg::ref_ptr<osg::Texture2D> texture = new osg::Texture2D(image.get());
    texture->setWrap(osg::Texture::WRAP_S, osg::Texture::REPEAT);
    texture->setWrap(osg::Texture::WRAP_T, osg::Texture::REPEAT);
    return texture;
}

// One state set per look, shared by every mesh of the model that has it.
class Looks {
public:
    explicit Looks(const std::vector<TextureDescription>& pictures) {
        for (const TextureDescription& picture : pictures)
            textures_.push_back(textureFrom(picture));
    }

    osg::StateSet* of(const LookDescription& look) {
        osg::ref_ptr<osg::StateSet>& state = states_[look];
        if (state)
            return state.get();
        state = new osg::StateSet;
        if (look.hasMaterial) {
            auto* material = new osg::Material;
            material->setDiffuse(osg::Material::FRONT_AND_BACK, vec4(look.diffuse));
            material->setAmbient(osg::Material::FRONT_AND_BACK, vec4(look.ambient));
            material->setSpecular(osg::Material::FRONT_AND_BACK, vec4(look.specular));
            material->setEmission(osg::Material::FRONT_AND_BACK, vec4(look.emission));
            material->setShininess(osg::Material::FRONT_AND_BACK, look.shininess);
            if (look.litVertexColors)
                material->setColorMode(osg::Material::AMBIENT_AND_DIFFUSE);
            state->setAttribute(material);
        }
        if (look.texture >= 0)
            state->setTextureAttributeAndModes(0,
                                               textures_[static_cast<size_t>(look.texture)].get());
        if (look.blended) {
            state->setAttributeAndModes(new osg::BlendFunc);
            state->setRenderingHint(osg::StateSet::TRANSPARENT_BIN);
        }
        return state.get();
    }

private:
    std::vector<osg::ref_ptr<osg::Texture2D>> textures_;
    std::map<LookDescription, osg::ref_ptr<osg::StateSet>> states_;
};

template <typename Array, size_t Width>
osg::ref_ptr<Array> arrayOf(const std::vector<float>& numbers) {
    osg::ref_ptr<Array> array = new Array(static_cast<unsigned int>(numbers.size() / Width));
    for (size_t i = 0; i < array->size(); ++i) {
        for (size_t k = 0; k < Width; ++k)
            (*array)[i][static_cast<int>(k)] = numbers[i * Width + k];
    }
    return array;
}

osg::Array::Binding bindingOf(size_t numbers, size_t width) {
    return numbers == width ? osg::Array::BIND_OVERALL : osg::Array::BIND_PER_VERTEX;
}

// A mesh without colours of its own gets its material's (else white), so
// that it keeps its colour when drawn unlit.
osg::ref_ptr<osg::Geometry> geometryFrom(const MeshDescription& mesh, Looks& looks) {
    osg::ref_ptr<osg::Geometry> geometry = new osg::Geometry;
    geometry->setVertexArray(arrayOf<osg::Vec3Array, 3>(mesh.positions));
    if (!mesh.normals.empty())
        geometry->setNormalArray(arrayOf<osg::Vec3Array, 3>(mesh.normals),
                                 bindingOf(mesh.normals.size(), 3));
    if (!mesh.colors.empty()) {
        geometry->setColorArray(arrayOf<osg::Vec4Array, 4>(mesh.colors),
                                bindingOf(mesh.colors.size(), 4));
    } else {
        const osg::Vec4 color =
            mesh.look.hasMaterial ? vec4(mesh.look.diffuse) : osg::Vec4(1, 1, 1, 1);
        geometry->setColorArray(new osg::Vec4Array(1, &color), osg::Array::BIND_OVERALL);
    }
    if (!mesh.texCoords.empty())
        geometry->setTexCoordArray(0, arrayOf<osg::Vec2Array, 2>(mesh.texCoords),
                                   osg::Array::BIND_PER_VERTEX);
    if (!mesh.triangles.empty())
        geometry->addPrimitiveSet(
            new osg::DrawElementsUInt(GL_TRIANGLES, mesh.triangles.begin(), mesh.triangles.end()));
    geometry->setStateSet(looks.of(mesh.look));
    return geometry;
}

// Levels of detail by the shape's size on screen, which is how a crowd stays
// quick to draw: copies with fewer triangles, drawn in fewer drawings.
osg::ref_ptr<osg::Node> withDetailLevels(osg::Geode* shape, int faces) {
    if (faces <= kSimplifyAbove && shape->getNumDrawables() < 2)
        return shape;
    const MergedShape merged = mergedShape({{shape, osg::Matrixd::identity()}});
    osg::ref_ptr<osg::LOD> levels = new osg::LOD;
    levels->setName(kDetailName);
    levels->setRangeMode(osg::LOD::PIXEL_SIZE_ON_SCREEN);
    levels->addChild(shape, kFullDetailPixels, std::numeric_limits<float>::max());
    int triangles = faces;
    unsigned int drawings = shape->getNumDrawables();
    const unsigned int mergedDrawings = merged.geode->getNumDrawables();
    for (const auto& [cells, from] :
         {std::pair{kFineCells, kFineDetailPixels}, std::pair{kCoarseCells, 0.0f}}) {
        const unsigned int last = levels->getNumChildren() - 1;
        LighterShape light = lighterShape(merged.geode.get(), cells);
        if (light.triangles * 2 <= triangles || mergedDrawings < drawings) {
            levels->addChild(light.shape.get(), from, levels->getMinRange(last));
            triangles = light.triangles;
            drawings = mergedDrawings;
        } else {
            // no lighter than the level above, which reaches further down
            levels->setRange(last, from, levels->getMaxRange(last));
        }
    }
    if (levels->getNumChildren() == 1)
        return shape;
    return levels;
}

ModelPart partFrom(const PartDescription& description, Looks& looks) {
    ModelPart part;
    part.name = description.name;
    part.parent = description.parent;
    const auto& [x, y, z] = description.position;
    part.position = fromOsgPoint({x, y, z});
    const auto& r = description.rotation;
    part.orientation = quatNormalized(fromOsgRotation(osg::Quat(r[0], r[1], r[2], r[3])));
    osg::ref_ptr<osg::Geode> shape = new osg::Geode;
    for (const MeshDescription& mesh : description.meshes) {
        shape->addDrawable(geometryFrom(mesh, looks));
        part.vertices += static_cast<int>(mesh.positions.size() / 3);
        part.faces += static_cast<int>(mesh.triangles.size() / 3);
    }
    shape->setDataVariance(osg::Object::STATIC);
    part.shape = withDetailLevels(shape.get(), part.faces);
    return part;
}

} // namespace

Model modelFrom(const ModelDescription& description, const std::string& fallbackName) {
    Model model;
    model.name = description.name.empty() ? fallbackName : description.name;
    Looks looks(description.textures);
    for (const PartDescription& part : description.parts)
        model.parts.push_back(partFrom(part, looks));
    model.parts.front().name = model.name;
    model.files = description.files;
    model.missing = description.missing;
    return model;
}

ModelDescription readDescription(const std::string& path, ReaderProcess& reader) {
    if (!stampOf(path))
        throw ModelError("There is no object file " + path);
    const ReaderProcess::Reply reply = reader.read(FileKind::Model, path);
    const auto answer = answerKind(reply.answer);
    switch (reply.outcome) {
    case Outcome::Lost:
        throw ModelError("Vessa47 can't read object files: its file reader is missing or "
                         "could not start");
    case Outcome::TookTooLong:
        throw ModelError(path + " took too long to read: it is damaged, or is not an object "
                                "Vessa47 can read");
    case Outcome::TooBig:
        throw ModelError(path + " is too big for Vessa47 to read");
    case Outcome::Failed:
        throw ModelError(damaged(path));
    case Outcome::Answered:
        break;
    }
    if (answer == Answer::NoReader) {
        const std::string ext = std::filesystem::path(path).extension().string();
        throw ModelError("Vessa47 can't read " + (ext.empty() ? path : ext) +
                         " files; objects come as " + modelFormatsInWords() + " files");
    }
    if (answer == Answer::TooBig)
        throw ModelError(path + " is too big for Vessa47 to read");
    auto description = decodeModel(reply.answer);
    if (!description)
        throw ModelError(damaged(path));
    return std::move(*description);
}

Model readModel(const std::string& path, ReaderProcess& reader) {
    Model model =
        modelFrom(readDescription(path, reader), std::filesystem::path(path).stem().string());
    if (std::none_of(model.parts.begin(), model.parts.end(),
                     [](const ModelPart& part) { return part.faces > 0; }))
        throw ModelError(path + " has nothing Vessa47 can show: no surfaces were found in it");
    return model;
}

osg::Node* fullDetail(osg::Node* shape) {
    auto* levels = dynamic_cast<osg::LOD*>(shape);
    if (levels && levels->getName() == kDetailName && levels->getNumChildren() > 0)
        return levels->getChild(0);
    return shape;
}

} // namespace vessa::core
