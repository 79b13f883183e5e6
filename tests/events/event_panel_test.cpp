#include "events/event_panel.h"

#include "controls/list_control_view.h"
#include "events/event_list.h"
#include "script/script_model.h"
#include "script/script_test_support.h"

#include <QAccessible>
#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QTest>
#include <QToolButton>

#include <gtest/gtest.h>

using namespace vessa;
using vessa::testing::FakeScriptHost;
using Kind = ScriptRequest::Kind;

namespace {

struct Builder : ::testing::Test {
    FakeScriptHost host;
    ScriptModel script{host};
    EventList events{script};
    TreeControl objectTree2;
    TreeNode* bunny = nullptr;
    std::vector<ScriptRequest> requests;
    std::unique_ptr<EventPanel> panel;
    ListControlView* view = nullptr;
    QToolButton* makeEvent = nullptr;

    void SetUp() override {
        TreeNode* scene = objectTree2.AddRoot("k1", "Scene");
        bunny = objectTree2.Add(scene, Relation::Child, "k2", "Bunny");
        objectTree2.SetTag(bunny, "Bunny");
        for (Kind kind :
             {Kind::EventConditionMenu, Kind::EventObjectPicker, Kind::EventResponseMenu})
            script.requests().registerHandler(
                kind, [this](const ScriptRequest& request) { requests.push_back(request); });
        panel = std::make_unique<EventPanel>(events, objectTree2);
        view = &panel->ListView1View();
        makeEvent = &panel->MakeEventButton();
        panel->resize(600, 300);
        panel->show();
        QApplication::setActiveWindow(panel.get());
        QApplication::processEvents();
    }

    void TearDown() override { panel.reset(); }

    QPoint Cell(int position, int column) const {
        return view->visualRect(view->model()->index(position, column)).center();
    }

    void Click(Qt::MouseButton button, const QPoint& point) {
        QTest::mouseClick(view->viewport(), button, {}, point);
    }

    // The node drag the program has under way, carried onto the list and dropped.
    bool Drop(const QByteArray& mimeType) {
        QMimeData carried;
        carried.setData(QString::fromLatin1(mimeType), "k2");
        const QPoint at = Cell(0, EventList::When);
        QDragEnterEvent enter(at, Qt::CopyAction, &carried, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view->viewport(), &enter);
        QDropEvent drop(QPointF(at), Qt::CopyAction, &carried, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view->viewport(), &drop);
        return enter.isAccepted();
    }

    QStringList Kinds() const {
        QStringList kinds;
        for (const ScriptRequest& request : requests)
            kinds << QString::number(static_cast<int>(request.What)) + u':' + request.Value;
        return kinds;
    }
};

QString Kinded(Kind kind, const QString& value) {
    return QString::number(static_cast<int>(kind)) + u':' + value;
}

} // namespace

TEST_F(Builder, MakeEventMakesASelectedRowByMouseOrKeyboardWhileThereIsAnAnimation) {
    QTest::mouseClick(makeEvent, Qt::LeftButton);
    ASSERT_EQ(events.ListView1().Count(), 2);
    EXPECT_EQ(events.ListView1().SelectedItem(), events.ListView1().Row(1));
    EXPECT_EQ(view->selectionModel()->selectedRows().value(0).row(), 1);

    makeEvent->setFocus();
    QTest::keyClick(makeEvent, Qt::Key_Space);
    EXPECT_EQ(events.ListView1().Count(), 3);

    // Without an animation the button is off, and comes back with the next one.
    script.TreeView1().Clear();
    EXPECT_FALSE(makeEvent->isEnabled());
    QTest::mouseClick(makeEvent, Qt::LeftButton);
    EXPECT_EQ(events.ListView1().Count(), 3);
    script.AddNewAnimation();
    EXPECT_TRUE(makeEvent->isEnabled());
}

TEST_F(Builder, TabReachesTheListFromTheButtonAndArrowsMoveAlongTheRows) {
    QTest::mouseClick(makeEvent, Qt::LeftButton);
    makeEvent->setFocus();
    QTest::keyClick(makeEvent, Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), view);
    QTest::keyClick(view, Qt::Key_Up);
    EXPECT_EQ(events.ListView1().SelectedItem(), events.ListView1().Row(0));
    // The row the keyboard is on reads whole.
    QAccessibleInterface* focus = QAccessible::queryAccessibleInterface(view)->focusChild();
    ASSERT_TRUE(focus);
    EXPECT_EQ(focus->text(QAccessible::Name),
              "When: World Start, Happens To: - - -, Do Animation: Action1");
    QTest::keyClick(view, Qt::Key_Down);
    EXPECT_EQ(events.ListView1().SelectedItem(), events.ListView1().Row(1));
}

