#include "script/script_model.h"
#include "script/script_panel.h"
#include "script_test_support.h"

#include <QAbstractButton>
#include <QAbstractItemView>
#include <QAccessible>
#include <QDropEvent>
#include <QLineEdit>
#include <QMessageBox>
#include <QMimeData>
#include <QScrollBar>
#include <QTest>

#include <gtest/gtest.h>

using namespace vessa;
using vessa::testing::FakeScriptHost;
using Kind = ScriptRequest::Kind;

namespace {

struct Panel : ::testing::Test {

    FakeScriptHost host;
    ScriptModel script{host};
    ScriptPanel panel{script};
    TreeControlView& view = panel.TreeView1View();
    TreeNode* action1 = script.TreeView1().FirstRoot();
    TreeNode* line = nullptr;

    void SetUp() override {
        host.RecordRequestsOf(script);
        line = script.TreeView1().Add(action1, Relation::Child, "",
                                      "Camera.Move(Forward, 1, Duration=2, more...)");
        script.TreeView1().SetExpanded(action1, true);
        panel.resize(500, 400);
        panel.show();
        QApplication::processEvents();
    }

    // The middle of the glyph at offset, as the view draws the node's text.
    QPoint AtCharacter(const TreeNode* node, int offset) {
        const QFontMetrics metrics(view.font());
        const QString& text = node->Text();
        return {view.NodeRect(node).left() + metrics.horizontalAdvance(text.left(offset)) +
                    metrics.horizontalAdvance(text.at(offset)) / 2,
                view.NodeRect(node).center().y()};
    }

    void Click(Qt::MouseButton button, const QPoint& point) {
        QTest::mouseClick(view.viewport(), button, {}, point);
        QApplication::processEvents();
    }

    QAction* MenuRow(const QString& caption) {
        for (QAction* action : panel.OpenMenu()->actions())
            if (action->text() == caption)
                return action;
        return nullptr;
    }
};

} // namespace

TEST_F(Panel, AClickOnAGlyphOfTheTreeReachesWhoRegisteredForThePieceUnderIt) {
    Click(Qt::LeftButton, AtCharacter(line, 14));
    ASSERT_EQ(host.requests.size(), 1u);
    EXPECT_EQ(host.requests[0].What, Kind::StarMenuRow);
    EXPECT_EQ(host.requests[0].Number, 5);
    EXPECT_EQ(host.requests[0].ScreenPoint, view.viewport()->mapToGlobal(AtCharacter(line, 14)));
    Click(Qt::LeftButton, AtCharacter(line, 28));
    EXPECT_EQ(host.requests.back().Number, 17);
    Click(Qt::LeftButton, AtCharacter(line, 8));
    EXPECT_EQ(host.requests.back().What, Kind::ActionMenu);
}

TEST_F(Panel, RightClickMenusChangeTheScriptAndUndoTakesItBack) {
    Click(Qt::RightButton, AtCharacter(action1, 2));
    ASSERT_NE(panel.OpenMenu(), nullptr);
    EXPECT_FALSE(MenuRow("Remove Value")->isVisible());
    MenuRow("Change to DoTogether")->trigger();
    EXPECT_EQ(action1->Text(), "Action1 = DoTogether");
    EXPECT_EQ(line->Image(), 9);
    EXPECT_EQ(host.modifications, 1);

    Click(Qt::RightButton, QPoint(300, 350));
    EXPECT_EQ(panel.OpenMenu()->accessibleName(), "Blank Space");
    MenuRow("Add New Action")->trigger();
    EXPECT_EQ(script.TreeView1().RootCount(), 2);
    MenuRow("Add Python Code Box")->trigger();
    EXPECT_EQ(host.requests.back().What, Kind::BlankCommand);

    panel.UndoFromLog();
    panel.UndoFromLog();
    EXPECT_EQ(script.TreeView1().RootCount(), 1);
    EXPECT_EQ(action1->Text(), "Action1 = DoInOrder");
    EXPECT_EQ(line->Image(), 11); // the first of an in-order block again
    EXPECT_TRUE(host.errors.empty());
}

