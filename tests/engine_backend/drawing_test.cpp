// Frames of small fixed worlds, drawn by Mesa under Xvfb, compared with the
// colours they must show within a tolerance.
#include "engine_backend/drawing_fixture.h"
#include "facade/backend.h"
#include "scene/engine_frame.h"
#include "view/view_widget.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QImage>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QTemporaryDir>
#include <QThread>
#include <QWidget>
#include <gtest/gtest.h>
#include <osg/MatrixTransform>
#include <osg/ShapeDrawable>
#include <osg/Texture2D>
#include <osgDB/Registry>

#include <cmath>
#include <fstream>
#include <numbers>

namespace vessa::core {
namespace {

using drawing::kHeight;
using drawing::kHostId;
using drawing::kWidth;
using small_world::isGround;
using small_world::isRed;
using small_world::isSky;
using small_world::values;

// A view of the default world, and what its frames show.
class DrawingTest : public drawing::ViewTest {
protected:
    // Pixels in the middle third of the picture that look red.
    static int redPixels(const QImage& image) {
        int count = 0;
        for (int y = kHeight / 3; y < 2 * kHeight / 3; ++y) {
            for (int x = kWidth / 3; x < 2 * kWidth / 3; ++x)
                count += isRed(image.pixelColor(x, y));
        }
        return count;
    }
};

TEST_F(DrawingTest, TheDefaultWorldShowsSkyAboveAndGroundBelow) {
    const QImage image = frame();
    ASSERT_EQ(image.size(), QSize(kWidth, kHeight));
    EXPECT_TRUE(isSky(image.pixelColor(kWidth / 2, 2)));
    EXPECT_TRUE(isGround(image.pixelColor(kWidth / 2, kHeight - 4)));
}

TEST_F(DrawingTest, AnObjectShowsItsColourWhereItStandsUnlessHidden) {
    small_world::addRedBox(backend);
    EXPECT_TRUE(small_world::showsTheRedBox(frame(), kWidth, kHeight));
    const QColor lit = frame().pixelColor(kWidth / 2, kHeight / 2);
    EXPECT_GT(lit.red(), 120);
    EXPECT_LT(lit.green(), 40);
    backend.setStyle(5, "lighting", std::string("unlit"));
    EXPECT_GT(frame().pixelColor(kWidth / 2, kHeight / 2).red(), 240); // full colour, unshaded
    backend.setStyle(5, "visible", false);
    EXPECT_EQ(redPixels(frame()), 0);
}

TEST_F(DrawingTest, LinesAndPointsLeaveTheBackgroundBetweenThem) {
    add(5, "model", values({0, 1.5, 0, 0}, {2, 2, 2, 0}, {1, 0, 0, 0}), 1);
    const int solid = redPixels(frame());
    backend.setStyle(5, "filling", std::string("Lines"));
    const int lines = redPixels(frame());
    backend.setStyle(5, "filling", std::string("Points"));
    const int points = redPixels(frame());
    EXPECT_GT(solid, 2000);
    EXPECT_GT(lines, 20);
    EXPECT_LT(lines, solid / 4);
    EXPECT_GT(points, 4);
    EXPECT_LT(points, lines);
}

TEST_F(DrawingTest, TurningAnObjectSwingsItsPartToTheOtherSide) {
    add(5, "model", values({0, 1.5, 0, 0}, {0.2, 0.2, 0.2, 0}), 1);
    add(6, "model", values({1.5, 0, 0, 0}, {0.6, 0.6, 0.6, 0}, {1, 0, 0, 0}), 5);
    auto redSide = [this] {
        const QImage image = frame();
        int left = 0, right = 0;
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                const QColor c = image.pixelColor(x, y);
                if (c.red() > 90 && c.red() > 2 * c.green())
                    (x < kWidth / 2 ? left : right) += 1;
            }
        }
        return right - left;
    };
    EXPECT_GT(redSide(), 200); // the engine's right is the picture's right
    backend.set(5, "orientation", quatFromAxisAngle(0, 1, 0, std::numbers::pi));
    EXPECT_LT(redSide(), -200);
}

TEST_F(DrawingTest, WordsStandUpInSolidLetters) {
    add(5, "model", values({0, 1, 0, 0}, {1, 1, 1, 0}, {1, 0, 0, 0}), 1);
    backend.set(5, "orientation", quatFromAxisAngle(0, 1, 0, std::numbers::pi)); // facing us
    backend.setStyle(5, "model", std::string("text:Hello"));
    EXPECT_GT(redPixels(frame()), 300);
}

