// The laid-out main window under the mouse: its dividers dragged, and its picture
// buttons and tabs answering the pointer with their pictures.
#include "main_form_harness.h"

#include "controls/picture_button.h"
#include "shell/main_form_area.h"

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

// The pointer on a widget's middle, pressed, moved by `by` and left there.
void pressAndMove(QWidget* widget, QPoint by) {
    const QPoint middle = widget->rect().center();
    QTest::mouseMove(widget, middle);
    QTest::mousePress(widget, Qt::LeftButton, {}, middle);
    QTest::mouseMove(widget, middle + by / 2);
    QTest::mouseMove(widget, middle + by);
}

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
    pressAndMove(bar, {90, 0});
    EXPECT_EQ(objects->width(), before) << "the panes wait for the end of the drag";
    QTest::mouseRelease(bar, Qt::LeftButton, {}, bar->rect().center() + QPoint(90, 0));
    EXPECT_NEAR(objects->width(), before + 90, 2);
    EXPECT_GT(w.area.shares().objectTree, share);
    EXPECT_EQ(bar->geometry().left(), objects->geometry().right() + 1);
}

TEST(Dividers, ARightPressDuringALeftDragEndsItThere) {
    Window w;
    QWidget* bar = w.control("SplitterH1");
    QWidget* output = w.control("OutputText");
    const int before = output->height();
    pressAndMove(bar, {0, -60});
    QTest::mousePress(bar, Qt::RightButton, {}, bar->rect().center() + QPoint(0, -60));
    EXPECT_NEAR(output->height(), before + 60, 2) << "the right press ended the drag";
    const LayoutShares ended = w.area.shares();
    // What follows is no drag: the bar stays, and the left button's release does nothing.
    QTest::mouseMove(bar, bar->rect().center() + QPoint(0, -40));
    QTest::mouseRelease(bar, Qt::RightButton, {}, bar->rect().center() + QPoint(0, -40));
    QTest::mouseRelease(bar, Qt::LeftButton, {}, bar->rect().center() + QPoint(0, -40));
    EXPECT_EQ(w.area.shares(), ended);
    EXPECT_NEAR(output->height(), before + 60, 2);
}

TEST(Dividers, ADragBeyondTheBoundStopsThereAndTheSharesComeBackAfterARestart) {
    Window w;
    QWidget* bar = w.control("SplitterH1");
    pressAndMove(bar, {0, -2000});
    QTest::mouseRelease(bar, Qt::LeftButton, {}, bar->rect().center() + QPoint(0, -2000));
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
    QTest::mousePress(add, Qt::LeftButton, {}, add->rect().center());
    EXPECT_EQ(add->shownState(), QStringLiteral("Down"));
    // Released away from it: no click, and the picture goes back to rest.
    QTest::mouseMove(w.control("OutputText"));
    QTest::mouseRelease(w.control("OutputText"), Qt::LeftButton);
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
