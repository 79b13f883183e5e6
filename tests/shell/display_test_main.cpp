// Entry of widget tests that draw: on the display when there is one, offscreen otherwise.
#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    const bool display = !qEnvironmentVariableIsEmpty("DISPLAY");
    qputenv("QT_QPA_PLATFORM", display ? "xcb" : "offscreen");
    QApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
