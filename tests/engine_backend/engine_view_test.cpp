// The engine's Python layer with the compiled backend and a real view, as
// the program hosts them: what a click in the picture becomes.
#include <QAccessible>
#include <QApplication>
#include <QImage>
#include <QTemporaryDir>
#include <QTest>
#include <QWidget>
#include <gtest/gtest.h>
#include <pybind11/embed.h>
#include <pybind11/stl.h>

namespace py = pybind11;
using namespace pybind11::literals;

namespace {

constexpr int kWidth = 320;
constexpr int kHeight = 240;
constexpr int kHostId = 1;

QWidget* viewIn(QWidget& host) {
    return host.findChild<QWidget*>(QStringLiteral("ImageNavigator"));
}

class EngineViewTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (QGuiApplication::platformName() != QLatin1String("xcb"))
            GTEST_SKIP() << "drawing needs a display";
        host.setProperty("vessaHostId", kHostId);
        host.resize(kWidth, kHeight);
        host.show();
        engine = py::module_::import("vessa").attr("Interpreter")();
        ASSERT_TRUE(engine.attr("imagenavigator")(kWidth, kHeight, kHostId).is_none());
        const std::string home = qEnvironmentVariable("VESSA47_HOME").toStdString();
        engine.attr("LoadWorld")(home + "Worlds/Default");
        py::object scene = engine.attr("scene");
        py::dict where;
        where["position"] = py::make_tuple(0.0, 1.5, 0.0);
        scene.attr("create")("model", "Box", scene.attr("root"), "values"_a = where);
    }

    void TearDown() override {
        if (engine)
            engine.attr("Close")();
        engine = py::object();
    }

    void run(const std::string& code) {
        EXPECT_TRUE(engine.attr("ExecuteCode")(code, "<Tool>", "exec").is_none());
    }

    py::list misc() {
        engine.attr("flushout")();
        return engine.attr("PollForMiscDifferences")();
    }

    // The names of the objects whose menus the front end was asked for.
    std::vector<std::string> menusAsked() {
        std::vector<std::string> names;
        for (const py::handle record : misc()) {
            if (record[py::int_(0)].cast<std::string>() == "rightmousemenu")
                names.push_back(record[py::int_(2)].cast<std::string>());
        }
        return names;
    }

    QWidget host;
    py::object engine;
};

TEST_F(EngineViewTest, CheckForDirectXAnswersNothingWhereOpenGLWorks) {
    EXPECT_EQ(engine.attr("CheckForDirectX")().cast<std::string>(), "");
}

TEST_F(EngineViewTest, ARightClickOnAnObjectAsksForItsMenu) {
    QWidget* view = viewIn(host);
    ASSERT_NE(view, nullptr);
    misc();
    QTest::mouseClick(view, Qt::RightButton, {}, QPoint(kWidth / 2, kHeight / 2));
    QTest::mouseClick(view, Qt::RightButton, {}, QPoint(kWidth / 2, 3)); // the sky
    engine.attr("Loop")();
    EXPECT_EQ(menusAsked(), std::vector<std::string>{"Box"});
}

TEST_F(EngineViewTest, TheMoveToolKeepsTheObjectUnderThePointer) {
    QWidget* view = viewIn(host);
    ASSERT_NE(view, nullptr);
    run("Vessa._SetRespondToMouse(0)\n");
    const QPoint grab(kWidth / 2, kHeight / 2 + 10);
    const QPoint drop = grab + QPoint(60, 0);
    QTest::mousePress(view, Qt::LeftButton, {}, grab);
    for (int step = 1; step <= 3; ++step)
        QTest::mouseMove(view, grab + QPoint(20 * step, 0));
    QTest::mouseRelease(view, Qt::LeftButton, {}, drop);
    engine.attr("Loop")();
    const auto where =
        engine.attr("scene").attr("find")("Box").attr("GetPosition")().cast<std::vector<double>>();
    EXPECT_GT(where[0], 0.5); // the engine's right is the picture's right
    EXPECT_NEAR(where[1], 1.5, 1e-9);
    misc();
    QTest::mouseClick(view, Qt::RightButton, {}, drop);
    engine.attr("Loop")();
    EXPECT_EQ(menusAsked(), std::vector<std::string>{"Box"});
}

TEST_F(EngineViewTest, KeysInTheViewReachTheWorldsResponses) {
    QWidget* view = viewIn(host);
    ASSERT_NE(view, nullptr);
    // A stop of Tab that a screen reader names, since keys typed there reach the world.
    EXPECT_EQ(QAccessible::queryAccessibleInterface(view)->text(QAccessible::Name),
              QStringLiteral("Camera view"));
    EXPECT_TRUE(view->focusPolicy() & Qt::TabFocus);
    run("def seen(ev):\n    global _keys\n    _keys = _keys + [(ev.key, ev.rawkey)]\n"
        "_keys = []\nCamera._Window.addresponse(KeyDown, seen)\n");
    QTest::keyClick(view, Qt::Key_A);
    QTest::keyClick(view, Qt::Key_Down);
    engine.attr("Loop")();
    const auto keys = engine.attr("scene")
                          .attr("namespace")["_keys"]
                          .cast<std::vector<std::pair<std::string, int>>>();
    EXPECT_EQ(keys, (std::vector<std::pair<std::string, int>>{{"A", 65}, {"Down", 40}}));
}

TEST_F(EngineViewTest, ASavedWorldCarriesAPictureOfItselfThroughItsCamera) {
    QTemporaryDir folder;
    run("Box.SetColor(Red, Duration=0)\nBox.Turn(Left, 1/8, Duration=0)\n");
    engine.attr("AddText")("Hi");
    run("Hi.Move(Right, 2, Duration=0)\nHi.Move(Up, 2.5, Duration=0)\n");
    engine.attr("Loop")();
    ASSERT_TRUE(engine.attr("SaveScene")(folder.path().toStdString()).is_none());
    const QImage picture(folder.filePath(QStringLiteral("world_thumbnail.bmp")));
    ASSERT_EQ(picture.size(), QSize(kWidth, kHeight));
    if (const char* output = std::getenv("VESSA_DRAWING_OUTPUT"))
        picture.save(QString::fromUtf8(output) + QStringLiteral("/thumbnail.png"));
    const QColor sky = picture.pixelColor(kWidth / 2, 2);
    EXPECT_GT(sky.blue(), sky.red() + 40);
    const QColor box = picture.pixelColor(kWidth / 2, kHeight / 2);
    EXPECT_GT(box.red(), 2 * box.green());
}

} // namespace

int main(int argc, char** argv) {
    const bool display = !qEnvironmentVariableIsEmpty("DISPLAY");
    qputenv("QT_QPA_PLATFORM", display ? "xcb" : "offscreen");
    QApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);
    py::scoped_interpreter python;
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