TEST_F(Panel, APythonLineIsTypedInPlaceAndTheEditIsRecorded) {
    Click(Qt::RightButton, AtCharacter(line, 2));
    MenuRow("Type Programming Language Code (Python)")->trigger();
    auto* box = panel.findChild<QMessageBox*>();
    ASSERT_NE(box, nullptr);
    EXPECT_EQ(box->windowTitle(), "Warning - Typing ahead");
    box->button(QMessageBox::Yes)->click();
    QApplication::processEvents();
    EXPECT_EQ(line->Tag(), "1");

    auto* editor = view.viewport()->findChild<QLineEdit*>();
    ASSERT_NE(editor, nullptr);
    editor->setText("print 'hello'");
    QTest::keyClick(editor, Qt::Key_Return);
    QApplication::processEvents();
    EXPECT_EQ(line->Text(), "print 'hello'");

    panel.UndoFromLog();
    EXPECT_EQ(line->Text(), "Camera.Move(Forward, 1, Duration=2)");
}

TEST_F(Panel, ViewsHaveStableNamesAndItemsTellTheirPlace) {
    EXPECT_EQ(panel.accessibleName(), "Animations");
    // The first animation starts selected.
    EXPECT_TRUE(view.selectionModel()->isSelected(view.ItemModel().IndexOf(action1)));
    EXPECT_EQ(view.accessibleName(), "Script");
    EXPECT_EQ(panel.ConstructTreeView().accessibleName(), "Blocks");
    EXPECT_EQ(panel.CommandLineTreeviewView().accessibleName(), "Line being built");
    // What a screen reader is told about the line's cell.
    QAccessibleInterface* tree = QAccessible::queryAccessibleInterface(&view);
    ASSERT_NE(tree, nullptr);
    QString description;
    for (int child = 0; child < tree->childCount(); ++child)
        if (tree->child(child)->text(QAccessible::Name) == line->Text())
            description = tree->child(child)->text(QAccessible::Description);
    EXPECT_EQ(description, "Level 2, inside Action1 = DoInOrder");
    EXPECT_FALSE(panel.ConstructTreeView()
                     .ItemModel()
                     .index(0, 0)
                     .data(Qt::DecorationRole)
                     .value<QIcon>()
                     .isNull());
}

TEST_F(Panel, ClicksAreMeasuredInTheFontTheScriptIsShownIn) {
    QFont big = view.font();
    big.setPointSize(big.pointSize() * 2);
    panel.ApplyScriptFont(big);
    QApplication::processEvents();
    Click(Qt::LeftButton, AtCharacter(line, 28));
    ASSERT_FALSE(host.requests.empty());
    EXPECT_EQ(host.requests.back().Number, 17);
    EXPECT_EQ(panel.CommandLineTreeviewView().font(), big);
}

TEST_F(Panel, ALeftClickOnAnAnimationSelectsIt) {
    TreeNode* action2 = script.AddNewAnimation();
    QApplication::processEvents();
    Click(Qt::LeftButton, AtCharacter(action2, 2));
    EXPECT_EQ(script.TreeView1().SelectedItem(), action2);
    EXPECT_TRUE(view.selectionModel()->isSelected(view.ItemModel().IndexOf(action2)));
}

TEST_F(Panel, AClickHitsTheValueWhoseKeywordIsUnderThePointerInAnyOrderAndCase) {
    // As a file may give it: Style ahead of Duration, a keyword in lower case.
    script.TreeView1().SetText(line,
                               "Camera.Move(Forward, 1, Style=abruptly, duration=2, more...)");
    Click(Qt::LeftButton, AtCharacter(line, 42));
    ASSERT_FALSE(host.requests.empty());
    EXPECT_EQ(host.requests.back().Number, 17);
    Click(Qt::RightButton, AtCharacter(line, 42));
    ASSERT_NE(MenuRow("Remove Duration"), nullptr);
    MenuRow("Remove Duration")->trigger();
    EXPECT_EQ(line->Text(), "Camera.Move(Forward, 1, Style=abruptly, more...)");
}

