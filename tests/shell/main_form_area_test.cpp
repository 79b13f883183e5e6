// The laid-out main window under the mouse: its dividers dragged, and its picture
// buttons and tabs answering the pointer with their pictures.
#include "main_form_harness.h"

#include "controls/picture_button.h"
#include "controls/twips.h"
#include "shell/main_form_area.h"

#include <QScreen>
#include <QSignalSpy>
#include <QTabBar>
#include <QTest>
#include <gtest/gtest.h>

using namespace vessa;
using vessa::testing::MainFormHarness;

namespace {

struct Window : MainFormHarness {
    MainFormArea& area = form->area();

    Window() {
        form->resize(1280, 800);
        form->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(form.get()));
    }

    QWidget* control(const char* name) const {
        return form->findChild<QWidget*>(QString::fromLatin1(name));
    }
};

// A drag on a divider's bar, its points kept in the window's area: the bar moves under
// the pointer, and each event is told where the pointer is on the bar as it stands.
struct Drag {
    QWidget* bar;
    QPoint start = bar->geometry().center();

    QPoint onBar(QPoint by) const { return bar->mapFrom(bar->parentWidget(), start + by); }
    void press(Qt::MouseButton button = Qt::LeftButton, QPoint by = {}) const {
        QTest::mousePress(bar, button, {}, onBar(by));
    }
    void moveBy(QPoint by) const {
        QTest::mouseMove(bar, onBar(by / 2));
        QTest::mouseMove(bar, onBar(by));
    }
    void release(Qt::MouseButton button, QPoint by) const {
        QTest::mouseRelease(bar, button, {}, onBar(by));
    }
};

double share(int first, int second) {
    return double(first) / (first + second);
}

} // namespace

TEST(Dividers, ALeftDragMovesTheBarAndTheNeighboursFollowWhenItEnds) {
    Window w;
    QWidget* bar = w.control("SplitterV");
    QWidget* objects = w.control("ObjectTree");
    const int before = objects->width();
    const double share = w.area.shares().objectTree;
    const Drag drag{bar};
    drag.press();
    drag.moveBy({90, 0});
    EXPECT_EQ(bar->geometry().center(), drag.start + QPoint(90, 0)) << "the bar follows";
    EXPECT_EQ(objects->width(), before) << "the panes wait for the end of the drag";
    drag.release(Qt::LeftButton, {90, 0});
    EXPECT_NEAR(objects->width(), before + 90, 2);
    EXPECT_GT(w.area.shares().objectTree, share);
    EXPECT_EQ(bar->geometry().left(), objects->geometry().right() + 1);
}

TEST(Dividers, ARightPressDuringALeftDragEndsItThere) {
    Window w;
    QWidget* bar = w.control("SplitterH1");
    QWidget* output = w.control("OutputText");
    const int before = output->height();
    const Drag drag{bar};
    drag.press();
    drag.moveBy({0, -60});
    drag.press(Qt::RightButton, {0, -60});
    EXPECT_NEAR(output->height(), before + 60, 2) << "the right press ended the drag";
    const LayoutShares ended = w.area.shares();
    // What follows is no drag: the bar stays, and the left button's release does nothing.
    const QRect barEnded = bar->geometry();
    drag.moveBy({0, -140});
    drag.release(Qt::RightButton, {0, -140});
    drag.release(Qt::LeftButton, {0, -140});
    EXPECT_EQ(bar->geometry(), barEnded);
    EXPECT_EQ(w.area.shares(), ended);
    EXPECT_NEAR(output->height(), before + 60, 2);
}

TEST(Dividers, ADragBeyondTheBoundStopsThereAndTheSharesComeBackAfterARestart) {
    Window w;
    QWidget* bar = w.control("SplitterH1");
    const Drag drag{bar};
    drag.press();
    drag.moveBy({0, -2000});
    drag.release(Qt::LeftButton, {0, -2000});
    EXPECT_DOUBLE_EQ(w.area.shares().outputText, 0.5) << "the output takes half at most";
    // The shares are the settings' (kept at the end, given back at the start).
    LayoutShares kept = w.area.shares();
    kept.soundTree = 0.6;
    w.area.setShares(kept);
    QWidget* sounds = w.control("SoundTree");
    EXPECT_NEAR(share(sounds->height(), w.control("ObjectTree")->height()), 0.6, 0.01);
}

