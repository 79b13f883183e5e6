// The sketch tool's window, driven as a user drives it: strokes drawn with the mouse,
// colours and buttons clicked, keys pressed; its answer read from the clipboard and
// its object file read by the engine's own reader.

#include "export/sketch_session.h"
#include "export/sketch_view.h"
#include "export/sketch_window.h"

#include "reading/description.h"
#include "reading/reader_process.h"
#include "support/moved_view.h"

#include <QAccessible>
#include <QApplication>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QPushButton>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

using namespace vessa;

namespace {

// The window draws with OpenGL: on a display only.
class SketchWindowTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (QGuiApplication::platformName() != QStringLiteral("xcb"))
            GTEST_SKIP() << "needs a display";
    }
};

struct Window {
    SketchWindow window;
    SketchView& view = window.view();
    Window() {
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }
    template <typename T = QPushButton> T* control(const char* name) {
        return window.findChild<T*>(QString::fromLatin1(name));
    }
};

// One stroke with the left button through the points, in the view's pixels.
void draw(QWidget& view, const QList<QPoint>& points) {
    QTest::mousePress(&view, Qt::LeftButton, Qt::NoModifier, points.front());
    for (const QPoint& p : points.mid(1))
        QTest::mouseMove(&view, p);
    QTest::mouseRelease(&view, Qt::LeftButton, Qt::NoModifier, points.back());
}

QList<QPoint> circle(QPoint middle, int radius, int count = 120) {
    QList<QPoint> points;
    for (int i = 0; i <= count; ++i) {
        const double a = 2 * std::numbers::pi * i / count;
        points << middle + QPoint(static_cast<int>(std::lround(radius * std::cos(a))),
                                  static_cast<int>(std::lround(radius * std::sin(a))));
    }
    return points;
}

QString spokenName(QWidget* widget) {
    QAccessibleInterface* face = QAccessible::queryAccessibleInterface(widget);
    return face ? face->text(QAccessible::Name) : QString();
}

} // namespace

TEST_F(SketchWindowTest, AStrokeMakesAnObjectThatSaveAndExitWritesAndAnnounces) {
    Window w;
    QSignalSpy finished(&w.window, &SketchWindow::finished);
    QGuiApplication::clipboard()->clear();
    EXPECT_FALSE(w.control("SketchSaveButton")->isEnabled()) << "nothing to save yet";

    draw(w.view, circle({250, 200}, 90));
    ASSERT_TRUE(w.view.showsObject());
    EXPECT_TRUE(w.control("SketchSaveButton")->isEnabled());

    // Blue, then Save and Exit.
    QTest::mouseClick(w.control<QToolButton>("SketchColourBlue"), Qt::LeftButton);
    QTest::mouseClick(w.control("SketchSaveButton"), Qt::LeftButton);
    ASSERT_EQ(finished.count(), 1);
    const QString answer = QGuiApplication::clipboard()->text();
    ASSERT_TRUE(answer.startsWith(QStringLiteral("TEDDY_SAVE_AND_EXIT "))) << answer.toStdString();
    EXPECT_EQ(finished.front().front().toString(), answer);
    const QString path = answer.mid(20);
    EXPECT_TRUE(isSketchObjectPath(path)) << path.toStdString();
    EXPECT_FALSE(w.window.isVisible());

    // The engine's reader finds one part with the whole surface in blue.
    using namespace vessa::core;
    const auto reply = ReaderProcess::shared().read(FileKind::Model, path.toStdString());
    ASSERT_EQ(reply.outcome, Outcome::Answered);
    const auto model = decodeModel(reply.answer);
    ASSERT_TRUE(model.has_value());
    ASSERT_EQ(model->parts.size(), 1u);
    ASSERT_EQ(model->parts[0].meshes.size(), 1u);
    const MeshDescription& mesh = model->parts[0].meshes[0];
    EXPECT_EQ(mesh.triangles.size(), w.window.session().current()->mesh.triangles.size());
    EXPECT_TRUE(mesh.look.hasMaterial);
    EXPECT_LT(mesh.look.diffuse[0], mesh.look.diffuse[2]) << "blue, not the first brown";
    QDir(QFileInfo(path).absolutePath()).removeRecursively();

    // A second click does not answer twice.
    QTest::mouseClick(w.control("SketchSaveButton"), Qt::LeftButton);
    EXPECT_EQ(finished.count(), 1);
}

TEST_F(SketchWindowTest, TheObjectIsDrawnAsBeforeInAnotherWindow) {
    QWidget other; // outlives the window put into it
    Window w;
    draw(w.view, circle({250, 200}, 90));
    ASSERT_TRUE(w.view.showsObject());
    const QImage before = w.view.grabFramebuffer();
    const QColor paper = before.pixelColor(5, 5);
    ASSERT_NE(before.pixelColor(250, 200), paper) << "the object stands where it was drawn";

    const QImage after = vessa::testing::frameInAnotherWindow(w.window, w.view, other);
    EXPECT_NE(after.pixelColor(250, 200), paper);
    EXPECT_LT(vessa::testing::pixelsApart(before, after), before.width() * before.height() / 100);
}

TEST_F(SketchWindowTest, ClosingTheWindowOrDiscardAnnouncesThatNothingWasMade) {
    {
        Window w;
        draw(w.view, circle({200, 200}, 60));
        w.window.close();
        EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("TEDDY_DISCARD_AND_EXIT"));
    }
    Window w;
    QGuiApplication::clipboard()->clear();
    w.control("SketchDiscardButton")->setFocus();
    QTest::keyClick(w.control("SketchDiscardButton"), Qt::Key_Space);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("TEDDY_DISCARD_AND_EXIT"));
}