TEST_F(Builder, AClickInAColumnAsksForThatColumnsEditor) {
    QTest::mouseClick(makeEvent, Qt::LeftButton);
    Click(Qt::LeftButton, Cell(1, EventList::When));
    Click(Qt::LeftButton, Cell(1, EventList::HappensTo));
    Click(Qt::LeftButton, Cell(1, EventList::DoAnimation));
    EXPECT_EQ(Kinds(), (QStringList{Kinded(Kind::EventConditionMenu, "LeftMouseButtonDown"),
                                    Kinded(Kind::EventObjectPicker, "AnyWhere"),
                                    Kinded(Kind::EventResponseMenu, "Action1")}));
    EXPECT_EQ(requests.back().ScreenPoint,
              view->viewport()->mapToGlobal(Cell(1, EventList::DoAnimation)));
    EXPECT_EQ(events.CurrentColumn(), EventList::DoAnimation);

    // The start row's Happens To, the right button and blank space ask for nothing.
    requests.clear();
    Click(Qt::LeftButton, Cell(0, EventList::HappensTo));
    EXPECT_EQ(events.ListView1().SelectedItem(), events.ListView1().Row(0));
    Click(Qt::RightButton, Cell(1, EventList::When));
    Click(Qt::LeftButton, QPoint(5, view->viewport()->height() - 5));
    EXPECT_TRUE(requests.empty());
}

TEST_F(Builder, ReturnAsksForTheEditorOfTheColumnTheArrowsChose) {
    QTest::mouseClick(makeEvent, Qt::LeftButton);
    view->setFocus();
    QTest::keyClick(view, Qt::Key_Return);
    QTest::keyClick(view, Qt::Key_Right);
    QTest::keyClick(view, Qt::Key_Return);
    QTest::keyClick(view, Qt::Key_Right);
    QTest::keyClick(view, Qt::Key_Right); // no further than the last column
    QTest::keyClick(view, Qt::Key_Return);
    QTest::keyClick(view, Qt::Key_Left);
    QTest::keyClick(view, Qt::Key_Return);
    for (int step = 0; step < 3; ++step) // no further than the first
        QTest::keyClick(view, Qt::Key_Left);
    QTest::keyClick(view, Qt::Key_Return);
    EXPECT_EQ(Kinds(), (QStringList{Kinded(Kind::EventConditionMenu, "LeftMouseButtonDown"),
                                    Kinded(Kind::EventObjectPicker, "AnyWhere"),
                                    Kinded(Kind::EventResponseMenu, "Action1"),
                                    Kinded(Kind::EventObjectPicker, "AnyWhere"),
                                    Kinded(Kind::EventConditionMenu, "LeftMouseButtonDown")}));
    EXPECT_EQ(events.ListView1().SelectedItem(), events.ListView1().Row(1));
}

TEST_F(Builder, AnObjectDroppedFromObjectTree2MakesItsRowAndNoOtherDropDoes) {
    // A node of another tree, and data that is no node, are refused.
    script.DragNode = NodeRef::To(script.TreeView1(), script.TreeView1().FirstRoot());
    EXPECT_FALSE(Drop(NodeDragMimeType));
    script.DragNode = NodeRef::To(objectTree2, bunny);
    EXPECT_FALSE(Drop("text/plain"));
    EXPECT_EQ(events.ListView1().Count(), 1);

    EXPECT_TRUE(Drop(NodeDragMimeType));
    ASSERT_EQ(events.ListView1().Count(), 2);
    const ListRow* row = events.ListView1().Row(1);
    EXPECT_EQ(row->Key(), "key1");
    EXPECT_EQ(row->SubItems(EventList::HappensTo), "Bunny");
    EXPECT_EQ(events.ListView1().SelectedItem(), row);
}

TEST_F(Builder, ARowReadsAsItsColumnsAndTheControlsByTheirNames) {
    events.addRow("KeyDown (\"A\" key)", "Camera", "Hop");
    QApplication::processEvents(); // the view lays out its new row
    QAccessibleInterface* list = QAccessible::queryAccessibleInterface(view);
    ASSERT_TRUE(list && list->tableInterface());
    EXPECT_EQ(list->text(QAccessible::Name), "Events");
    QAccessibleInterface* row = list->tableInterface()->cellAt(1, 0);
    ASSERT_TRUE(row);
    EXPECT_EQ(row->text(QAccessible::Name),
              "When: KeyDown (\"A\" key), Happens To: Camera, Do Animation: Hop");
    EXPECT_EQ(list->tableInterface()->cellAt(1, EventList::HappensTo)->text(QAccessible::Name),
              "Camera");
    EXPECT_EQ(QAccessible::queryAccessibleInterface(makeEvent)->text(QAccessible::Name),
              "Make event");
}
