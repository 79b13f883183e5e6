#include "painted_file.h"

#include "models/model_library.h"
#include "models/model_reading.h"

#include <osg/BlendFunc>
#include <osg/Geode>
#include <osg/Geometry>
#include <osg/Material>
#include <osg/MatrixTransform>
#include <osg/Texture2D>
#include <osgDB/Registry>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <sstream>

namespace vessa::paint3d {

namespace {

constexpr int kMostSaveNames = 100000;

osg::Vec4 vec4Of(const std::array<float, 4>& c) {
    return {c[0], c[1], c[2], c[3]};
}

osg::ref_ptr<osg::Image> imageOf(const Skin& skin) {
    osg::ref_ptr<osg::Image> image = new osg::Image;
    image->setImage(skin.width(), skin.height(), 1, GL_RGBA, GL_RGBA, GL_UNSIGNED_BYTE,
                    const_cast<unsigned char*>(skin.data()), osg::Image::NO_DELETE);
    image->setDataVariance(osg::Object::DYNAMIC);
    return image;
}

osg::ref_ptr<osg::Texture2D> textureOf(osg::Image* image) {
    osg::ref_ptr<osg::Texture2D> texture = new osg::Texture2D(image);
    texture->setDataVariance(osg::Object::DYNAMIC);
    texture->setResizeNonPowerOfTwoHint(false);
    texture->setUnRefImageDataAfterApply(false);
    texture->setFilter(osg::Texture::MIN_FILTER, osg::Texture::LINEAR);
    texture->setFilter(osg::Texture::MAG_FILTER, osg::Texture::LINEAR);
    texture->setWrap(osg::Texture::WRAP_S, osg::Texture::CLAMP_TO_EDGE);
    texture->setWrap(osg::Texture::WRAP_T, osg::Texture::CLAMP_TO_EDGE);
    return texture;
}

osg::ref_ptr<osg::StateSet> stateOf(const core::LookDescription& look, osg::Texture2D* skin) {
    osg::ref_ptr<osg::StateSet> state = new osg::StateSet;
    auto* material = new osg::Material;
    material->setDiffuse(osg::Material::FRONT_AND_BACK, vec4Of(look.diffuse));
    material->setAmbient(osg::Material::FRONT_AND_BACK, vec4Of(look.ambient));
    material->setSpecular(osg::Material::FRONT_AND_BACK, vec4Of(look.specular));
    material->setEmission(osg::Material::FRONT_AND_BACK, vec4Of(look.emission));
    material->setShininess(osg::Material::FRONT_AND_BACK, look.shininess);
    state->setAttributeAndModes(material);
    state->setTextureAttributeAndModes(0, skin);
    if (look.blended) {
        state->setAttributeAndModes(new osg::BlendFunc);
        state->setRenderingHint(osg::StateSet::TRANSPARENT_BIN);
    }
    return state;
}

osg::ref_ptr<osg::Geometry> geometryOf(const PaintMesh& mesh, osg::Texture2D* skin) {
    osg::ref_ptr<osg::Geometry> geometry = new osg::Geometry;
    auto* positions = new osg::Vec3Array;
    for (size_t i = 0; i + 2 < mesh.positions.size(); i += 3)
        positions->push_back({mesh.positions[i], mesh.positions[i + 1], mesh.positions[i + 2]});
    geometry->setVertexArray(positions);
    if (mesh.normals.size() == mesh.positions.size()) {
        auto* normals = new osg::Vec3Array;
        for (size_t i = 0; i + 2 < mesh.normals.size(); i += 3)
            normals->push_back({mesh.normals[i], mesh.normals[i + 1], mesh.normals[i + 2]});
        geometry->setNormalArray(normals, osg::Array::BIND_PER_VERTEX);
    }
    auto* coords = new osg::Vec2Array;
    for (size_t i = 0; i + 1 < mesh.texCoords.size(); i += 2)
        coords->push_back({mesh.texCoords[i], mesh.texCoords[i + 1]});
    geometry->setTexCoordArray(0, coords, osg::Array::BIND_PER_VERTEX);
    geometry->addPrimitiveSet(
        new osg::DrawElementsUInt(GL_TRIANGLES, mesh.triangles.begin(), mesh.triangles.end()));
    geometry->setStateSet(stateOf(mesh.look, skin));
    return geometry;
}

bool hasSurfaces(const PaintObject& object) {
    return std::any_of(object.parts.begin(), object.parts.end(), [](const PaintPart& part) {
        return std::any_of(part.meshes.begin(), part.meshes.end(),
                           [](const PaintMesh& mesh) { return !mesh.triangles.empty(); });
    });
}

// Writes bytes to a file that must not be there yet: 0, or the error
// (EEXIST when there is such a file; nothing is left on any error).
int writeNew(const std::string& path, const std::string& bytes) {
    const int fd = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd < 0)
        return errno;
    size_t written = 0;
    int error = 0;
    while (written < bytes.size() && error == 0) {
        const ssize_t n = ::write(fd, bytes.data() + written, bytes.size() - written);
        if (n > 0)
            written += static_cast<size_t>(n);
        else if (n < 0 && errno != EINTR)
            error = errno;
    }
    if (error == 0 && ::fsync(fd) != 0)
        error = errno;
    if (::close(fd) != 0 && error == 0)
        error = errno;
    if (error != 0)
        ::unlink(path.c_str());
    return error;
}

} // namespace

