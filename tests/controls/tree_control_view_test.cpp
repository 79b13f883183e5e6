#include "controls/list_control_view.h"
#include "controls/tree_control_view.h"

#include <QApplication>
#include <QImage>
#include <QLineEdit>
#include <QPainter>
#include <QStyleHints>
#include <QTest>

#include <gtest/gtest.h>

using namespace vessa;

namespace {

QIcon Square(const QColor& color) {
    QPixmap pixmap(16, 16);
    pixmap.fill(color);
    return QIcon(pixmap);
}

// The first column from the left, from x on, in which a pixel of the row is dark.
int FirstInkColumn(const QImage& image, int fromX, int top, int bottom) {
    for (int x = fromX; x < image.width(); ++x)
        for (int y = top; y < bottom; ++y)
            if (qGray(image.pixel(x, y)) < 100)
                return x;
    return -1;
}

struct TreeControlViewTest : ::testing::Test {

    TreeControl tree;
    TreeControlView view{tree};
    TreeNode* root = tree.AddRoot("walk", "Walk = DoInOrder");
    TreeNode* line = tree.Add(root, Relation::Child, "", "Camera.Move(Forward, 1, more...)");

    void SetUp() override {
        view.resize(400, 200);
        view.show();
        QApplication::processEvents();
    }
};

// The mouse as the platform delivers it to a tree whose handlers select the node pressed
// and, on a press of the node already selected, ask to edit its label.
struct TreeMouse : TreeControlViewTest {
    static constexpr int kDoubleClickMs = 100;
    int downs = 0, moves = 0, doubleClicks = 0;
    const int oldInterval = QGuiApplication::styleHints()->mouseDoubleClickInterval();

    void SetUp() override {
        QGuiApplication::styleHints()->setMouseDoubleClickInterval(kDoubleClickMs);
        TreeControlViewTest::SetUp();
        QObject::connect(&view, &TreeControlView::MouseDown,
                         [this](Qt::MouseButton, const QPoint& point) {
                             ++downs;
                             TreeNode* node = view.HitTest(point);
                             if (node && node == tree.SelectedItem())
                                 tree.StartLabelEdit(node);
                             tree.SetSelectedItem(node);
                         });
        QObject::connect(&view, &TreeControlView::MouseMove, [this] { ++moves; });
        QObject::connect(&view, &TreeControlView::DblClick, [this] { ++doubleClicks; });
    }
    void TearDown() override {
        QGuiApplication::styleHints()->setMouseDoubleClickInterval(oldInterval);
    }

    // Through the window, so that the platform's own double-click rules apply.
    QWindow* Window() { return view.window()->windowHandle(); }
    QPoint InWindow(const QPoint& point) { return view.viewport()->mapTo(view.window(), point); }
    QPoint At(const TreeNode* node) { return view.NodeRect(node).center(); }
    void Click(const TreeNode* node) {
        QTest::mouseClick(Window(), Qt::LeftButton, {}, InWindow(At(node)));
    }
    void DoubleClick(const TreeNode* node) {
        QTest::mouseDClick(Window(), Qt::LeftButton, {}, InWindow(At(node)));
    }
    bool Editing() {
        for (const QLineEdit* editor : view.findChildren<QLineEdit*>())
            if (editor->isVisible())
                return true;
        return false;
    }
    // Long enough for an edit that waits for the double-click time to have opened.
    bool EditingAfterTheDoubleClickTime() {
        QTest::qWait(3 * kDoubleClickMs);
        return Editing();
    }
};

} // namespace

TEST_F(TreeControlViewTest, ExpansionAndSelectionFollowTheControlBothWays) {
    tree.SetExpanded(root, true);
    EXPECT_TRUE(view.isExpanded(view.ItemModel().IndexOf(root)));
    view.collapse(view.ItemModel().IndexOf(root));
    EXPECT_FALSE(root->Expanded());

    tree.SetSelectedItem(root);
    EXPECT_EQ(view.currentIndex(), view.ItemModel().IndexOf(root));
    tree.SetExpanded(root, true);
    view.setCurrentIndex(view.ItemModel().IndexOf(line));
    EXPECT_EQ(tree.SelectedItem(), line);

    // Removing the selected node leaves nothing selected, not a neighbour Qt picked.
    tree.Remove(line->Index());
    EXPECT_EQ(tree.SelectedItem(), nullptr);
}

