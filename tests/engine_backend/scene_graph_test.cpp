// The scene graph as views draw it: where nodes end up in OpenSceneGraph's
// frame, and which OSG nodes hold which.
#include "facade/backend.h"
#include "scene/engine_frame.h"

#include <gtest/gtest.h>
#include <osg/Geode>
#include <osg/ShapeDrawable>

#include <cmath>
#include <numbers>

namespace vessa::core {
namespace {

NodeValues at(double x, double y, double z) {
    NodeValues values;
    for (int i = 0; i < kChannelCount; ++i)
        values[static_cast<size_t>(i)] = defaultValue(static_cast<Channel>(i));
    values[0] = {x, y, z, 0.0};
    return values;
}

class SceneGraphTest : public ::testing::Test {
protected:
    SceneGraphTest() {
        backend.addNode(1, at(0, 0, 0), "scene");
        backend.addNode(2, at(0, 0, 5), "model");
        backend.setParent(2, 1);
        backend.addNode(3, at(0, 1, 0), "model");
        backend.setParent(3, 2);
    }

    osg::Vec3d worldPoint(int id) { return backend.scene().placeToWorld(id).getTrans(); }

    Backend backend;
};

TEST_F(SceneGraphTest, TheEnginesRightIsTheRightOfThePicture) {
    // Turning right a quarter (about the engine's up axis, positive angle)
    // swings the forward axis to the engine's right, which is OSG's -x: what
    // a camera looking along +z from behind sees on its right.
    backend.set(2, "orientation", quatFromAxisAngle(0, 1, 0, std::numbers::pi / 2));
    backend.set(3, "position", {0, 0, 1, 0});
    const osg::Vec3d part = worldPoint(3);
    EXPECT_NEAR(part.x(), -1.0, 1e-9);
    EXPECT_NEAR(part.z(), 5.0, 1e-9);
    EXPECT_EQ(fromOsgPoint(part)[0], -part.x());
    const ChannelValue q = quatFromAxisAngle(0.3, -0.5, 0.8, 1.1);
    const ChannelValue back = fromOsgRotation(toOsgRotation(q));
    for (size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(back[i], q[i], 1e-12);
}

TEST_F(SceneGraphTest, ChildrenFollowTheirParentsPlaceButNotItsSize) {
    backend.set(2, "size", {3, 3, 3, 0});
    EXPECT_NEAR(worldPoint(3).y(), 1.0, 1e-9);
    backend.set(2, "position", {0, 2, 5, 0});
    EXPECT_NEAR(worldPoint(3).y(), 3.0, 1e-9);
}

TEST_F(SceneGraphTest, TakingANodeOutOfTheWorldDetachesItsPlace) {
    SceneGraph& scene = backend.scene();
    ASSERT_TRUE(scene.inWorld(3));
    backend.setParent(2, std::nullopt);
    EXPECT_FALSE(scene.inWorld(3));
    EXPECT_EQ(scene.world()->getChild(0)->asGroup()->getNumChildren(), 1u); // its size only
    backend.setParent(2, 1);
    EXPECT_TRUE(scene.inWorld(3));
    backend.removeNode(2);
    EXPECT_FALSE(scene.inWorld(3));
}

TEST_F(SceneGraphTest, APathThroughAShapeNamesItsNodeAndHiddenShapesAreMasked) {
    // world / scene place / node 2's place / node 3's place / its size / shape
    osg::Group* scenePlace = backend.scene().world()->getChild(0)->asGroup();
    osg::Group* place2 = scenePlace->getChild(1)->asGroup();
    osg::Group* place3 = place2->getChild(1)->asGroup();
    osg::Group* size3 = place3->getChild(0)->asGroup();
    osg::Node* shape = backend.scene().shape(3);
    ASSERT_EQ(size3->getChild(0), shape);
    EXPECT_EQ(backend.scene().nodeOnPath({scenePlace, place2, place3, size3, shape}), 3);
    EXPECT_EQ(backend.scene().nodeOnPath({scenePlace, place2}), std::nullopt);
    backend.setStyle(3, "visible", false);
    EXPECT_EQ(size3->getNodeMask(), 0u);
    EXPECT_THROW(backend.setStyle(3, "visible", std::string("no")), std::invalid_argument);
}

// The view looks through the first camera in the world, found among the
// cameras the graph keeps as nodes are made, remade and destroyed.
TEST_F(SceneGraphTest, TheFirstCameraInTheWorldFollowsCamerasMadeAndDestroyed) {
    const SceneGraph& scene = backend.scene();
    EXPECT_EQ(scene.firstInWorld(NodeKind::Camera), std::nullopt);
    backend.addNode(9, at(0, 0, 0), "camera"); // outside the world
    EXPECT_EQ(scene.firstInWorld(NodeKind::Camera), std::nullopt);
    backend.addNode(7, at(0, 0, 0), "camera");
    backend.setParent(7, 2);
    backend.setParent(9, 1);
    EXPECT_EQ(scene.firstInWorld(NodeKind::Camera), 7);
    backend.setParent(2, std::nullopt); // with what it hangs from
    EXPECT_EQ(scene.firstInWorld(NodeKind::Camera), 9);
    backend.setParent(2, 1);
    backend.addNode(7, at(0, 0, 0), "light"); // the same id made anew as another kind
    backend.setParent(7, 2);
    EXPECT_EQ(scene.firstInWorld(NodeKind::Camera), 9);
    EXPECT_EQ(scene.firstInWorld(NodeKind::Light), 7);
    backend.removeNode(9);
    EXPECT_EQ(scene.firstInWorld(NodeKind::Camera), std::nullopt);
    EXPECT_EQ(scene.nodesOfKind(NodeKind::Model), (std::vector<int>{2, 3}));
}

TEST_F(SceneGraphTest, EveryChangeIsToldSoThatAViewCanRedraw) {
    int told = 0;
    backend.scene().setOnChange([&] { ++told; });
    backend.addTween(2, "position", {1, 0, 0, 0}, 0.0, 1.0, "gently");
    backend.step(0.5);
    EXPECT_EQ(told, 1);
    backend.step(0.5); // nothing moved
    EXPECT_EQ(told, 1);
    backend.setStyle(2, "filling", std::string("points"));
    EXPECT_EQ(told, 2);
}

TEST_F(SceneGraphTest, ABoundsBoxIsTheShapesOwnInTheEnginesAxesWithTheSize) {
    // A shape standing on its base, off to the engine's right (OSG's -x).
    auto* shape = new osg::Geode;
    shape->addDrawable(new osg::ShapeDrawable(new osg::Box(osg::Vec3(-1.0f, 0.5f, 0.0f), 1.0f)));
    backend.scene().setModel(2, "a shape of a test", shape);
    backend.set(2, "size", {2, 1, 3, 0});
    backend.set(2, "orientation", quatFromAxisAngle(0, 1, 0, 1.0)); // its own frame: no change
    const auto box = backend.bounds(2);
    ASSERT_TRUE(box.has_value());
    const ChannelValue low = box->first;
    const ChannelValue high = box->second;
    EXPECT_NEAR(low[0], 1.0, 1e-6);
    EXPECT_NEAR(high[0], 3.0, 1e-6);
    EXPECT_NEAR(low[1], 0.0, 1e-6);
    EXPECT_NEAR(high[1], 1.0, 1e-6);
    EXPECT_NEAR(low[2], -1.5, 1e-6);
    EXPECT_NEAR(high[2], 1.5, 1e-6);
    // the node with the shape is measured, not its children, and a scene has none
    EXPECT_NEAR(backend.bounds(3)->second[1], 0.5, 1e-6);
    EXPECT_EQ(backend.bounds(1), std::nullopt);
}

} // namespace
} // namespace vessa::core
