#include "controls/list_control_view.h"
#include "controls/tree_control_view.h"

#include <QApplication>
#include <QImage>
#include <QPainter>
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

TEST_F(TreeControlViewTest, APressLeavesTheSelectionToItsHandlersAndADragStartsOffTheClick) {
    tree.SetExpanded(root, true);
    tree.SetSelectedItem(root);
    int moves = 0;
    QObject::connect(&view, &TreeControlView::MouseMove, [&moves] { ++moves; });
    QWindow* window = view.windowHandle();
    const QPoint at = view.viewport()->mapTo(&view, view.NodeRect(line).center());
    QTest::mousePress(window, Qt::LeftButton, {}, at);
    EXPECT_EQ(tree.SelectedItem(), root);
    QTest::mouseMove(window, at + QPoint(1, 0)); // a hand shaking during a click
    EXPECT_EQ(moves, 0);
    QTest::mouseMove(window, at + QPoint(QApplication::startDragDistance(), 0));
    EXPECT_EQ(moves, 1);
    QTest::mouseRelease(window, Qt::LeftButton, {}, at);
}