TEST_F(SketchWindowTest, BadStrokesAreToldAndUndoGoesBackAStroke) {
    Window w;
    // A dot, then a stroke that goes out of the window and back: the dot is told off,
    // the other cut to the window's edge.
    draw(w.view, {{100, 100}, {102, 101}, {101, 103}});
    EXPECT_FALSE(w.view.showsObject());
    EXPECT_FALSE(w.window.message().isEmpty());
    draw(w.view, {{100, 100}, {300, -500}, {500, 100}, {400, 250}, {150, 250}});
    ASSERT_TRUE(w.view.showsObject());
    for (size_t v = 0; v < w.window.session().current()->mesh.vertexCount(); ++v)
        EXPECT_LE(w.window.session().current()->mesh.positions[3 * v + 1], 1e-4);
    const std::vector<float> first = w.window.session().current()->mesh.positions;

    // A figure of eight keeps its bigger loop and says so.
    ASSERT_GE(w.view.height(), 450);
    QList<QPoint> eight;
    for (int i = 0; i <= 160; ++i) {
        const double t = 2 * std::numbers::pi * i / 160;
        const double size = std::cos(t) > 0 ? 150 : 75;
        eight << QPoint(static_cast<int>(300 + size * std::cos(t)),
                        static_cast<int>(370 + size * std::sin(t) * std::cos(t)));
    }
    draw(w.view, eight);
    EXPECT_TRUE(w.window.message().contains(QStringLiteral("crossed itself")));
    EXPECT_NE(w.window.session().current()->mesh.positions, first);

    // A button's shortcut clicks it a moment later, as it shows the press.
    QTest::keyClick(w.window.windowHandle(), Qt::Key_Z, Qt::ControlModifier);
    EXPECT_TRUE(
        QTest::qWaitFor([&] { return w.window.session().current()->mesh.positions == first; }));
    QTest::mouseClick(w.control("SketchUndoButton"), Qt::LeftButton);
    EXPECT_FALSE(w.view.showsObject());
    EXPECT_FALSE(w.control("SketchUndoButton")->isEnabled());
    EXPECT_FALSE(w.control("SketchSaveButton")->isEnabled());
}

TEST_F(SketchWindowTest, DraggingTheObjectOrTheArrowKeysTurnItWithoutDrawing) {
    Window w;
    draw(w.view, circle({250, 200}, 90));
    const SketchSession::Shape* shape = w.window.session().current();
    ASSERT_TRUE(w.view.objectAt({250, 200}));
    EXPECT_FALSE(w.view.objectAt({20, 20}));
    draw(w.view, {{250, 200}, {280, 200}, {320, 210}});
    EXPECT_EQ(w.window.session().current(), shape) << "a drag on the object draws nothing";
    EXPECT_FALSE(w.view.turn().zeroRotation());

    QTest::keyClick(&w.view, Qt::Key_Home);
    EXPECT_TRUE(w.view.turn().zeroRotation());
    QTest::keyClick(&w.view, Qt::Key_Left);
    EXPECT_FALSE(w.view.turn().zeroRotation());
}

TEST_F(SketchWindowTest, EveryControlHasANameAndTheKeyboardReachesThemAll) {
    Window w;
    const auto tabs = [&] {
        QStringList order;
        QWidget* at = &w.view;
        at->setFocus();
        do {
            order << spokenName(at);
            QTest::keyClick(at, Qt::Key_Tab);
            at = QApplication::focusWidget();
        } while (at && at != &w.view && order.size() < 20);
        return order;
    };
    // The palette is one stop, at the colour chosen; Undo and Save are none until
    // there is something to undo and save.
    EXPECT_EQ(tabs(), (QStringList{"Drawing area", "Brown", "Discard and Exit"}));
    draw(w.view, circle({250, 200}, 90));
    EXPECT_EQ(tabs(), (QStringList{"Drawing area", "Brown", "Undo the last outline",
                                   "Discard and Exit", "Save and Exit"}));

    // The arrow keys choose among the colours.
    auto* brown = w.control<QToolButton>("SketchColourBrown");
    brown->setFocus();
    QTest::keyClick(brown, Qt::Key_Right);
    EXPECT_EQ(spokenName(QApplication::focusWidget()), QStringLiteral("Red"));
    EXPECT_EQ(w.window.session().colour(),
              w.control<QToolButton>("SketchColourRed")->property("colour").value<QColor>());
}

TEST(SketchFiles, OnlyTheToolsOwnObjectFilesCount) {
    const QString path = newSketchObjectPath();
    ASSERT_FALSE(path.isEmpty());
    EXPECT_FALSE(isSketchObjectPath(path)) << "not written yet";
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    EXPECT_TRUE(isSketchObjectPath(path));
    const QString another = newSketchObjectPath();
    EXPECT_NE(QFileInfo(another).absolutePath(), QFileInfo(path).absolutePath())
        << "each object a folder of its own";
    QDir(QFileInfo(another).absolutePath()).removeRecursively();

    QTemporaryDir elsewhere;
    EXPECT_FALSE(isSketchObjectPath(elsewhere.filePath(QStringLiteral("Sketch.mdl"))));
    QFile::link(path, elsewhere.filePath(QStringLiteral("Link.mdl")));
    EXPECT_FALSE(isSketchObjectPath(elsewhere.filePath(QStringLiteral("Link.mdl"))));
    EXPECT_FALSE(isSketchObjectPath(QStringLiteral("/etc/passwd")));
    QDir(QFileInfo(path).absolutePath()).removeRecursively();
}