TEST_F(Panel, AClickAfterTheTreeScrolledSidewaysHitsTheCharacterUnderThePointer) {
    panel.resize(200, 400);
    QApplication::processEvents();
    const QPoint unscrolled = AtCharacter(line, 28); // in "Duration=2", off the right edge
    QScrollBar* bar = view.horizontalScrollBar();
    bar->setValue(bar->maximum());
    QApplication::processEvents();
    ASSERT_GT(bar->value(), unscrolled.x() - view.viewport()->width() + 10);
    Click(Qt::LeftButton, unscrolled - QPoint(bar->value(), 0));
    ASSERT_FALSE(host.requests.empty());
    EXPECT_EQ(host.requests.back().Number, 17);
}

TEST_F(Panel, APythonLineIsOfferedNoValueRows) {
    script.TreeView1().SetText(line, "Camera.Move(Forward, 1, Duration=2, Style=abruptly)");
    script.TreeView1().SetTag(line, "1");
    Click(Qt::RightButton, AtCharacter(line, 28));
    ASSERT_NE(panel.OpenMenu(), nullptr);
    for (QAction* row : panel.OpenMenu()->actions())
        EXPECT_FALSE(row->isVisible() && row->text().startsWith("Remove"))
            << row->text().toStdString();
}

TEST_F(Panel, AClickOnALineThatCannotBeReadSaysWhichLineAndWhatToDo) {
    script.TreeView1().SetText(line, "Camera.Fly(Forward, 1, more...)");
    Click(Qt::LeftButton, AtCharacter(line, 13));
    auto* box = panel.findChild<QMessageBox*>();
    ASSERT_NE(box, nullptr);
    EXPECT_TRUE(box->isVisible());
    EXPECT_TRUE(box->text().contains("Camera.Fly(Forward, 1, more...)"));
    EXPECT_TRUE(box->text().contains("Python"));
    EXPECT_EQ(line->Text(), "Camera.Fly(Forward, 1, more...)");
    box->button(QMessageBox::Ok)->click();
}

TEST_F(Panel, TheMenuKeyOpensTheSelectedLinesMenuWherePerformThisLineRunsIt) {
    Click(Qt::LeftButton, AtCharacter(line, 2));
    ASSERT_EQ(script.TreeView1().SelectedItem(), line);
    host.requests.clear();
    view.setFocus();
    QTest::keyClick(&view, Qt::Key_F10, Qt::ShiftModifier);
    ASSERT_NE(panel.OpenMenu(), nullptr);
    EXPECT_TRUE(panel.OpenMenu()->isVisible());
    ASSERT_NE(MenuRow("Perform this Line"), nullptr);
    EXPECT_TRUE(MenuRow("Perform this Line")->isVisible());
    MenuRow("Perform this Line")->trigger();
    ASSERT_EQ(host.requests.size(), 1u);
    EXPECT_EQ(host.requests[0].What, Kind::PerformLine);
    EXPECT_EQ(host.requests[0].Value, "Camera.Move(Forward, 1, Duration=2),\r\n");
}

namespace {

// The script with a block, a second animation and the palette beside it, and drags made
// by pressing and moving the mouse on a view; the platform's part, the events over the
// script tree, is delivered as it would deliver them.
struct Dragging : Panel {
    TreeNode *hop = nullptr, *turn = nullptr, *action2 = nullptr;
    TreeControlView& palette = panel.ConstructTreeView();

    void SetUp() override {
        Panel::SetUp();
        carried.setData(QString::fromLatin1(NodeDragMimeType), "k");
        TreeControl& tree = script.TreeView1();
        hop = tree.Add(action1, Relation::Child, "", "Hop : DoTogether");
        turn = tree.Add(hop, Relation::Child, "", "Bunny.Turn(Left, 1/4, more...)");
        tree.SetExpanded(hop, true);
        action2 = tree.AddRoot("action2", "Action2 = DoInOrder");
        script.AnimationNames().Append("Action2");
        QApplication::processEvents();
    }

