// Model files into parts and shared shapes, and objects back into files.
#include "facade/backend.h"
#include "models/lighter_shape.h"
#include "models/model_library.h"
#include "models/model_reading.h"

#include <gtest/gtest.h>
#include <osg/Geode>
#include <osg/Geometry>
#include <osg/Material>
#include <osg/MatrixTransform>
#include <osg/ShapeDrawable>
#include <osg/Texture2D>
#include <osg/TriangleFunctor>
#include <osgDB/Registry>
#include <osgDB/WriteFile>

#include <QTemporaryDir>

#include <fstream>

namespace vessa::core {
namespace {

osg::Geode* coloredTriangle(osg::Vec4 color) {
    auto* geometry = new osg::Geometry;
    auto* points = new osg::Vec3Array;
    points->push_back({0, 0, 0});
    points->push_back({1, 0, 0});
    points->push_back({0, 1, 0});
    geometry->setVertexArray(points);
    geometry->addPrimitiveSet(new osg::DrawArrays(GL_TRIANGLES, 0, 3));
    auto* material = new osg::Material;
    material->setDiffuse(osg::Material::FRONT_AND_BACK, color);
    geometry->getOrCreateStateSet()->setAttribute(material);
    auto* geode = new osg::Geode;
    geode->addDrawable(geometry);
    return geode;
}

// A bunny as the gallery makes them: a body, a head at the neck, an ear on
// the head.
void writeBunny(const std::string& path, double headHeight) {
    osg::ref_ptr<osg::Group> bunny = new osg::Group;
    bunny->setName("Bunny");
    bunny->addChild(coloredTriangle({1, 1, 1, 1}));
    auto* head = new osg::MatrixTransform(osg::Matrixd::translate(0.25, headHeight, 0));
    head->setName("Head");
    head->addChild(coloredTriangle({0.5f, 0.5f, 0.5f, 1}));
    auto* ear = new osg::MatrixTransform(osg::Matrixd::rotate(osg::PI_2, osg::Vec3d(0, 0, 1)) *
                                         osg::Matrixd::translate(0, 0.3, 0));
    ear->setName("LeftEar");
    ear->addChild(coloredTriangle({1, 0.7f, 0.7f, 1}));
    head->addChild(ear);
    bunny->addChild(head);
    std::ofstream out(path, std::ios::binary);
    osgDB::Registry::instance()->getReaderWriterForExtension("osgb")->writeNode(*bunny, out);
}

class ModelLibraryTest : public ::testing::Test {
protected:
    std::string file(const char* name) const { return dir.filePath(name).toStdString(); }