TEST_F(DrawingTest, TheViewKeepsDrawingInAnotherWindow) {
    QWidget other;
    other.setProperty("vessaHostId", kHostId + 1);
    other.resize(kWidth, kHeight);
    other.show();
    add(5, "model", values({0, 1.5, 0, 0}, {1, 1, 1, 0}, {1, 0, 0, 0}), 1);
    EXPECT_GT(redPixels(frame()), 100);
    ASSERT_EQ(backend.view().moveTo(kHostId + 1), "");
    EXPECT_EQ(backend.view().widget()->parentWidget(), &other);
    EXPECT_GT(redPixels(frame()), 100);
    ASSERT_EQ(backend.view().moveTo(kHostId), "");
    EXPECT_GT(redPixels(frame()), 100);
    EXPECT_NE(backend.view().moveTo(99), "");
}

// Culling takes away only what the camera can't see: a box half out of the
// picture's edge, and one far beyond the end of the ground, are drawn.
TEST_F(DrawingTest, WhatIsInViewIsDrawnAtItsEdgesAndFarAway) {
    // At 8 m from the eye the picture is 10 m wide: this box stands half out of it.
    add(5, "model", values({-5, 1.5, 0, 0}, {1, 1, 1, 0}, {1, 0, 0, 0}), 1);
    // A tower of 300 m three kilometres away, just above the horizon.
    add(6, "model", values({0, 150, 3000, 0}, {300, 300, 300, 0}, {1, 0, 0, 0}), 1);
    const QImage image = frame();
    EXPECT_TRUE(isRed(image.pixelColor(1, kHeight / 2)));
    EXPECT_TRUE(isRed(image.pixelColor(kWidth / 2, 107)));
    backend.set(2, "position", {0, 1.5, -6, 0}); // nearer, the box leaves the picture
    EXPECT_FALSE(isRed(frame().pixelColor(1, kHeight / 2)));
}

// A post from a model file with a flag on its right as a part of its own:
// red and blue boxes a metre across.
std::string writePostWithFlag(const QTemporaryDir& folder) {
    auto box = [](osg::Vec4 color) {
        auto* drawable = new osg::ShapeDrawable(new osg::Box(osg::Vec3(), 1.0f));
        drawable->setColor(color);
        auto* geode = new osg::Geode;
        geode->addDrawable(drawable);
        return geode;
    };
    osg::ref_ptr<osg::Group> post = new osg::Group;
    post->setName("Post");
    post->addChild(box({1, 0, 0, 1}));
    auto* flag =
        new osg::MatrixTransform(osg::Matrixd::translate(-1.2, 0, 0)); // OSG's x is mirrored
    flag->setName("Flag");
    flag->addChild(box({0, 0, 1, 1}));
    post->addChild(flag);
    const std::string path = folder.filePath(QStringLiteral("Post.mdl")).toStdString();
    std::ofstream out(path, std::ios::binary);
    osgDB::Registry::instance()->getReaderWriterForExtension("osgb")->writeNode(*post, out);
    return path;
}

// Small on screen, an object that stands as its file has it is drawn from one
// light shape of the whole; one whose part has moved or hidden is drawn
// from its parts, as it is.
TEST_F(DrawingTest, ASmallObjectIsDrawnWholeOnlyWhileItStandsAsItsFileHasIt) {
    QTemporaryDir folder;
    const std::string file = writePostWithFlag(folder);
    const auto post = backend.models().load(file);
    ASSERT_EQ(post->parts.size(), 2u);
    ASSERT_NE(backend.models().wholeFor(file + "#0"), nullptr);
    add(5, "model", values({0, 1, 20, 0}), 1);
    add(6, "model",
        {post->parts[1].position, post->parts[1].orientation, {1, 1, 1, 0}, {1, 1, 1, 0}}, 5);
    backend.setStyle(5, "model", file + "#0");
    backend.setStyle(6, "model", file + "#1");
    // Where blue shows: how many pixels, and the middle of their columns.
    auto blue = [this] {
        const QImage image = frame();
        int count = 0;
        double columns = 0;
        for (int y = 0; y < kHeight; ++y) {
            for (int x = 0; x < kWidth; ++x) {
                const QColor c = image.pixelColor(x, y);
                if (c.blue() > 90 && c.red() < 50 && c.green() < 50) {
                    ++count;
                    columns += x;
                }
            }
        }
        return std::pair(count, count ? columns / count : 0.0);
    };
    const auto [whole, filedAt] = blue();
    EXPECT_GT(whole, 10);
    EXPECT_GT(filedAt, kWidth / 2); // right of the post
    backend.set(6, "position", {4.2, 0, 0, 0});
    const auto [moved, movedTo] = blue();
    EXPECT_GT(moved, 10);
    EXPECT_GT(movedTo, filedAt + 20);
    backend.set(6, "position", post->parts[1].position);
    EXPECT_EQ(blue(), std::pair(whole, filedAt));
    backend.setStyle(6, "visible", false);
    EXPECT_EQ(blue().first, 0);
}