osg::ref_ptr<osg::Group> graphOf(const PaintObject& object,
                                 std::vector<osg::ref_ptr<osg::Image>>* skins) {
    osg::ref_ptr<osg::Group> root = new osg::Group;
    root->setName(object.name);
    std::vector<osg::Group*> groups;
    for (const PaintPart& part : object.parts) {
        osg::Group* group = root.get();
        const size_t parent = static_cast<size_t>(part.parent);
        if (part.parent >= 0 && parent < groups.size()) {
            const osg::Quat turn(part.rotation[0], part.rotation[1], part.rotation[2],
                                 part.rotation[3]);
            auto* place = new osg::MatrixTransform(
                osg::Matrixd::rotate(turn) *
                osg::Matrixd::translate(part.position[0], part.position[1], part.position[2]));
            place->setName(part.name);
            place->setDataVariance(osg::Object::DYNAMIC);
            groups[parent]->addChild(place);
            group = place;
        }
        groups.push_back(group);
        const osg::ref_ptr<osg::Image> image = imageOf(part.skin);
        if (skins)
            skins->push_back(image);
        if (part.meshes.empty())
            continue;
        const osg::ref_ptr<osg::Texture2D> texture = textureOf(image.get());
        auto* geode = new osg::Geode;
        for (const PaintMesh& mesh : part.meshes)
            geode->addDrawable(geometryOf(mesh, texture.get()));
        group->addChild(geode);
    }
    return root;
}

OpenedObject openForPainting(const std::string& path, core::ReaderProcess& reader) {
    OpenedObject opened;
    try {
        PaintObject object = paintableFrom(core::readDescription(path, reader));
        if (object.name.empty())
            object.name = std::filesystem::path(path).stem().string();
        if (!hasSurfaces(object))
            opened.refusal = path + " has nothing to paint on: no surfaces were found in it";
        else
            opened.object = std::move(object);
    } catch (const core::ModelError& refused) {
        opened.refusal = refused.what();
    }
    return opened;
}

SavedObject savePainted(const PaintObject& object, const std::string& givenPath) {
    const std::filesystem::path given(givenPath);
    osgDB::ReaderWriter* osgb = osgDB::Registry::instance()->getReaderWriterForExtension("osgb");
    std::ostringstream out(std::ios::binary);
    osg::ref_ptr<osgDB::Options> options = new osgDB::Options("WriteImageHint=IncludeData");
    const osg::ref_ptr<osg::Group> graph = graphOf(object);
    if (!osgb || !osgb->writeNode(*graph, out, options.get()).success())
        return {{}, "The painted object could not be made into a file"};
    const std::string bytes = std::move(out).str();
    const std::string stem = given.stem().string();
    for (int n = 1; n <= kMostSaveNames; ++n) {
        const std::filesystem::path target =
            given.parent_path() / (stem + "_painted" + std::to_string(n) + ".mdl");
        const int error = writeNew(target.string(), bytes);
        if (error == 0)
            return {target.string(), {}};
        if (error != EEXIST)
            return {{},
                    "The painted object could not be written to " + target.string() + ": " +
                        std::strerror(error)};
    }
    return {{}, "There is no free name for the painted object beside " + givenPath};
}

} // namespace vessa::paint3d
