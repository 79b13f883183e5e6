// The shapes objects are built from: closed, wound outward, the right size,
// and placed where the recipes say once they become a scene graph.
#include "gallery/model.h"
#include "gallery/objects/objects.h"
#include "gallery/palette.h"
#include "gallery/thumbnail.h"

#include <osg/Geode>
#include <osg/Geometry>
#include <osg/MatrixTransform>

#include <QImage>
#include <gtest/gtest.h>

#include <array>
#include <map>
#include <numbers>

using namespace gallery;

namespace {

constexpr double pi = std::numbers::pi;

double signedVolume(const Mesh& mesh) {
    double volume = 0;
    for (std::size_t i = 0; i + 2 < mesh.indices.size(); i += 3) {
        const osg::Vec3d a = mesh.positions[mesh.indices[i]],
                         b = mesh.positions[mesh.indices[i + 1]],
                         c = mesh.positions[mesh.indices[i + 2]];
        volume += a * (b ^ c) / 6;
    }
    return volume;
}

// Closed when every edge, taken by where its ends are, is walked once each
// way by the triangles on its two sides.
bool isClosed(const Mesh& mesh) {
    using Point = std::array<long, 3>;
    auto at = [&mesh](unsigned index) {
        const osg::Vec3& p = mesh.positions[index];
        return Point{std::lround(p.x() * 1e5), std::lround(p.y() * 1e5), std::lround(p.z() * 1e5)};
    };
    std::map<std::pair<Point, Point>, int> walked;
    for (std::size_t i = 0; i + 2 < mesh.indices.size(); i += 3) {
        for (std::size_t k = 0; k < 3; ++k) {
            ++walked[{at(mesh.indices[i + k]), at(mesh.indices[i + (k + 1) % 3])}];
        }
    }
    for (const auto& [edge, times] : walked) {
        const auto back = walked.find({edge.second, edge.first});
        if (back == walked.end() || back->second != times) {
            return false;
        }
    }
    return !walked.empty();
}

struct Solid {
    std::string name;
    Mesh mesh;
    double volume;
};

std::vector<Solid> solids() {
    Mesh beachBall;
    for (int i = 0; i < 6; ++i) {
        beachBall.append(ballSlice(1, float(i) / 6, float(i + 1) / 6, palette::Red).mesh);
    }
    return {
        {"box", boxMesh({1, 2, 3}), 6},
        {"sphere", sphereMesh(1, 20, 12), 4 * pi / 3},
        {"ball in slices", beachBall, 4 * pi / 3},
        {"capsule", capsuleMesh(0.5f, 2, 20, 12), pi * 0.25 + 4 * pi / 3 * 0.125},
        {"cylinder", cylinderMesh(1, 1, 2, 20), 2 * pi},
        {"cone", cylinderMesh(1, 0, 3, 20), pi},
        {"frustum", cylinderMesh(1, 0.5f, 1, 20), pi / 3 * (1 + 0.5 + 0.25)},
        {"ring", torusMesh(2, 0.5f, 40, 12), 2 * pi * pi * 2 * 0.25},
        {"dome", domeMesh(1, 20, 6), 2 * pi / 3},
        {"roof", taperedBoxMesh({2, 1, 2}, 1, 0), 2},
        {"pyramid", taperedBoxMesh({1, 1, 1}, 0, 0), 1.0 / 3},
        {"slab", extrudedMesh({{0, 0}, {2, 0}, {2, 1}, {0, 1}}, 0.5f), 1},
        {"triangular slab", extrudedMesh({{0, 0}, {1, 0}, {0, 1}}, 1), 0.5},
        {"faceted sphere", faceted(sphereMesh(1, 20, 12)), 4 * pi / 3},
    };
}

TEST(Meshes, AreClosedWoundOutwardAndOfTheRightVolume) {
    for (const auto& solid : solids()) {
        SCOPED_TRACE(solid.name);
        EXPECT_TRUE(isClosed(solid.mesh));
        // Round shapes lose a little to their flat facets.
        EXPECT_NEAR(signedVolume(solid.mesh), solid.volume, 0.06 * solid.volume);
        EXPECT_EQ(solid.mesh.normals.size(), solid.mesh.positions.size());
    }
}

TEST(Meshes, StayClosedAndOutwardWhenMirroredOrMadeLumpy) {
    Mesh mirrored = cylinderMesh(1, 0.5f, 1, 20);
    const double volume = signedVolume(mirrored);
    mirrored.transform(osg::Matrix::scale(-1, 1, 1));
    EXPECT_NEAR(signedVolume(mirrored), volume, 1e-5);
    EXPECT_TRUE(isClosed(mirrored));

    const Mesh lumpy = jittered(sphereMesh(1, 9, 6), 0.18f, 3);
    EXPECT_TRUE(isClosed(lumpy));
    EXPECT_GT(signedVolume(lumpy), 0);
}

TEST(Meshes, NormalsStayPerpendicularToAStretchedSurface) {
    const osg::Vec3 radii(1, 0.2f, 2);
    Mesh egg = sphereMesh(1, 20, 12);
    egg.transform(osg::Matrix::scale(radii));
    for (std::size_t i = 0; i < egg.positions.size(); ++i) {
        const osg::Vec3& p = egg.positions[i];
        osg::Vec3 expected(p.x() / (radii.x() * radii.x()), p.y() / (radii.y() * radii.y()),
                           p.z() / (radii.z() * radii.z()));
        expected.normalize();
        ASSERT_GT(egg.normals[i] * expected, 0.999f) << i;
    }
}

TEST(Recipes, MirroredPartsSwapSidesNamesAndPivots) {
    const Part leftArm{"LeftArm",
                       {0.2f, 1, 0.1f},
                       {ball(0.1f, palette::Red).at({0.3f, 0.8f, 0.1f})},
                       {{"LeftHand",
                         {0.3f, 0.6f, 0.1f},
                         {ball(0.05f, palette::Red).at({0.3f, 0.55f, 0.1f})},
                         {}}}};
    const auto arms = leftAndRight(leftArm);
    ASSERT_EQ(arms.size(), 2u);
    const Part& right = arms[1];
    EXPECT_EQ(right.name, "RightArm");
    EXPECT_EQ(right.pivot, osg::Vec3(-0.2f, 1, 0.1f));
    EXPECT_EQ(right.shapes[0].center, osg::Vec3(-0.3f, 0.8f, 0.1f));
    EXPECT_GT(signedVolume(right.shapes[0].mesh), 0);
    ASSERT_EQ(right.parts.size(), 1u);
    EXPECT_EQ(right.parts[0].name, "RightHand");
    EXPECT_EQ(right.parts[0].pivot, osg::Vec3(-0.3f, 0.6f, 0.1f));

    std::map<std::string, osg::Vec3> legs;
    for (const auto& leg : fourCorners({"FrontLeftLeg", {0.5f, 0.7f, 0.3f}, {}, {}})) {
        legs[leg.name] = leg.pivot;
    }
    const std::map<std::string, osg::Vec3> expected{{"FrontLeftLeg", {0.5f, 0.7f, 0.3f}},
                                                    {"FrontRightLeg", {-0.5f, 0.7f, 0.3f}},
                                                    {"BackLeftLeg", {0.5f, 0.7f, -0.3f}},
                                                    {"BackRightLeg", {-0.5f, 0.7f, -0.3f}}};
    EXPECT_EQ(legs, expected);
}

TEST(Recipes, FindPartsByNameAndScaleWhole) {
    ObjectRecipe recipe{"Test",
                        "Thing",
                        {box({1, 1, 1}, palette::Blue).at({0, 0.5f, 0})},
                        {{"Top", {0, 1, 0}, {}, {{"Lid", {0.5f, 1, 0}, {}, {}}}}}};
    EXPECT_EQ(partNamed(recipe, "Lid").pivot, osg::Vec3(0.5f, 1, 0));
    EXPECT_THROW(partNamed(recipe, "Handle"), std::invalid_argument);

    const ObjectRecipe bigger = scaled(recipe, 2);
    EXPECT_EQ(bigger.parts[0].parts[0].pivot, osg::Vec3(1, 2, 0));
    EXPECT_NEAR(signedVolume(bigger.body[0].mesh), 8, 1e-4);
}

osg::BoundingBox boundsOf(const std::vector<Shape>& shapes) {
    osg::BoundingBox bounds;
    for (const auto& shape : shapes) {
        for (const auto& p : shape.mesh.positions) {
            bounds.expandBy(p);
        }
    }
    return bounds;
}

// The part's own geometry, in object coordinates.
osg::BoundingBox placedBounds(osg::MatrixTransform& part, const osg::Matrix& toObject) {
    osg::BoundingBox bounds;
    for (unsigned i = 0; i < part.getNumChildren(); ++i) {
        if (auto* geode = dynamic_cast<osg::Geode*>(part.getChild(i))) {
            for (unsigned j = 0; j < geode->getNumDrawables(); ++j) {
                const auto* vertices = static_cast<const osg::Vec3Array*>(
                    geode->getDrawable(j)->asGeometry()->getVertexArray());
                for (const auto& v : *vertices) {
                    bounds.expandBy(v * toObject);
                }
            }
        }
    }
    return bounds;
}

void expectPlacedAsInRecipe(const Part& part, osg::Group& parent) {
    osg::MatrixTransform* node = nullptr;
    for (unsigned i = 0; i < parent.getNumChildren() && !node; ++i) {
        if (parent.getChild(i)->getName() == part.name) {
            node = dynamic_cast<osg::MatrixTransform*>(parent.getChild(i));
        }
    }
    ASSERT_TRUE(node) << part.name << " is not under " << parent.getName();
    SCOPED_TRACE(part.name);
    const osg::Matrix toObject = osg::computeLocalToWorld(node->getParentalNodePaths()[0]);
    EXPECT_LT((toObject.getTrans() - part.pivot).length(), 1e-5f) << "pivot";
    const osg::BoundingBox placed = placedBounds(*node, toObject), planned = boundsOf(part.shapes);
    EXPECT_LT((placed._min - planned._min).length() + (placed._max - planned._max).length(), 1e-4f);
    for (const auto& child : part.parts) {
        expectPlacedAsInRecipe(child, *node);
    }
}

TEST(Models, EveryPartSitsWhereItsRecipePutsIt) {
    for (const auto& recipe : allObjects()) {
        SCOPED_TRACE(recipe.name);
        const auto model = buildModel(recipe);
        for (const auto& part : recipe.parts) {
            expectPlacedAsInRecipe(part, *model);
        }
    }
}

int bluePixels(const QImage& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, y);
            count += c.blue() > 2 * c.red() && c.blue() > 80 ? 1 : 0;
        }
    }
    return count;
}

// A red wall with a blue box in front of it or behind it, listed either way round.
QImage wallAndBox(float boxZ, bool boxFirst) {
    const Shape wall = box({2, 2, 0.2f}, palette::Red).at({0, 1, 0});
    const Shape cube = box({0.6f, 0.6f, 0.6f}, palette::Blue).at({0, 1, boxZ});
    ObjectRecipe recipe{"Test", "Wall", {}, {}};
    recipe.body = boxFirst ? std::vector{cube, wall} : std::vector{wall, cube};
    return drawThumbnail(*buildModel(recipe), 64);
}

TEST(Thumbnails, ShowWhatIsNearestWhateverTheOrder) {
    EXPECT_GT(bluePixels(wallAndBox(0.6f, true)), 64 * 64 / 20);
    EXPECT_GT(bluePixels(wallAndBox(0.6f, false)), 64 * 64 / 20);
    EXPECT_EQ(bluePixels(wallAndBox(-0.6f, true)), 0);
    EXPECT_EQ(bluePixels(wallAndBox(-0.6f, false)), 0);
}

} // namespace
