// Entry of the drawing tests: a real display (Xvfb in CI) with Mesa's
// OpenGL. Without one, the tests list themselves and skip.
#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    const bool display = !qEnvironmentVariableIsEmpty("DISPLAY");
    qputenv("QT_QPA_PLATFORM", display ? "xcb" : "offscreen");
    // The camera view moves between windows, as in the program; with
    // VESSA_OWN_CONTEXTS set, each widget keeps a context of its own, which Qt
    // makes anew when the widget moves to another window.
    if (qEnvironmentVariableIsEmpty("VESSA_OWN_CONTEXTS"))
        QApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