    void pressAndMove(TreeControlView& from, const TreeNode* node) {
        const QPoint at = from.NodeRect(node).center();
        QTest::mousePress(from.viewport(), Qt::LeftButton, {}, at);
        QTest::mouseMove(from.viewport(), at + QPoint(0, 3 * QApplication::startDragDistance()));
        QTest::mouseRelease(from.viewport(), Qt::LeftButton, {}, at);
    }

    // Moves over the script tree to point; answers whether a drop there would be taken.
    bool over(const QPoint& point) {
        QDragEnterEvent enter(point, Qt::MoveAction, &carried, Qt::LeftButton, {});
        QApplication::sendEvent(view.viewport(), &enter);
        QDragMoveEvent move(point, Qt::MoveAction, &carried, Qt::LeftButton, {});
        QApplication::sendEvent(view.viewport(), &move);
        return enter.isAccepted() && move.isAccepted();
    }
    void dropAt(const QPoint& point) {
        over(point);
        QDropEvent drop(QPointF(point), Qt::MoveAction, &carried, Qt::LeftButton, {});
        QApplication::sendEvent(view.viewport(), &drop);
        QApplication::processEvents();
    }
    // Low in the node's row, at its level.
    QPoint below(const TreeNode* node) {
        const QRect rect = view.NodeRect(node);
        return {rect.left() + 4, rect.bottom() - 1};
    }

    QMimeData carried;
};

} // namespace

TEST_F(Dragging, ABlockFromThePaletteShowsWhereItWillLandAndIsMadeThereForOneUndo) {
    pressAndMove(palette, script.ConstructTree().RootAt(0));
    ASSERT_EQ(script.DragNode.Tree, &script.ConstructTree());
    EXPECT_TRUE(over(below(line)));
    QWidget& mark = panel.insertionMark();
    EXPECT_TRUE(mark.isVisible());
    EXPECT_NEAR(mark.geometry().center().y(), view.NodeRect(hop).top(), 3);
    // Drawn in the colour of a selection, not lost in the white of the rows.
    const QImage shown = view.viewport()->grab().toImage();
    EXPECT_EQ(shown.pixelColor(mark.geometry().center()),
              view.palette().color(QPalette::Highlight));
    dropAt(below(line));
    EXPECT_FALSE(mark.isVisible());
    EXPECT_EQ(action1->ChildAt(1)->Text(), "DoInOrder");
    EXPECT_EQ(action1->ChildAt(2), hop);
    script.UndoFromLog();
    EXPECT_EQ(action1->Children(), 2);
}

TEST_F(Dragging, ABlockMovesByTheMouseButIsRefusedInsideItselfBeforeTheDrop) {
    pressAndMove(view, hop);
    ASSERT_EQ(script.DragNode.Get(), hop);
    EXPECT_FALSE(over(below(turn)));
    EXPECT_FALSE(panel.insertionMark().isVisible());
    dropAt(below(turn));
    EXPECT_EQ(hop->Parent(), action1);
    EXPECT_EQ(hop->Child(), turn);
    EXPECT_TRUE(script.TreeUndoRecords().Text().isEmpty());

    // Below every row: into the last animation, the block with its line.
    const QPoint empty(below(line).x(), view.viewport()->height() - 30);
    EXPECT_TRUE(over(empty));
    dropAt(empty);
    ASSERT_EQ(action2->Children(), 1);
    EXPECT_EQ(action2->Child()->Text(), "Hop : DoTogether");
    EXPECT_EQ(action2->Child()->Child()->Text(), "Bunny.Turn(Left, 1/4, more...)");
    EXPECT_EQ(action1->Children(), 1);
    script.UndoFromLog();
    EXPECT_EQ(action1->ChildAt(1)->Text(), "Hop : DoTogether");
    EXPECT_EQ(action2->Children(), 0);
}
