// The ready-made objects as the build leaves them in the home folder: each
// reads back, has the parts its README promises, stands where it should, and
// has a thumbnail that shows it.
#include "gallery/model.h"
#include "readme_table.h"

#include <osg/ComputeBoundsVisitor>
#include <osg/Geode>
#include <osg/Geometry>
#include <osg/Material>
#include <osg/MatrixTransform>
#include <osgDB/Registry>

#include <QImage>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <set>

using namespace gallery_test;

namespace {

const std::filesystem::path objectsFolder = std::filesystem::path(VESSA_HOME_DIR) / "Objects";

struct PromisedObject {
    std::string folder, name;
    float height;
    std::vector<std::string> partPaths; // "Head.LeftEar" is LeftEar inside Head
};

void PrintTo(const PromisedObject& object, std::ostream* out) {
    *out << object.folder << "/" << object.name;
}

std::vector<PromisedObject> promisedObjects() {
    std::vector<PromisedObject> objects;
    for (const auto& cells : tableRows(GALLERY_README, "Folder")) {
        if (cells.size() != 4) {
            continue;
        }
        PromisedObject object{cells[0], cells[1], std::stof(cells[2]), {}};
        if (cells[3] != "-") {
            object.partPaths = split(cells[3], ',');
        }
        objects.push_back(object);
    }
    return objects;
}

osg::ref_ptr<osg::Node> readObjectFile(const std::filesystem::path& file) {
    osgDB::ReaderWriter* osgb = osgDB::Registry::instance()->getReaderWriterForExtension("osgb");
    std::ifstream in(file, std::ios::binary);
    return osgb && in ? osgb->readNode(in).getNode() : nullptr;
}

// Every part under a node, by its dotted path.
void collectParts(osg::Group& group, const std::string& prefix,
                  std::map<std::string, osg::MatrixTransform*>& parts) {
    for (unsigned i = 0; i < group.getNumChildren(); ++i) {
        if (auto* part = dynamic_cast<osg::MatrixTransform*>(group.getChild(i))) {
            const std::string path =
                prefix.empty() ? part->getName() : prefix + "." + part->getName();
            parts[path] = part;
            collectParts(*part, path, parts);
        }
    }
}

std::vector<osg::Geometry*> geometriesUnder(osg::Node& node) {
    struct Collector : osg::NodeVisitor {
        Collector() : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN) {}
        void apply(osg::Geometry& geometry) override { found.push_back(&geometry); }
        std::vector<osg::Geometry*> found;
    } collector;
    node.accept(collector);
    return collector.found;
}

// The geometry a part carries itself, not that of the parts inside it.
std::vector<osg::Geometry*> ownGeometries(osg::Group& part) {
    std::vector<osg::Geometry*> own;
    for (unsigned i = 0; i < part.getNumChildren(); ++i) {
        if (auto* geode = dynamic_cast<osg::Geode*>(part.getChild(i))) {
            for (auto* geometry : geometriesUnder(*geode)) {
                own.push_back(geometry);
            }
        }
    }
    return own;
}

osg::BoundingBox boundsOf(osg::Node& node) {
    osg::ComputeBoundsVisitor visitor;
    node.accept(visitor);
    return visitor.getBoundingBox();
}

class GalleryObject : public testing::TestWithParam<PromisedObject> {
protected:
    void SetUp() override {
        file = objectsFolder / GetParam().folder / (GetParam().name + ".mdl");
        object = readObjectFile(file);
        ASSERT_TRUE(object) << file;
        root = object->asGroup();
        ASSERT_TRUE(root) << "the root of " << file << " is not a group";
        collectParts(*root, "", parts);
    }

    std::filesystem::path file;
    osg::ref_ptr<osg::Node> object;
    osg::Group* root = nullptr;
    std::map<std::string, osg::MatrixTransform*> parts;
};

TEST_P(GalleryObject, RootIsAPlainGroupNamedAfterTheObject) {
    EXPECT_EQ(root->getName(), GetParam().name);
    EXPECT_EQ(root->asTransform(), nullptr) << "the object itself must not be a part";
}

TEST_P(GalleryObject, HasExactlyThePromisedPartsWithUsableNames) {
    std::set<std::string> found;
    for (const auto& entry : parts) {
        found.insert(entry.first);
    }
    const std::set<std::string> promised(GetParam().partPaths.begin(), GetParam().partPaths.end());
    EXPECT_EQ(found, promised);

    auto isCamelCaseIdentifier = [](const std::string& name) {
        return !name.empty() && std::isupper(static_cast<unsigned char>(name[0])) &&
               std::all_of(name.begin(), name.end(),
                           [](char c) { return std::isalnum(static_cast<unsigned char>(c)); });
    };
    std::set<std::string> names;
    for (const auto& [path, part] : parts) {
        EXPECT_TRUE(isCamelCaseIdentifier(part->getName())) << path;
        EXPECT_TRUE(names.insert(part->getName()).second) << "two parts named " << part->getName();
        EXPECT_EQ(part->getDataVariance(), osg::Object::DYNAMIC) << path;
    }
}

