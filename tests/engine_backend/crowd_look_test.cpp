// A crowd as a class's world has it: copies of an object of a model file,
// near and far, in several looks, casting shadows. What makes a crowd quick
// to draw (looks shared between nodes, lighter copies of shapes, objects
// drawn whole while small, specks left out) must not change how it looks:
// its frame is held against one drawn before any of that was done
// (data/crowd_look.png), and a crowd changed step by step against one made
// as it ends up.
#include "engine_backend/drawing_fixture.h"
#include "scene/engine_frame.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <osg/MatrixTransform>
#include <osg/ShapeDrawable>
#include <osgDB/Registry>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <string>
#include <vector>

namespace vessa::core {
namespace {

using drawing::kHeight;
using drawing::kWidth;

// A tree: a brown trunk and a round green crown of many triangles, a part
// of its own, so that its shapes have lighter copies and the whole tree a
// light shape of its own.
std::string writeTree(const QTemporaryDir& folder) {
    auto shape = [](osg::Shape* form, osg::Vec4 color) {
        osg::ref_ptr<osg::TessellationHints> fine = new osg::TessellationHints;
        fine->setDetailRatio(2.0f);
        auto* drawable = new osg::ShapeDrawable(form, fine.get());
        drawable->setColor(color);
        auto* geode = new osg::Geode;
        geode->addDrawable(drawable);
        return geode;
    };
    osg::ref_ptr<osg::Group> tree = new osg::Group;
    tree->setName("Tree");
    tree->addChild(
        shape(new osg::Box(osg::Vec3(0, 0.6f, 0), 0.3f, 1.2f, 0.3f), {0.45f, 0.3f, 0.15f, 1}));
    auto* crown = new osg::MatrixTransform(osg::Matrixd::translate(0, 1.7, 0));
    crown->setName("Crown");
    crown->addChild(shape(new osg::Sphere(osg::Vec3(), 0.8f), {0.2f, 0.7f, 0.2f, 1}));
    tree->addChild(crown);
    const std::string path = folder.filePath(QStringLiteral("Tree.mdl")).toStdString();
    std::ofstream out(path, std::ios::binary);
    osgDB::Registry::instance()->getReaderWriterForExtension("osgb")->writeNode(*tree, out);
    return path;
}

// One copy of the tree as the engine makes it: a node for the tree, one for
// its crown, each told every look it has.
struct Tree {
    ChannelValue position;
    ChannelValue color{1, 1, 1, 0};
    std::string filling = "Solid";
    std::string lighting = "Lit";
    bool visible = true;
    ChannelValue crownColor{1, 1, 1, 0};
    ChannelValue crownShift{0, 0, 0, 0}; // from where the file has it
};

// Five rows from ten metres to nearly a hundred away, the trees of each row
// in different looks.
std::vector<Tree> aCrowd() {
    const ChannelValue tints[] = {{1, 1, 1, 0}, {1, 0.4, 0.4, 0}, {0.4, 0.4, 1, 0}};
    std::vector<Tree> trees;
    for (double z : {-2.0, 5.0, 15.0, 35.0, 80.0}) {
        for (double x : {-2.0, -1.0, 0.0, 1.0, 2.0})
            trees.push_back(
                {.position = {x * (3 + z / 8), 0, z, 0}, .color = tints[trees.size() % 3]});
    }
    trees[7].lighting = "UnLit";
    trees[16].crownColor = {1, 1, 0.2, 0};
    trees[19].visible = false;
    return trees;
}

constexpr int kNodesOfATree = 2;

// Where two frames differ most: the largest difference of a colour channel
// between the two pictures' means over any block of kBlock x kBlock pixels.
// Lighter copies move a shape's edges by a pixel here and there, which a
// block's mean hardly sees; a tree missing, added or recoloured it does.
constexpr int kBlock = 10;
// Lighter copies shade a crown's edge a little darker: up to 19 of 255.
constexpr int kLookTolerance = 24;

int largestBlockDifference(const QImage& a, const QImage& b) {
    EXPECT_EQ(a.size(), b.size());
    int largest = 0;
    for (int top = 0; top + kBlock <= a.height(); top += kBlock / 2) {
        for (int left = 0; left + kBlock <= a.width(); left += kBlock / 2) {
            int sums[3] = {0, 0, 0};
            for (int y = top; y < top + kBlock; ++y) {
                for (int x = left; x < left + kBlock; ++x) {
                    const QColor p = a.pixelColor(x, y);
                    const QColor q = b.pixelColor(x, y);
                    sums[0] += p.red() - q.red();
                    sums[1] += p.green() - q.green();
                    sums[2] += p.blue() - q.blue();
                }
            }
            for (int sum : sums)
                largest = std::max(largest, std::abs(sum) / (kBlock * kBlock));
        }
    }
    return largest;
}

class CrowdLookTest : public drawing::ViewTest {
protected:
    void SetUp() override {
        ViewTest::SetUp();
        if (IsSkipped())
            return;
        file_ = writeTree(folder_);
        const auto tree = backend.models().load(file_);
        ASSERT_EQ(tree->parts.size(), static_cast<size_t>(kNodesOfATree));
        crownPlace_ = tree->parts[1].position;
        crownTurn_ = tree->parts[1].orientation;
        backend.set(4, "size", {60, 0.1, 220, 0});  // the ground under every row
        backend.set(2, "position", {0, 6, -12, 0}); // looking down on the crowd
        backend.set(2, "orientation", quatFromAxisAngle(1, 0, 0, 0.3));
        ASSERT_EQ(backend.view().setHighQuality(true), "");
    }

