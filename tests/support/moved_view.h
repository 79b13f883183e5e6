#pragma once

#include "support/window_wait.h"

#include <QColor>
#include <QImage>
#include <QOpenGLWidget>
#include <QTest>
#include <gtest/gtest.h>

#include <cstdlib>

namespace vessa::testing {

// The frame an OpenGL view draws after its window is put into another
// top-level window. Where the program does not share contexts between
// widgets, Qt makes the view's context anew for the other window, and the view
// must draw in it as before. The other window must outlive the moved one.
inline QImage frameInAnotherWindow(QWidget& window, QOpenGLWidget& view, QWidget& other) {
    const QSize viewSize = view.size();
    window.setParent(&other);
    window.move(0, 0);
    window.show();
    other.show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(&other, kWindowWaitMs));
    // A window's margins are not a child's: the view keeps its size.
    window.resize(window.size() + viewSize - view.size());
    other.resize(window.size());
    EXPECT_TRUE(QTest::qWaitFor([&] { return view.size() == viewSize; }, kWindowWaitMs));
    return view.grabFramebuffer();
}

// How many pixels differ between two frames of the same size by more than a
// little in any channel; every pixel when the sizes differ.
inline int pixelsApart(const QImage& a, const QImage& b) {
    if (a.size() != b.size())
        return a.width() * a.height();
    int apart = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QColor p = a.pixelColor(x, y), q = b.pixelColor(x, y);
            apart += std::abs(p.red() - q.red()) > 8 || std::abs(p.green() - q.green()) > 8 ||
                     std::abs(p.blue() - q.blue()) > 8;
        }
    }
    return apart;
}

} // namespace vessa::testing