TEST_P(GalleryObject, EveryPartCarriesGeometryAndTurnsAboutAPointOnItself) {
    for (const auto& [path, part] : parts) {
        std::size_t triangles = 0;
        osg::BoundingBox own;
        for (auto* geometry : ownGeometries(*part)) {
            triangles += gallery::triangleIndices(*geometry).size() / 3;
            own.expandBy(boundsOf(*geometry));
        }
        ASSERT_GT(triangles, 0u) << path << " has nothing to show";
        // The pivot is the part's own origin: a hinge on the edge of a door,
        // an axle in a wheel. Geometry left far from it swings wide.
        const float slack = 0.01f + 0.05f * (own._max - own._min).length();
        for (int axis = 0; axis < 3; ++axis) {
            EXPECT_GE(0, own._min[axis] - slack) << path << " axis " << axis;
            EXPECT_LE(0, own._max[axis] + slack) << path << " axis " << axis;
        }
    }
}

TEST_P(GalleryObject, StandsOnTheGroundAtItsSizeWithTheBaseCentred) {
    const osg::BoundingBox bounds = boundsOf(*object);
    EXPECT_NEAR(bounds.yMin(), 0, 0.002);
    EXPECT_NEAR(bounds.yMax() - bounds.yMin(), GetParam().height, 0.05 * GetParam().height);
    const float width = bounds.xMax() - bounds.xMin(), depth = bounds.zMax() - bounds.zMin();
    EXPECT_LT(std::abs(bounds.center().x()), 0.1f * width);
    EXPECT_LT(std::abs(bounds.center().z()), 0.15f * depth);
}

TEST_P(GalleryObject, SurfacesFaceOutwardWithAColourEach) {
    const auto geometries = geometriesUnder(*object);
    ASSERT_FALSE(geometries.empty());
    for (auto* geometry : geometries) {
        const auto* vertices = dynamic_cast<const osg::Vec3Array*>(geometry->getVertexArray());
        const auto* normals = dynamic_cast<const osg::Vec3Array*>(geometry->getNormalArray());
        ASSERT_TRUE(vertices && normals);
        ASSERT_EQ(normals->size(), vertices->size());
        ASSERT_EQ(normals->getBinding(), osg::Array::BIND_PER_VERTEX);
        for (const auto& n : *normals) {
            ASSERT_NEAR(n.length(), 1, 1e-3);
        }
        const auto indices = gallery::triangleIndices(*geometry);
        for (std::size_t i = 0; i < indices.size(); i += 3) {
            const osg::Vec3 &a = (*vertices)[indices[i]], &b = (*vertices)[indices[i + 1]],
                            &c = (*vertices)[indices[i + 2]];
            const osg::Vec3 wound = (b - a) ^ (c - a);
            const osg::Vec3 shaded =
                (*normals)[indices[i]] + (*normals)[indices[i + 1]] + (*normals)[indices[i + 2]];
            ASSERT_GT(wound * shaded, 0) << "a triangle wound inside out";
        }
        const auto* material = dynamic_cast<const osg::Material*>(
            geometry->getStateSet()
                ? geometry->getStateSet()->getAttribute(osg::StateAttribute::MATERIAL)
                : nullptr);
        ASSERT_TRUE(material) << "geometry without a material";
        EXPECT_EQ(material->getDiffuse(osg::Material::FRONT).a(), 1);
    }
}

TEST_P(GalleryObject, ThumbnailShowsTheWholeObjectOnALightBackground) {
    const auto thumbnail = objectsFolder / GetParam().folder / (GetParam().name + ".png");
    const QImage image(QString::fromStdString(thumbnail.string()));
    ASSERT_FALSE(image.isNull()) << thumbnail;
    EXPECT_EQ(image.size(), QSize(128, 128));

    const QColor background = image.pixelColor(0, 0);
    EXPECT_GT(background.lightness(), 200);
    auto isObject = [&](int x, int y) {
        const QColor c = image.pixelColor(x, y);
        return std::abs(c.red() - background.red()) + std::abs(c.green() - background.green()) +
                   std::abs(c.blue() - background.blue()) >
               60;
    };
    int objectPixels = 0, edgeObjectPixels = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const bool onEdge = x < 2 || y < 2 || x >= image.width() - 2 || y >= image.height() - 2;
            (onEdge ? edgeObjectPixels : objectPixels) += isObject(x, y) ? 1 : 0;
        }
    }
    EXPECT_GT(objectPixels, image.width() * image.height() / 20)
        << "too little of the object shows";
    EXPECT_EQ(edgeObjectPixels, 0) << "the object is cut off at the edge";
}

std::string testName(const testing::TestParamInfo<PromisedObject>& info) {
    return info.param.folder + "_" + info.param.name;
}

INSTANTIATE_TEST_SUITE_P(Gallery, GalleryObject, testing::ValuesIn(promisedObjects()), testName);

TEST(Gallery, OffersEnoughObjectsInEveryThemeAndListsEachFile) {
    std::map<std::string, int> perFolder;
    std::set<std::filesystem::path> listed;
    for (const auto& object : promisedObjects()) {
        ++perFolder[object.folder];
        listed.insert(objectsFolder / object.folder / (object.name + ".mdl"));
    }
    EXPECT_GE(listed.size(), 30u);
    for (const char* folder :
         {"Animals", "People", "Buildings", "Furniture", "Nature", "Vehicles", "Shapes"}) {
        EXPECT_GE(perFolder[folder], 4) << folder;
    }
    std::set<std::filesystem::path> onDisk;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(objectsFolder)) {
        if (entry.path().extension() == ".mdl") {
            onDisk.insert(entry.path());
        }
    }
    EXPECT_EQ(onDisk, listed);
}

} // namespace