// A box wearing a picture that is blue all over.
osg::Node* blueBox() {
    osg::ref_ptr<osg::Image> picture = new osg::Image;
    picture->allocateImage(4, 4, 1, GL_RGBA, GL_UNSIGNED_BYTE);
    for (int i = 0; i < 16; ++i) {
        unsigned char* texel = picture->data() + 4 * i;
        texel[0] = texel[1] = 0;
        texel[2] = texel[3] = 255;
    }
    auto* box = new osg::Geode;
    box->addDrawable(new osg::ShapeDrawable(new osg::Box(osg::Vec3(), 1.0f)));
    box->getOrCreateStateSet()->setTextureAttributeAndModes(0, new osg::Texture2D(picture.get()));
    return box;
}

TEST_F(DrawingTest, APictureOnAShapeShowsUnlessTexturesAreOff) {
    add(5, "model", values({0, 1.5, 0, 0}), 1);
    osg::ref_ptr<osg::Node> shape = blueBox();
    backend.scene().setModel(5, "blue box", shape.get());
    backend.setStyle(5, "lighting", std::string("UnLit"));
    const QColor textured = frame().pixelColor(kWidth / 2, kHeight / 2);
    EXPECT_GT(textured.blue(), 200);
    EXPECT_LT(textured.red(), 30);
    backend.setStyle(5, "texture", false);
    const QColor plain = frame().pixelColor(kWidth / 2, kHeight / 2);
    EXPECT_GT(plain.red(), 200);
    EXPECT_GT(plain.green(), 200);
}

TEST_F(DrawingTest, TheHighQualityPathCastsShadowsOnTheGround) {
    add(5, "model", values({0, 1.0, 0, 0}, {1, 1, 1, 0}, {1, 0, 0, 0}), 1);
    // The light stands right of the camera and in front: the shadow falls
    // left of the box and behind it, low in the picture.
    auto groundUnderneath = [this] {
        return frame().pixelColor(kWidth / 2 - 8, 165).green();
    };
    const int plain = groundUnderneath();
    ASSERT_EQ(backend.view().setHighQuality(true), "");
    const int shaded = groundUnderneath();
    EXPECT_LT(shaded, plain - 25);
    backend.setStyle(5, "shadow", false);
    EXPECT_EQ(groundUnderneath(), plain);
    backend.setStyle(5, "shadow", true);
    EXPECT_EQ(groundUnderneath(), shaded);
    // Sunk into the ground with what it hangs from, the box casts no shadow.
    add(7, "camera", values({0, 0, 0, 0}), 1);
    backend.setParent(5, 7);
    EXPECT_EQ(groundUnderneath(), shaded);
    backend.set(7, "position", {0, -1.5, 0, 0});
    EXPECT_EQ(groundUnderneath(), plain);
    backend.set(7, "position", {0, 0, 0, 0});
    EXPECT_EQ(groundUnderneath(), shaded);
    ASSERT_EQ(backend.view().setHighQuality(false), "");
    EXPECT_EQ(groundUnderneath(), plain);
}

// Without a camera view the picture is drawn through EGL, which can't make
// its context current over Qt's GLX one: that is put aside, and back after.
TEST(PictureWithoutAView, IsDrawnUnderXWhileQtsOwnContextIsCurrent) {
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        GTEST_SKIP() << "needs a display";
    QOffscreenSurface surface;
    surface.create();
    QOpenGLContext context;
    ASSERT_TRUE(context.create() && context.makeCurrent(&surface));
    Backend backend;
    small_world::addDefaultWorld(backend);
    small_world::addRedBox(backend);
    QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("picture.bmp"));
    ASSERT_EQ(backend.view().savePicture(path.toStdString()), "");
    EXPECT_TRUE(small_world::showsTheRedBox(QImage(path), 320, 240));
    EXPECT_EQ(QOpenGLContext::currentContext(), &context);
    context.doneCurrent();
}

TEST_F(DrawingTest, AStillWorldDrawsNoFrames) {
    const ViewWidget& view = *backend.view().widget();
    // Frames are counted, not timed: a busy machine draws them later, never more of them.
    const auto framesAfter = [&](unsigned long long seen) {
        QElapsedTimer limit;
        limit.start();
        while (view.framesDrawn() <= seen && limit.elapsed() < 10000) {
            QCoreApplication::processEvents();
            QThread::msleep(5);
        }
        return view.framesDrawn();
    };
    const auto settle = [] {
        for (int i = 0; i < 20; ++i) {
            QCoreApplication::processEvents();
            QThread::msleep(10);
        }
    };
    ASSERT_GE(framesAfter(0), 1u);
    settle();
    const auto drawn = view.framesDrawn();
    settle();
    EXPECT_EQ(view.framesDrawn(), drawn);
    backend.set(4, "color", {1, 1, 1, 0});
    backend.set(4, "position", {0, -0.1, 0, 0}); // two changes, one frame
    ASSERT_EQ(framesAfter(drawn), drawn + 1);
    settle();
    EXPECT_EQ(view.framesDrawn(), drawn + 1);
}

} // namespace
} // namespace vessa::core
