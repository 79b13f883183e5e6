#pragma once

// A camera view of kWidth x kHeight on the default world (see
// small_world.h), drawn by Mesa under Xvfb; without a display the tests skip.
// Frames are also written to the folder VESSA_DRAWING_OUTPUT names, to be looked at.
#include "engine_backend/small_world.h"
#include "facade/backend.h"
#include "view/view_widget.h"

#include <QGuiApplication>
#include <QImage>
#include <QWidget>
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>

namespace vessa::core::drawing {

constexpr int kWidth = 320;
constexpr int kHeight = 240;
constexpr long long kHostId = 41;

class ViewTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (QGuiApplication::platformName() != QLatin1String("xcb"))
            GTEST_SKIP() << "drawing needs a display";
        host.setProperty("vessaHostId", kHostId);
        host.resize(kWidth, kHeight);
        host.show();
        ASSERT_EQ(backend.view().open(kWidth, kHeight, kHostId), "");
        small_world::addDefaultWorld(backend);
    }

    void add(int id, const char* kind, const NodeValues& v, std::optional<int> parent) {
        small_world::add(backend, id, kind, v, parent);
    }

    QImage frame() {
        QImage image = backend.view().widget()->grabFramebuffer();
        if (const char* folder = std::getenv("VESSA_DRAWING_OUTPUT")) {
            const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
            image.save(QString::fromUtf8(folder) + QLatin1Char('/') + test->name() +
                       QString::number(++frames_) + QStringLiteral(".png"));
        }
        return image;
    }

    QWidget host;
    Backend backend;

private:
    int frames_ = 0;
};

} // namespace vessa::core::drawing