    QTemporaryDir dir;
    ModelLibrary library;
};

TEST_F(ModelLibraryTest, TheEnginesFilesComeApartIntoNamedPartsInTheEnginesFrame) {
    writeBunny(file("Bunny.mdl"), 0.5);
    const auto bunny = library.load(file("Bunny.mdl"));
    ASSERT_EQ(bunny->parts.size(), 3u);
    EXPECT_EQ(bunny->name, "Bunny");
    EXPECT_EQ(bunny->parts[1].name, "Head");
    EXPECT_EQ(bunny->parts[2].name, "LeftEar");
    EXPECT_EQ(bunny->parts[2].parent, 1);
    // OSG's +x is the engine's left.
    EXPECT_DOUBLE_EQ(bunny->parts[1].position[0], -0.25);
    EXPECT_DOUBLE_EQ(bunny->parts[1].position[1], 0.5);
    EXPECT_NEAR(std::abs(bunny->parts[2].orientation[0]), std::sqrt(0.5), 1e-9);
    EXPECT_EQ(bunny->parts[0].vertices, 3);
    EXPECT_EQ(bunny->parts[0].faces, 1);
}

TEST_F(ModelLibraryTest, ObjectsOfOneFileShareShapesUntilTheFileChanges) {
    writeBunny(file("Bunny.mdl"), 0.5);
    osg::Node* head = library.shapeFor(file("Bunny.mdl") + "#1");
    ASSERT_NE(head, nullptr);
    EXPECT_EQ(library.shapeFor(file("Bunny.mdl") + "#1"), head);
    EXPECT_EQ(library.shapeFor(file("Bunny.mdl") + "#7"), nullptr);
    writeBunny(file("Bunny.mdl"), 0.75);
    std::filesystem::last_write_time(
        file("Bunny.mdl"), std::filesystem::file_time_type::clock::now() + std::chrono::seconds(5));
    EXPECT_NE(library.shapeFor(file("Bunny.mdl") + "#1"), head);
    EXPECT_DOUBLE_EQ(library.load(file("Bunny.mdl"))->parts[1].position[1], 0.75);
}

TEST_F(ModelLibraryTest, BrokenUnknownAndMissingFilesSayWhatIsWrong) {
    std::ofstream(file("Broken.mdl")) << "this is not a scene graph";
    std::ofstream(file("Thing.xyz")) << "nor is this";
    auto failure = [this](const char* name) {
        try {
            library.load(file(name));
        } catch (const ModelError& e) {
            return std::string(e.what());
        }
        return std::string();
    };
    EXPECT_NE(failure("Broken.mdl").find("is damaged"), std::string::npos);
    EXPECT_NE(failure("Thing.xyz").find(".xyz"), std::string::npos);
    EXPECT_NE(failure("Nothing.obj").find("There is no object file"), std::string::npos);
    EXPECT_EQ(library.shapeFor(file("Broken.mdl") + "#0"), nullptr);
}

TEST_F(ModelLibraryTest, NamedGroupsOfAnObjFileTurnAboutTheirMiddlesAndMissingPicturesAreLeftOut) {
    std::ofstream(file("Lamp.mtl")) << "newmtl shade\nKd 1 0 0\nmap_Kd gone.png\n";
    std::ofstream(file("Lamp.obj")) << "mtllib Lamp.mtl\n"
                                       "v 0 0 0\nv 1 0 0\nv 0 1 0\n"
                                       "v 0 2 0\nv 1 2 0\nv 0 3 0\n"
                                       "g Base\nf 1 2 3\n"
                                       "g Shade\nusemtl shade\nf 4 5 6\n";
    const auto lamp = library.load(file("Lamp.obj"));
    ASSERT_EQ(lamp->parts.size(), 3u);
    EXPECT_EQ(lamp->name, "Lamp");
    const ModelPart& shade = lamp->parts[2];
    EXPECT_EQ(shade.name, "Shade");
    EXPECT_NEAR(shade.position[1], 2.5, 1e-6);
    struct TextureFinder : osg::NodeVisitor {
        TextureFinder() : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN) {}
        void apply(osg::Drawable& d) override {
            if (d.getStateSet() &&
                d.getStateSet()->getTextureAttribute(0, osg::StateAttribute::TEXTURE))
                ++textures;
            if (auto* g = d.asGeometry(); g && g->getColorArray())
                color = static_cast<const osg::Vec4Array*>(g->getColorArray())->front();
        }
        int textures = 0;
        osg::Vec4 color;
    } finder;
    shade.shape->accept(finder);
    EXPECT_EQ(finder.textures, 0);
    EXPECT_EQ(finder.color, osg::Vec4(1, 0, 0, 1)); // its colour when drawn unlit
}

int triangles(osg::Node* shape) {
    struct Count : osg::NodeVisitor {
        Count() : osg::NodeVisitor(TRAVERSE_ALL_CHILDREN) {}
        void apply(osg::Drawable& d) override {
            osg::TriangleFunctor<Counter> count;
            d.accept(count);
            total += count.n;
        }
        struct Counter {
            int n = 0;
            void operator()(const osg::Vec3&, const osg::Vec3&, const osg::Vec3&) { ++n; }
        };
        int total = 0;
    } count;
    shape->accept(count);
    return count.total;
}

TEST(LighterShape, KeepsTheOutlineWithAFractionOfTheTriangles) {
    auto* hints = new osg::TessellationHints;
    hints->setDetailRatio(2.0f);
    osg::ref_ptr<osg::Geode> ball = new osg::Geode;
    ball->addDrawable(new osg::ShapeDrawable(new osg::Sphere(osg::Vec3(0, 1, 0), 1.0f), hints));
    const int full = triangles(ball.get());
    const LighterShape lighter = lighterShape(ball.get(), 10);
    osg::Node* light = lighter.shape.get();
    EXPECT_EQ(triangles(light), lighter.triangles);
    EXPECT_LT(triangles(light), full / 3);
    EXPECT_GT(triangles(light), 50);
    EXPECT_EQ(triangles(ball.get()), full);
    EXPECT_NEAR(light->getBound().radius(), ball->getBound().radius(), 0.15);
}

// Corners gathered into one cell keep the faces that meet there apart: a
// thin plate keeps its top and its bottom, each flat, not rounded and dark at
// its edges; only its sides, thinner than a cell, go.
TEST(LighterShape, KeepsBothFacesOfAThinPlateFacingTheirOwnWays) {
    osg::ref_ptr<osg::Geode> box = new osg::Geode;
    box->addDrawable(new osg::ShapeDrawable(new osg::Box(osg::Vec3(), 1.0f, 0.05f, 1.0f)));
    const LighterShape lighter = lighterShape(box.get(), 3);
    const auto* normals = dynamic_cast<const osg::Vec3Array*>(
        lighter.shape->asGeode()->getDrawable(0)->asGeometry()->getNormalArray());
    ASSERT_NE(normals, nullptr);
    for (const osg::Vec3& normal : *normals)
        EXPECT_NEAR(std::max({std::abs(normal.x()), std::abs(normal.y()), std::abs(normal.z())}),
                    1.0f, 1e-5f);
    EXPECT_EQ(lighter.triangles, 4);
}

// A square plate whose picture is two pieces of the picture side by side: its
// left half wears u from 0 to 0.3 and its right half u from 0.7 to 1, with the
// vertices of the seam between them twice, once for each piece; v runs up.
osg::ref_ptr<osg::Geode> plateOfTwoPictureHalves(int quadsAcross) {
    auto* points = new osg::Vec3Array;
    auto* coords = new osg::Vec2Array;
    auto* faces = new osg::DrawElementsUInt(GL_TRIANGLES);
    const int half = quadsAcross / 2;
    for (const auto& [firstColumn, uAtSeamSide] : {std::pair{0, 0.0f}, std::pair{half, 0.7f}}) {
        const auto first = static_cast<unsigned int>(points->size());
        for (int row = 0; row <= quadsAcross; ++row) {
            for (int column = 0; column <= half; ++column) {
                const float x = static_cast<float>(firstColumn + column) / quadsAcross;
                const float y = static_cast<float>(row) / quadsAcross;
                points->push_back({x, y, 0});
                coords->push_back({uAtSeamSide + 0.6f * (x - (firstColumn ? 0.5f : 0.0f)), y});
            }
        }
        const auto at = [&](int row, int column) {
            return first + static_cast<unsigned int>(row * (half + 1) + column);
        };
        for (int row = 0; row < quadsAcross; ++row) {
            for (int column = 0; column < half; ++column) {
                for (unsigned int corner :
                     {at(row, column), at(row, column + 1), at(row + 1, column + 1),
                      at(row, column), at(row + 1, column + 1), at(row + 1, column)})
                    faces->push_back(corner);
            }
        }
    }
    auto* geometry = new osg::Geometry;
    geometry->setVertexArray(points);
    auto* normals = new osg::Vec3Array;
    normals->assign(points->size(), osg::Vec3(0, 0, 1));
    geometry->setNormalArray(normals, osg::Array::BIND_PER_VERTEX);
    geometry->setTexCoordArray(0, coords, osg::Array::BIND_PER_VERTEX);
    geometry->addPrimitiveSet(faces);
    osg::ref_ptr<osg::Geode> plate = new osg::Geode;
    plate->addDrawable(geometry);
    return plate;
}

// The plate's picture place at a point of it, on the given side of the seam.
osg::Vec2 platePicturePlace(const osg::Vec3& at, bool right) {
    return right ? osg::Vec2(0.7f + 0.6f * (at.x() - 0.5f), at.y())
                 : osg::Vec2(0.6f * at.x(), at.y());
}

// The picture stays where it was on a lighter copy: a cell that holds both
// sides of a seam keeps a vertex for each, so no triangle of the copy reaches
// from one piece of the picture into the other, and in the middle of each
// triangle the copy shows what the plate shows there.
TEST(LighterShape, KeepsThePicturesPlacesOnBothSidesOfASeam) {
    const osg::ref_ptr<osg::Geode> plate = plateOfTwoPictureHalves(40);
    const LighterShape lighter = lighterShape(plate.get(), 10);
    EXPECT_LT(lighter.triangles, triangles(plate.get()) / 4);
    const osg::Geometry* light = lighter.shape->asGeode()->getDrawable(0)->asGeometry();
    const auto& points = *static_cast<const osg::Vec3Array*>(light->getVertexArray());
    const auto* coords = dynamic_cast<const osg::Vec2Array*>(light->getTexCoordArray(0));
    ASSERT_NE(coords, nullptr);
    ASSERT_EQ(coords->size(), points.size());
    const auto& faces = *light->getPrimitiveSet(0);
    ASSERT_EQ(faces.getNumIndices(), static_cast<unsigned int>(lighter.triangles) * 3);
    float worst = 0;
    for (unsigned int t = 0; t < faces.getNumIndices(); t += 3) {
        osg::Vec3 middle;
        osg::Vec2 shown;
        for (unsigned int k = 0; k < 3; ++k) {
            middle += points[faces.index(t + k)] / 3.0f;
            shown += (*coords)[faces.index(t + k)] / 3.0f;
        }
        const float left = (shown - platePicturePlace(middle, false)).length();
        const float right = (shown - platePicturePlace(middle, true)).length();
        worst = std::max(worst, middle.x() < 0.499f   ? left
                                : middle.x() > 0.501f ? right
                                                      : std::min(left, right));
    }
    EXPECT_LT(worst, 1e-4f);
}

TEST_F(ModelLibraryTest, A3dsFileStandingOnZStandsUpOnYItsPiecesTurningAboutTheirMiddles) {
    osg::ref_ptr<osg::Group> mast = new osg::Group;
    for (const char* name : {"Pole", "Foot"}) {
        osg::ref_ptr<osg::Geode> piece = coloredTriangle({1, 1, 1, 1});
        piece->setName(name);
        auto* points =
            static_cast<osg::Vec3Array*>(piece->getDrawable(0)->asGeometry()->getVertexArray());
        (*points)[2] = {0, 0, 2}; // the top, up in a .3ds file
        mast->addChild(piece);
    }
    ASSERT_TRUE(osgDB::writeNodeFile(*mast, file("Mast.3ds")));
    const auto loaded = library.load(file("Mast.3ds"));
    ASSERT_EQ(loaded->parts.size(), 3u); // the file's top and its group hold nothing of their own
    EXPECT_EQ(loaded->parts[1].name, "Pole");
    EXPECT_NEAR(loaded->parts[1].position[1], 1.0, 1e-5);
    EXPECT_NEAR(loaded->parts[1].position[2], 0.0, 1e-5);
}

TEST_F(ModelLibraryTest, AStoredObjectKeepsItsPartsWhereTheyWereMoved) {
    writeBunny(file("Bunny.mdl"), 0.5);
    Backend backend;
    NodeValues values;
    for (int i = 0; i < kChannelCount; ++i)
        values[static_cast<size_t>(i)] = defaultValue(static_cast<Channel>(i));
    const auto bunny = backend.models().load(file("Bunny.mdl"));
    for (int part = 0; part < 3; ++part) {
        values[0] = bunny->parts[static_cast<size_t>(part)].position;
        values[1] = bunny->parts[static_cast<size_t>(part)].orientation;
        backend.addNode(10 + part, values, "model");
        backend.setStyle(10 + part, "model", file("Bunny.mdl") + "#" + std::to_string(part));
        if (part > 0)
            backend.setParent(10 + part, 10 + bunny->parts[static_cast<size_t>(part)].parent);
    }
    backend.set(11, "position", {0.5, 1.0, 0.0, 0.0});
    backend.models().store(backend.scene(), {{10, "Hare", -1}, {11, "Head", 0}, {12, "Ear", 1}},
                           file("Hare.mdl"));
    const auto hare = backend.models().load(file("Hare.mdl"));
    ASSERT_EQ(hare->parts.size(), 3u);
    EXPECT_EQ(hare->name, "Hare");
    EXPECT_NEAR(hare->parts[1].position[0], 0.5, 1e-9);
    EXPECT_NEAR(hare->parts[1].position[1], 1.0, 1e-9);
    EXPECT_EQ(hare->parts[2].name, "Ear");
    EXPECT_EQ(hare->parts[2].faces, 1);
    EXPECT_THROW(
        backend.models().store(backend.scene(), {{10, "Hare", -1}}, file("no/such/dir.mdl")),
        ModelError);
}

} // namespace
} // namespace vessa::core