TEST_F(TreeControlViewTest, NodeRectStartsWhereTheTextIsDrawnAndHitTestFindsTheRow) {
    view.ItemModel().SetImageList({QIcon(), Square(Qt::white)});
    tree.SetImage(line, 1);
    tree.SetExpanded(root, true);
    QApplication::processEvents();

    const QRect rect = view.NodeRect(line);
    ASSERT_FALSE(rect.isEmpty());
    const QImage image = view.viewport()->grab().toImage();
    const int item = view.visualRect(view.ItemModel().IndexOf(line)).left();
    // "C" has ink from its first pixel column or the next.
    const int ink = FirstInkColumn(image, item, rect.top(), rect.bottom());
    EXPECT_NEAR(ink, rect.left(), 2);

    EXPECT_EQ(view.HitTest(rect.center()), line);
    // Left of the icon (the arrows) and well right of the longest text is blank space.
    EXPECT_EQ(view.HitTest(QPoint(2, rect.center().y())), nullptr);
    EXPECT_EQ(view.HitTest(QPoint(rect.right() + 100, rect.center().y())), nullptr);
    EXPECT_EQ(view.HitTest(QPoint(rect.left(), 190)), nullptr);
    EXPECT_EQ(view.ItemHeight(), view.visualRect(view.ItemModel().IndexOf(line)).height());
}

TEST_F(TreeControlViewTest, AListViewShowsColumnsAndFollowsTheSelectedRow) {
    ListControl list({"", "When", "Happens To", "Do Animation"});
    ListControlView report(list);
    ListRow* row = list.Add(-1, "Key0");
    list.SetSubItem(row, 1, "World Start");
    list.Add(-1, "Key1");
    EXPECT_EQ(report.model()->headerData(1, Qt::Horizontal).toString(), "When");
    EXPECT_EQ(report.model()->index(0, 1).data().toString(), "World Start");
    list.SetSelectedItem(row);
    EXPECT_EQ(report.currentIndex().row(), 0);
    report.setCurrentIndex(report.model()->index(1, 0));
    EXPECT_EQ(list.SelectedItem(), list.Row(1));
}

TEST_F(TreeMouse, ADoubleClickIsOnePressAndOneDoubleClickAndOpensTheNode) {
    tree.SetSelectedItem(root);
    DoubleClick(root);
    EXPECT_EQ(downs, 1);
    EXPECT_EQ(doubleClicks, 1);
    EXPECT_TRUE(root->Expanded());
    // The first press was on the selected node, but a double click is no second click.
    EXPECT_FALSE(EditingAfterTheDoubleClickTime());
    DoubleClick(root);
    EXPECT_FALSE(root->Expanded());
}

TEST_F(TreeMouse, ASlowSecondClickOnTheSelectedNodeEditsItsLabel) {
    tree.SetExpanded(root, true);
    Click(line);
    EXPECT_EQ(tree.SelectedItem(), line);
    EXPECT_FALSE(EditingAfterTheDoubleClickTime());
    Click(line);
    EXPECT_FALSE(Editing()); // not yet: it might be the first of a double click
    QTRY_VERIFY(Editing());
}

TEST_F(TreeMouse, APressLeavesTheSelectionToTheHandlers) {
    tree.SetExpanded(root, true);
    tree.SetSelectedItem(root);
    QObject::disconnect(&view, &TreeControlView::MouseDown, nullptr, nullptr);
    Click(line);
    EXPECT_EQ(tree.SelectedItem(), root);
    EXPECT_EQ(view.currentIndex(), view.ItemModel().IndexOf(root));
}

TEST_F(TreeMouse, OnlyAMoveOutOfTheClicksSquareIsADragAndADragEditsNothing) {
    tree.SetExpanded(root, true);
    tree.SetSelectedItem(line);
    QTest::mousePress(Window(), Qt::LeftButton, {}, InWindow(At(line)));
    QTest::mouseMove(Window(), InWindow(At(line) + QPoint(1, 0)));
    EXPECT_EQ(moves, 0);
    QTest::mouseMove(Window(), InWindow(At(line) + QPoint(QApplication::startDragDistance(), 0)));
    EXPECT_EQ(moves, 1);
    QTest::mouseRelease(Window(), Qt::LeftButton, {}, InWindow(At(line)));
    EXPECT_FALSE(EditingAfterTheDoubleClickTime());
}