    // The tree's nodes are first and first + 1.
    void make(int first, const Tree& tree) {
        add(first, "model", small_world::values(tree.position, {1, 1, 1, 0}, tree.color), 1);
        add(first + 1, "model",
            {crownAt(tree.crownShift), crownTurn_, {1, 1, 1, 0}, tree.crownColor}, first);
        for (int part = 0; part < kNodesOfATree; ++part) {
            const int id = first + part;
            backend.setStyle(id, "model", file_ + "#" + std::to_string(part));
            backend.setStyle(id, "filling", tree.filling);
            backend.setStyle(id, "lighting", tree.lighting);
            backend.setStyle(id, "texture", true);
            backend.setStyle(id, "shadow", true);
            backend.setStyle(id, "visible", tree.visible);
        }
    }

    ChannelValue crownAt(const ChannelValue& shift) const {
        ChannelValue at = crownPlace_;
        for (size_t i = 0; i < 3; ++i)
            at[i] += shift[i];
        return at;
    }

    void destroy(int first) {
        for (int part = kNodesOfATree - 1; part >= 0; --part)
            backend.removeNode(first + part);
    }

    static int firstOf(size_t tree, int from) {
        return from + kNodesOfATree * static_cast<int>(tree);
    }

    void makeAll(const std::vector<Tree>& trees, int from) {
        for (size_t i = 0; i < trees.size(); ++i)
            make(firstOf(i, from), trees[i]);
    }

private:
    QTemporaryDir folder_;
    std::string file_;
    ChannelValue crownPlace_;
    ChannelValue crownTurn_;
};

constexpr int kFirstTree = 100;

TEST_F(CrowdLookTest, LooksAsItDidBeforeCrowdsWereDrawnQuickly) {
    const QImage before(QStringLiteral(VESSA_DRAWING_DATA "/crowd_look.png"));
    ASSERT_EQ(before.size(), QSize(kWidth, kHeight));
    std::vector<Tree> trees = aCrowd();
    makeAll(trees, kFirstTree);
    const QImage now = frame();
    EXPECT_LE(largestBlockDifference(now, before), kLookTolerance);
    // The comparison sees a tree of the middle row, 20 pixels across, gone.
    for (int part = 0; part < kNodesOfATree; ++part)
        backend.setStyle(firstOf(12, kFirstTree) + part, "visible", false);
    EXPECT_GT(largestBlockDifference(frame(), before), kLookTolerance);
}

TEST_F(CrowdLookTest, ShowsEveryChangeAsACrowdMadeSoWould) {
    std::vector<Tree> trees = aCrowd();
    makeAll(trees, kFirstTree);
    const QImage start = frame();
    const auto step = [&](size_t tree, const char* channel, const ChannelValue& value) {
        backend.set(firstOf(tree, kFirstTree), channel, value);
    };
    const auto setFilling = [&](size_t tree, const char* filling) {
        for (int part = 0; part < kNodesOfATree; ++part)
            backend.setStyle(firstOf(tree, kFirstTree) + part, "filling", std::string(filling));
    };
    // Recoloured: through a fade of fifty looks no tree has (those no tree
    // keeps are let go on the way), to one others have, to white.
    for (int shade = 50; shade >= 0; --shade)
        step(0, "color", {0.2 + shade / 100.0, 1, 1, 0});
    trees[0].color = {0.2, 1, 1, 0};
    step(1, "color", {0.4, 0.4, 1, 0});
    trees[1].color = {0.4, 0.4, 1, 0};
    step(17, "color", {1, 1, 1, 0});
    trees[17].color = {1, 1, 1, 0};
    // Hidden, and shown again.
    for (int part = 0; part < kNodesOfATree; ++part) {
        backend.setStyle(firstOf(10, kFirstTree) + part, "visible", false);
        backend.setStyle(firstOf(19, kFirstTree) + part, "visible", true);
    }
    trees[10].visible = false;
    trees[19].visible = true;
    // Moved near and far, sunk into the ground, lifted off it.
    step(2, "position", {1, 0, 0, 0});
    trees[2].position = {1, 0, 0, 0};
    step(23, "position", {-3, 0, 9, 0});
    trees[23].position = {-3, 0, 9, 0};
    step(8, "position", {0, -3, 4, 0});
    trees[8].position = {0, -3, 4, 0};
    step(6, "position", {-2, 1.5, 4, 0});
    trees[6].position = {-2, 1.5, 4, 0};
    // A far tree's crown moved off it, and one moved away and back.
    trees[21].crownShift = {0, 3, 0, 0};
    backend.set(firstOf(21, kFirstTree) + 1, "position", crownAt(trees[21].crownShift));
    backend.set(firstOf(17, kFirstTree) + 1, "position", crownAt({0, 6, 0, 0}));
    setFilling(4, "Lines");
    const QImage midway = frame();
    backend.set(firstOf(17, kFirstTree) + 1, "position", crownAt({0, 0, 0, 0}));
    // Drawn in lines, then solid again; destroyed.
    setFilling(4, "solid");
    destroy(firstOf(13, kFirstTree));
    destroy(firstOf(24, kFirstTree));
    const QImage changed = frame();
    EXPECT_GT(largestBlockDifference(changed, start), 40);
    EXPECT_GT(largestBlockDifference(changed, midway), 12);

    for (size_t i = 0; i < trees.size(); ++i) {
        if (i != 13 && i != 24)
            destroy(firstOf(i, kFirstTree));
    }
    trees.erase(trees.begin() + 24);
    trees.erase(trees.begin() + 13);
    makeAll(trees, 2 * kFirstTree);
    EXPECT_LE(largestBlockDifference(changed, frame()), 3);
}

} // namespace
} // namespace vessa::core
