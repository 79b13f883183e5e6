// A world's picture drawn without a camera view, in a program on Qt's
// offscreen platform (the front end's tests, a command-line tool): there is
// no window to draw in, and with no X server no GLX either.
#include "engine_backend/small_world.h"
#include "facade/backend.h"

#include <QApplication>
#include <QImage>
#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace vessa::core {
namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 240;

class PictureWithoutAView : public ::testing::Test {
protected:
    PictureWithoutAView() {
        small_world::addDefaultWorld(backend);
        small_world::addRedBox(backend);
    }

    QImage picture() {
        const QString path = folder.filePath(QStringLiteral("picture.bmp"));
        const std::string failure = backend.view().savePicture(path.toStdString());
        EXPECT_EQ(failure, "");
        return QImage(path);
    }

    Backend backend;
    QTemporaryDir folder;
};

TEST_F(PictureWithoutAView, ShowsTheWorldThroughItsCamera) {
    ASSERT_EQ(backend.view().widget(), nullptr);
    EXPECT_TRUE(small_world::showsTheRedBox(picture(), kWidth, kHeight));
    backend.set(2, "position", {0, 1.5, 8, 0}); // behind the box, looking away from it
    EXPECT_FALSE(small_world::isRed(picture().pixelColor(kWidth / 2, kHeight / 2)));
}

TEST_F(PictureWithoutAView, TheHighQualityPathCastsShadowsThere) {
    const int plain = picture().pixelColor(kWidth / 2 - 8, 165).green();
    ASSERT_EQ(backend.view().setHighQuality(true), "");
    EXPECT_LT(picture().pixelColor(kWidth / 2 - 8, 165).green(), plain - 25);
}

// Where this platform can make Qt contexts (GLX under an X server), one
// current while the picture is drawn is current again after.
TEST_F(PictureWithoutAView, LeavesQtsCurrentContextCurrent) {
    QOffscreenSurface surface;
    surface.create();
    QOpenGLContext context;
    if (!context.create() || !context.makeCurrent(&surface))
        GTEST_SKIP() << "Qt makes no OpenGL context on this platform";
    EXPECT_TRUE(small_world::showsTheRedBox(picture(), kWidth, kHeight));
    EXPECT_EQ(QOpenGLContext::currentContext(), &context);
    context.doneCurrent();
}

} // namespace
} // namespace vessa::core

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