TEST(PictureButtons, HoverAndPressShowTheirPicturesAndACommandNotBuiltIsOff) {
    Window w;
    auto* add = qobject_cast<PictureButton*>(w.control("AddObjectButton"));
    ASSERT_NE(add, nullptr);
    EXPECT_EQ(add->shownState(), QStringLiteral("Up"));
    const QImage atRest = add->grab().toImage();
    QTest::mouseMove(add, add->rect().center());
    EXPECT_EQ(add->shownState(), QStringLiteral("High"));
    EXPECT_NE(add->grab().toImage(), atRest) << "the hover picture is drawn";
    QSignalSpy clicks(add, &QToolButton::clicked);
    QTest::mousePress(add, Qt::LeftButton, {}, add->rect().center());
    EXPECT_EQ(add->shownState(), QStringLiteral("Down"));
    // Released away from it: no click, and once the pointer has left, the picture at rest.
    QTest::mouseRelease(add, Qt::LeftButton, {}, QPoint(-20, -20));
    EXPECT_EQ(clicks.count(), 0);
    EXPECT_NE(add->shownState(), QStringLiteral("Down"));
    QTest::mouseMove(w.control("OutputText"));
    EXPECT_EQ(add->shownState(), QStringLiteral("Up"));

    for (const char* notYet : {"MakeObjectButton", "HelpButton", "TeachMe2Button"}) {
        auto* button = qobject_cast<PictureButton*>(w.control(notYet));
        ASSERT_NE(button, nullptr) << notYet;
        EXPECT_FALSE(button->isEnabled()) << notYet;
        EXPECT_EQ(button->shownState(), QStringLiteral("Disable")) << notYet;
    }
    // Each picture comes at twice the pixels for screens of twice the density.
    EXPECT_EQ(buttonPicture(QStringLiteral("LightStop"), QStringLiteral("High"))
                  .pixmap(QSize(32, 32), 2.0)
                  .width(),
              64);
}

TEST(PictureButtons, TheTabsShowTheChosenOnePressedAndTheOneUnderThePointerLit) {
    Window w;
    auto* tabs = qobject_cast<QTabBar*>(w.control("SwitchTab"));
    auto* pictures = tabs->findChild<TabPictures*>();
    ASSERT_NE(pictures, nullptr);
    QTest::mouseMove(tabs, tabs->tabRect(1).center());
    EXPECT_EQ(pictures->shownState(0), QStringLiteral("Down"));
    EXPECT_EQ(pictures->shownState(1), QStringLiteral("High"));
    EXPECT_EQ(pictures->shownState(2), QStringLiteral("Up"));
    QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(1).center());
    EXPECT_EQ(pictures->shownState(0), QStringLiteral("Up"));
    EXPECT_EQ(pictures->shownState(1), QStringLiteral("Down"));
    // The animations' page: its own buttons in their places, the opening scene's gone.
    EXPECT_TRUE(w.control("MakeAnimation")->isVisible());
    EXPECT_FALSE(w.control("OpeningSceneFrame")->isVisible());
    const QRect script = w.control("TreeView1")->geometry();
    EXPECT_TRUE(w.area.rect().contains(script));
    EXPECT_FALSE(script.intersects(w.control("ConstructTree")->geometry()));
}

TEST(HelpWindow, ComesBackWhereTheUserLeftIt) {
    Window w;
    QWidget help;
    help.setObjectName(QStringLiteral("HelpForm"));
    help.resize(100, 100);
    w.form->keepHelpForm(help);
    help.show();
    const QPoint first = help.pos();
    EXPECT_EQ(first,
              QPoint(qRound(8925 / twipsPerPixel(&help)), qRound(6075 / twipsPerPixel(&help))))
        << "the first time, where the settings say";
    help.move(first + QPoint(-200, -150));
    help.hide();
    help.show();
    EXPECT_EQ(help.pos(), first + QPoint(-200, -150));
}

TEST(HelpWindow, ComesBackWhollyOnTheScreen) {
    Window w;
    QWidget help;
    help.setObjectName(QStringLiteral("HelpForm"));
    const QRect screen = help.screen()->availableGeometry();
    help.resize(screen.width() / 2, screen.height() / 2);
    w.form->keepHelpForm(help);
    help.show();
    help.move(screen.right() - 10, screen.bottom() - 10);
    help.hide();
    help.show();
    EXPECT_TRUE(screen.contains(help.frameGeometry())) << "at " << help.x() << ", " << help.y();
}
