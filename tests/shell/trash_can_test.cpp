// The trash can beside the script: what is dropped on it, what it refuses before the drop,
// and the undo of what it took.
#include "shell/trash_can.h"

#include "controls/node_ref.h"
#include "events/event_list.h"
#include "script/script_model.h"
#include "script/script_test_support.h"
#include "shell/edit_menu.h"

#include <QApplication>
#include <QDropEvent>
#include <QMessageBox>
#include <QMimeData>
#include <QTest>
#include <gtest/gtest.h>

using namespace vessa;
using vessa::testing::FakeScriptHost;

namespace {

// Action1 with two lines and a row that does it, and an object tree beside.
struct Trash : ::testing::Test {
    FakeScriptHost host;
    ScriptModel script{host};
    EventList events{script};
    TreeControl& tree = script.TreeView1();
    TreeControl objects;
    int tab = 1;
    QWidget window; // where the questions show
    EditMenu commands{script, events, [this] { return tab; }, window};
    TrashCan can{script, events, commands, &window};
    TreeNode* action1 = tree.FirstRoot();
    TreeNode *move, *turn;

    void SetUp() override {
        move = tree.Add(action1, Relation::Child, "", "Camera.Move(Forward, 1, more...)");
        turn = tree.Add(action1, Relation::Child, "", "Camera.Turn(Right, 1/2, more...)");
        events.InitEventList();
        window.show();
    }

    // Drags what is carried over the can; answers whether the can took it.
    bool dragOver(const char* mimeType) {
        QMimeData carried;
        carried.setData(QString::fromLatin1(mimeType), "k");
        QDragEnterEvent enter(QPoint(5, 5), Qt::MoveAction, &carried, Qt::LeftButton, {});
        QApplication::sendEvent(&can, &enter);
        return enter.isAccepted();
    }
    // Drags it over and drops it.
    bool drop(const char* mimeType) {
        const bool taken = dragOver(mimeType);
        QMimeData carried;
        carried.setData(QString::fromLatin1(mimeType), "k");
        QDropEvent dropped(QPointF(5, 5), Qt::MoveAction, &carried, Qt::LeftButton, {});
        QApplication::sendEvent(&can, &dropped);
        return taken;
    }
    QStringList lines() const {
        QStringList texts;
        for (TreeNode* node = action1->Child(); node; node = node->Next())
            texts << node->Text();
        return texts;
    }
};

} // namespace

TEST_F(Trash, ALineOrBlockDroppedOnTheCanGoesInOneStepThatUndoBringsBack) {
    script.DragNode = NodeRef::To(tree, move);
    const QImage shut = can.grab().toImage();
    EXPECT_TRUE(dragOver(NodeDragMimeType));
    EXPECT_TRUE(can.isOpen());
    EXPECT_NE(can.grab().toImage(), shut); // the user sees it open
    QDragLeaveEvent leave;
    QApplication::sendEvent(&can, &leave);
    EXPECT_FALSE(can.isOpen());
    EXPECT_TRUE(drop(NodeDragMimeType));
    EXPECT_FALSE(can.isOpen());
    EXPECT_EQ(lines(), QStringList{"Camera.Turn(Right, 1/2, more...)"});
    EXPECT_FALSE(script.DragNode.Get());
    EXPECT_EQ(script.TreeUndoRecords().Text().count(u'\n'), 1);
    script.UndoFromLog();
    EXPECT_EQ(lines(), (QStringList{"Camera.Move(Forward, 1, more...)",
                                    "Camera.Turn(Right, 1/2, more...)"}));
}

TEST_F(Trash, TheCanStaysShutForAnObjectAndForWhatIsNotANode) {
    TreeNode* bunny = objects.AddRoot("k1", "Bunny");
    script.DragNode = NodeRef::To(objects, bunny);
    EXPECT_FALSE(drop(NodeDragMimeType));
    EXPECT_FALSE(can.isOpen());
    script.DragNode = NodeRef::To(tree, move);
    EXPECT_FALSE(drop("text/plain"));
    EXPECT_EQ(lines().size(), 2);
    EXPECT_EQ(objects.Count(), 1);
    EXPECT_TRUE(script.TreeUndoRecords().Text().isEmpty());
}

TEST_F(Trash, ARowDroppedOrTheCanPressedOnTheEventsTabDeletesTheSelectedRowForUndo) {
    ListControl& rows = events.ListView1();
    events.MakeEvent();
    ASSERT_EQ(rows.Count(), 2);
    EXPECT_TRUE(drop(RowDragMimeType));
    EXPECT_EQ(rows.Count(), 1);
    // Nothing selected: nothing to take.
    rows.SetSelectedItem(nullptr);
    EXPECT_FALSE(dragOver(RowDragMimeType));
    events.LVUndoFromLog(events.ListUndoLog());
    ASSERT_EQ(rows.Count(), 2);
    EXPECT_EQ(rows.Row(1)->SubItems(EventList::When), "LeftMouseButtonDown");

    tab = 2;
    rows.SetSelectedItem(rows.Row(0));
    QTest::mouseClick(&can, Qt::LeftButton);
    EXPECT_EQ(rows.Count(), 1);
    // On the script's tab a press takes the selected line.
    tab = 1;
    tree.SetSelectedItem(turn);
    QTest::keyClick(&can, Qt::Key_Space);
    EXPECT_EQ(lines(), QStringList{"Camera.Move(Forward, 1, more...)"});
}

TEST_F(Trash, AnAnimationThatRowsDoGoesWithThemOnlyOnceTheUserAgrees) {
    host.animationsWithRows << "action1";
    host.eventRowsOfRemovedAnimation = 1;
    const auto answer = [&](QMessageBox::StandardButton button) {
        script.DragNode = NodeRef::To(tree, action1);
        drop(NodeDragMimeType);
        auto* question = window.findChild<QMessageBox*>();
        ASSERT_TRUE(question);
        EXPECT_TRUE(question->text().startsWith(
            "This animation has been attached to a condition in the event builder."));
        question->button(button)->click();
        QApplication::processEvents();
    };
    answer(QMessageBox::Cancel);
    EXPECT_EQ(tree.FirstRoot(), action1);
    EXPECT_TRUE(host.removedAnimationRows.isEmpty());
    answer(QMessageBox::Ok);
    EXPECT_EQ(tree.FirstRoot(), nullptr);
    EXPECT_EQ(host.removedAnimationRows, QStringList{"action1"});
}
