#include "export/sketch_object.h"

#include <QSaveFile>

#include <osg/Geode>
#include <osg/Geometry>
#include <osg/Group>
#include <osg/Material>
#include <osgDB/Registry>

#include <sstream>

namespace vessa {

namespace {

constexpr float kShadedShare = 0.35f; // of the colour that light from nowhere gives
constexpr float kShininess = 24.0f;

osg::ref_ptr<osg::Material> materialOf(const QColor& colour) {
    const osg::Vec4 diffuse(static_cast<float>(colour.redF()), static_cast<float>(colour.greenF()),
                            static_cast<float>(colour.blueF()), 1.0f);
    osg::ref_ptr<osg::Material> material = new osg::Material;
    material->setDiffuse(osg::Material::FRONT_AND_BACK, diffuse);
    material->setAmbient(osg::Material::FRONT_AND_BACK,
                         osg::Vec4(diffuse.r() * kShadedShare, diffuse.g() * kShadedShare,
                                   diffuse.b() * kShadedShare, 1.0f));
    material->setSpecular(osg::Material::FRONT_AND_BACK, osg::Vec4(0.25f, 0.25f, 0.25f, 1.0f));
    material->setShininess(osg::Material::FRONT_AND_BACK, kShininess);
    return material;
}

} // namespace

osg::ref_ptr<osg::Node> sketchObjectNode(const SketchMesh& mesh, const QColor& colour,
                                         const std::string& name) {
    osg::ref_ptr<osg::Vec3Array> positions = new osg::Vec3Array(mesh.vertexCount());
    osg::ref_ptr<osg::Vec3Array> normals = new osg::Vec3Array(mesh.vertexCount());
    for (size_t v = 0; v < mesh.vertexCount(); ++v) {
        (*positions)[v].set(mesh.positions[3 * v], mesh.positions[3 * v + 1],
                            mesh.positions[3 * v + 2]);
        (*normals)[v].set(mesh.normals[3 * v], mesh.normals[3 * v + 1], mesh.normals[3 * v + 2]);
    }
    osg::ref_ptr<osg::Geometry> shape = new osg::Geometry;
    shape->setName(name);
    shape->setUseDisplayList(false);
    shape->setUseVertexBufferObjects(true);
    shape->setVertexArray(positions);
    shape->setNormalArray(normals, osg::Array::BIND_PER_VERTEX);
    shape->addPrimitiveSet(
        new osg::DrawElementsUInt(GL_TRIANGLES, mesh.triangles.begin(), mesh.triangles.end()));
    shape->getOrCreateStateSet()->setAttributeAndModes(materialOf(colour));

    osg::ref_ptr<osg::Geode> geode = new osg::Geode;
    geode->addDrawable(shape);
    osg::ref_ptr<osg::Group> object = new osg::Group;
    object->setName(name);
    object->addChild(geode);
    return object;
}

QString writeSketchObject(const osg::Node& object, const QString& path) {
    osgDB::ReaderWriter* osgb = osgDB::Registry::instance()->getReaderWriterForExtension("osgb");
    if (!osgb)
        return QStringLiteral("OpenSceneGraph's writer of its binary format is missing.");
    std::ostringstream bytes(std::ios::binary);
    if (!osgb->writeNode(object, bytes).success())
        return QStringLiteral("The object could not be turned into a file.");
    QSaveFile file(path);
    const std::string written = bytes.str();
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(written.data(), static_cast<qint64>(written.size())) !=
            static_cast<qint64>(written.size()) ||
        !file.commit())
        return QStringLiteral("%1 could not be written: %2").arg(path, file.errorString());
    return {};
}

} // namespace vessa
