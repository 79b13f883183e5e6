// A display whose OpenGL can't be used: the engine says why, and the camera
// view is not made, instead of failing when it would draw.
#include <QApplication>
#include <QWidget>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pybind11/embed.h>

namespace py = pybind11;
using ::testing::HasSubstr;

namespace {

constexpr int kHostId = 1;

TEST(NoOpenGL, TheEngineSaysWhyItCannotDrawAndMakesNoView) {
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        GTEST_SKIP() << "needs a display whose OpenGL can be turned off";
    QWidget host;
    host.setProperty("vessaHostId", kHostId);
    host.show();
    py::object engine = py::module_::import("vessa").attr("Interpreter")();
    const auto failure = engine.attr("CheckForDirectX")().cast<std::string>();
    EXPECT_THAT(failure, HasSubstr("no OpenGL context could be made"));
    EXPECT_EQ(engine.attr("imagenavigator")(320, 240, kHostId).cast<std::string>(), failure);
    EXPECT_EQ(host.findChild<QWidget*>(QStringLiteral("ImageNavigator")), nullptr);
    EXPECT_TRUE(engine.attr("Loop")().is_none());
    engine.attr("Close")();
}

} // namespace

int main(int argc, char** argv) {
    const bool display = !qEnvironmentVariableIsEmpty("DISPLAY");
    qputenv("QT_QPA_PLATFORM", display ? "xcb" : "offscreen");
    // Qt's X11 platform without its OpenGL integration: no context can be made.
    qputenv("QT_XCB_GL_INTEGRATION", "none");
    QApplication app(argc, argv);
    py::scoped_interpreter python;
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
