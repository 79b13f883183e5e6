// The mouse tools under the camera view, with the real engine drawing in the main window:
// a click on a tool, then a drag on an object in the view, moves the object as the tool
// says. Needs a display (Xvfb, started with -noreset as the suite does); without one there
// is no view to drag in.
#include "scene/mouse_tools.h"
#include "shell/view_hosts.h"
#include "support/window_wait.h"
#include "window_on_the_engine.h"

#include <QApplication>
#include <QTest>
#include <QTextEdit>
#include <QToolButton>
#include <gtest/gtest.h>

using namespace vessa;
using namespace vessa::testing;

namespace {

struct SceneOnScreen : ::testing::Test, EngineAndWorld {
    QWidget* view = nullptr;
    QPoint cubeOnScreen; // in the view

    void SetUp() override {
        if (QGuiApplication::platformName() != QLatin1String("xcb"))
            GTEST_SKIP() << "the camera view needs a display";
        makeWindow();
        form->resize(900, 700);
        form->show();
        ASSERT_TRUE(QTest::qWaitForWindowExposed(form.get(), kWindowWaitMs));
        const QString home = qEnvironmentVariable("VESSA47_HOME");
        engine.call(QStringLiteral("SetHomeDirectory"), {home});
        engine.call(QStringLiteral("LoadWorld"), {home + QStringLiteral("Worlds/Default")});
        QWidget* frame = form->OpeningSceneFrame();
        engine.call(QStringLiteral("imagenavigator"),
                    {frame->width(), frame->height(), viewHostId(frame)});
        view = frame->findChild<QWidget*>(QStringLiteral("ImageNavigator"));
        ASSERT_NE(view, nullptr);
        // A cube in the middle of the picture, a little above the ground.
        engine.call(QStringLiteral("addobject"),
                    {home + QStringLiteral("Objects/Shapes/Cube.mdl")});
        run(QStringLiteral("Cube.Move(Up, 1, Duration=0)\n"));
        settle();
        cubeOnScreen = {view->width() / 2, view->height() / 2 + 10};
    }

    void TearDown() override {
        if (engine.isSet())
            engine.call(QStringLiteral("Close"));
    }

    void run(const QString& code) {
        EXPECT_EQ(engine.ExecuteCode(code, QStringLiteral("<Tool>")), QVariant())
            << code.toStdString();
    }

    void settle() {
        for (int step = 0; step < 50; ++step) {
            engine.call(QStringLiteral("Loop"));
            QApplication::processEvents();
            if (engine.call(QStringLiteral("GetLoopWait")).toInt() < 0)
                break;
        }
    }

    void choose(MouseTool tool) {
        auto* panel = form->findChild<MouseToolsPanel*>();
        QTest::mouseClick(panel->option(tool), Qt::LeftButton);
    }

    // A drag from where the cube is seen, by `by` pixels in three steps.
    void drag(QPoint by) {
        const QPoint grab = cubeOnScreen;
        QTest::mousePress(view, Qt::LeftButton, {}, grab);
        for (int step = 1; step <= 3; ++step)
            QTest::mouseMove(view, grab + by * step / 3);
        QTest::mouseRelease(view, Qt::LeftButton, {}, grab + by);
        settle();
    }

    // The numbers the engine prints for a Python expression that makes a sequence.
    std::vector<double> numbers(const QString& expression) {
        form->OutputText()->clear();
        run(QStringLiteral("print(' '.join('%.4f' % v for v in ") + expression +
            QStringLiteral("))"));
        engine.call(QStringLiteral("flushout"));
        world.HandleDifferences(engine.call(QStringLiteral("PollForMiscDifferences")));
        std::vector<double> values;
        for (const QString& part :
             form->OutputText()->toPlainText().trimmed().split(QLatin1Char(' ')))
            values.push_back(part.toDouble());
        return values;
    }
};

} // namespace

TEST_F(SceneOnScreen, MoveSlidesTheCubeAlongTheGroundAndRaiseLiftsItStraightUp) {
    choose(MouseTool::Raise);
    choose(MouseTool::Move);
    drag({60, 0});
    std::vector<double> where = numbers(QStringLiteral("Cube.GetPosition()"));
    ASSERT_EQ(where.size(), 3u);
    EXPECT_GT(where[0], 0.3); // to the picture's right
    EXPECT_NEAR(where[1], 1.0, 1e-3);

    choose(MouseTool::Raise);
    const double x = where[0];
    cubeOnScreen += QPoint(60, 0); // the move keeps the cube under the pointer
    drag({0, -40});
    where = numbers(QStringLiteral("Cube.GetPosition()"));
    EXPECT_NEAR(where[0], x, 1e-3);
    EXPECT_GT(where[1], 1.2); // up the screen is up in the world
    EXPECT_FALSE(form->findChild<MouseToolsPanel*>()->option(MouseTool::Move)->isChecked());
}

TEST_F(SceneOnScreen, TurnTurnsTheCubeInPlaceAndAClickOnTheChosenToolKeepsIt) {
    choose(MouseTool::TurnLR);
    choose(MouseTool::TurnLR);
    EXPECT_TRUE(form->findChild<MouseToolsPanel*>()->option(MouseTool::TurnLR)->isChecked());
    const std::vector<double> place = numbers(QStringLiteral("Cube.GetPosition()"));
    const std::vector<double> turn = numbers(QStringLiteral("Cube.orientation"));
    drag({50, 0});
    EXPECT_EQ(numbers(QStringLiteral("Cube.GetPosition()")), place);
    EXPECT_NE(numbers(QStringLiteral("Cube.orientation")), turn);
}
