#include "events/event_panel.h"

#include "controls/list_control_view.h"
#include "controls/tree_control_view.h"
#include "events/event_list.h"
#include "events/event_menus_view.h"
#include "events/key_capture_form.h"
#include "script/object_picker_popup.h"
#include "script/script_model.h"
#include "script/script_test_support.h"

#include <QAccessible>
#include <QApplication>
#include <QDropEvent>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
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
    QStringList requests; // "<kind>:<value>"
    std::unique_ptr<EventPanel> panel;
    ListControlView* view = nullptr;
    QToolButton* makeEvent = nullptr;

    void SetUp() override {
        panel = std::make_unique<EventPanel>(events, objectTree2);
        view = &panel->ListView1View();
        makeEvent = &panel->MakeEventButton();
        panel->resize(600, 300);
        panel->show();
        QApplication::setActiveWindow(panel.get());
        QTest::mouseClick(makeEvent, Qt::LeftButton);
    }
    // What the clicks ask for, in place of the menus that would answer.
    void RecordRequests() {
        for (Kind kind : {Kind::EventConditionMenu, Kind::EventObjectPicker,
                          Kind::EventResponseMenu, Kind::EventListMenu})
            script.requests().registerHandler(kind, [this](const ScriptRequest& request) {
                requests << QString::number(static_cast<int>(request.What)) + u':' + request.Value;
            });
    }
    void TearDown() override { panel.reset(); }

    void Click(Qt::MouseButton button, int position, int column) {
        const QPoint at = view->visualRect(view->model()->index(position, column)).center();
        QTest::mouseClick(view->viewport(), button, {}, at);
    }
};

QString Asked(Kind kind, const QString& value) {
    return QString::number(static_cast<int>(kind)) + u':' + value;
}

} // namespace

TEST_F(Builder, MakeEventWorksByKeyboardAndTheRowsAreReachedAndReadWhole) {
    ASSERT_EQ(events.ListView1().Count(), 2); // the start row and the click's
    makeEvent->setFocus();
    QTest::keyClick(makeEvent, Qt::Key_Space);
    EXPECT_EQ(events.ListView1().SelectedItem(), events.ListView1().Row(2));
    QTest::keyClick(makeEvent, Qt::Key_Tab);
    ASSERT_EQ(QApplication::focusWidget(), view);
    QTest::keyClick(view, Qt::Key_Up);
    QTest::keyClick(view, Qt::Key_Up);
    EXPECT_EQ(events.ListView1().SelectedItem(), events.ListView1().Row(0));
    QAccessibleInterface* focus = QAccessible::queryAccessibleInterface(view)->focusChild();
    ASSERT_TRUE(focus);
    EXPECT_EQ(focus->text(QAccessible::Name),
              "When: World Start, Happens To: nothing, Do Animation: Action1");

    // Without an animation the button is off, and back with the next one.
    script.TreeView1().Clear();
    EXPECT_FALSE(makeEvent->isEnabled());
    script.AddNewAnimation();
    EXPECT_TRUE(makeEvent->isEnabled());
}

TEST_F(Builder, AClickOrReturnAsksForTheEditorOfItsColumn) {
    RecordRequests();
    for (int column : {EventList::When, EventList::HappensTo, EventList::DoAnimation})
        Click(Qt::LeftButton, 1, column);
    // Nothing happens to the start row; the right button asks for the list's own menu.
    Click(Qt::LeftButton, 0, EventList::HappensTo);
    EXPECT_EQ(events.ListView1().SelectedItem(), events.ListView1().Row(0));
    Click(Qt::RightButton, 1, EventList::When);
    EXPECT_EQ(requests, (QStringList{Asked(Kind::EventConditionMenu, "LeftMouseButtonDown"),
                                     Asked(Kind::EventObjectPicker, "AnyWhere"),
                                     Asked(Kind::EventResponseMenu, "Action1"),
                                     Asked(Kind::EventListMenu, "")}));
    // The arrows choose the column, within the three, and Return opens its editor.
    Click(Qt::LeftButton, 0, EventList::When);
    requests.clear();
    for (Qt::Key key : {Qt::Key_Left, Qt::Key_Return, Qt::Key_Right, Qt::Key_Right, Qt::Key_Right,
                        Qt::Key_Return})
        QTest::keyClick(view, key);
    EXPECT_EQ(requests, (QStringList{Asked(Kind::EventConditionMenu, "World Start"),
                                     Asked(Kind::EventResponseMenu, "Action1")}));
}

TEST_F(Builder, OnlyAnObjectDraggedFromObjectTree2MakesARowWhenDropped) {
    TreeNode* bunny = objectTree2.AddRoot("k2", "Bunny");
    objectTree2.SetTag(bunny, "Bunny.Head");
    const auto drop = [&](const NodeRef& dragged, const char* mimeType) {
        script.DragNode = dragged;
        QMimeData carried;
        carried.setData(QString::fromLatin1(mimeType), "k2");
        QDragEnterEvent entered(QPoint(10, 10), Qt::CopyAction, &carried, Qt::LeftButton, {});
        QApplication::sendEvent(view->viewport(), &entered);
        QDropEvent dropped(QPointF(10, 10), Qt::CopyAction, &carried, Qt::LeftButton, {});
        QApplication::sendEvent(view->viewport(), &dropped);
    };
    drop(NodeRef::To(script.TreeView1(), script.TreeView1().FirstRoot()), NodeDragMimeType);
    drop(NodeRef::To(objectTree2, bunny), "text/plain");
    EXPECT_EQ(events.ListView1().Count(), 2);
    drop(NodeRef::To(objectTree2, bunny), NodeDragMimeType);
    ASSERT_EQ(events.ListView1().Count(), 3);
    EXPECT_EQ(events.ListView1().Row(2)->SubItems(EventList::HappensTo), "Bunny.Head");
}

TEST_F(Builder, BackspaceDeletesTheSelectedRowForUndoAndARowIsTakenOnlyBackOnItself) {
    RecordRequests();
    Click(Qt::LeftButton, 1, EventList::HappensTo);
    view->setFocus();
    QTest::keyClick(view, Qt::Key_Backspace);
    ASSERT_EQ(events.ListView1().Count(), 1);
    events.LVUndoFromLog(events.ListUndoLog());
    ASSERT_EQ(events.ListView1().Count(), 2);

    // A row dragged over the list: over itself it is a click, over another row nothing.
    const ListRow* row = events.ListView1().Row(1);
    QMimeData carried;
    carried.setData(QString::fromLatin1(RowDragMimeType), row->Key().toUtf8());
    const auto over = [&](int position) {
        const QPoint at =
            view->visualRect(view->model()->index(position, EventList::When)).center();
        QDragEnterEvent enter(at, Qt::MoveAction, &carried, Qt::LeftButton, {});
        QApplication::sendEvent(view->viewport(), &enter);
        QDragMoveEvent move(at, Qt::MoveAction, &carried, Qt::LeftButton, {});
        QApplication::sendEvent(view->viewport(), &move);
        return move.isAccepted();
    };
    EXPECT_FALSE(over(0));
    EXPECT_TRUE(over(1));
    requests.clear();
    const QPoint at = view->visualRect(view->model()->index(1, EventList::When)).center();
    QDropEvent dropped(QPointF(at), Qt::MoveAction, &carried, Qt::LeftButton, {});
    QApplication::sendEvent(view->viewport(), &dropped);
    EXPECT_EQ(requests, QStringList{Asked(Kind::EventConditionMenu, "LeftMouseButtonDown")});
    EXPECT_EQ(events.ListView1().Count(), 2);
}

// Keys pressed on whatever pop-up menu is open, a submenu once it opens.
static void PressOnMenus(std::initializer_list<Qt::Key> keys) {
    for (Qt::Key key : keys) {
        QWidget* menu = QApplication::activePopupWidget();
        ASSERT_TRUE(menu) << "no menu open for key " << key;
        QTest::keyClick(menu, key);
    }
}

TEST_F(Builder, TheMenusChangeTheRowFromTheKeyboardAndAKeyIsTakenByPressingIt) {
    script.RenameAnimation(script.TreeView1().FirstRoot(), "Hop");
    TreeNode* camera = host.objects.AddRoot("k1", "Camera");
    host.objects.SetTag(camera, "Camera");
    ListRow* row = events.ListView1().Row(1);
    events.ListView1().SetSubItem(row, EventList::HappensTo, "Camera");
    events.ListView1().SetSubItem(row, EventList::DoAnimation, "Hop");

    // Return on the selected row opens the conditions; the seventh is "World Start".
    Click(Qt::LeftButton, 1, EventList::When);
    QMenu* conditions = panel->menusView().openMenu();
    ASSERT_TRUE(conditions);
    EXPECT_EQ(conditions->title(), "Conditions");
    conditions->close();
    QTest::keyClick(view, Qt::Key_Return);
    PressOnMenus({Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down,
                  Qt::Key_Down, Qt::Key_Down, Qt::Key_Return});
    EXPECT_EQ(row->SubItems(EventList::When), "World Start");
    EXPECT_EQ(row->SubItems(EventList::HappensTo), "- - -");

    // KeyDown, then "Others..." at the end of its keys, then the key itself.
    QTest::keyClick(view, Qt::Key_Return);
    PressOnMenus({Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down,
                  Qt::Key_Right, Qt::Key_Up, Qt::Key_Return});
    KeyCaptureForm& question = panel->menusView().keyCapture();
    ASSERT_TRUE(question.isVisible());
    EXPECT_EQ(question.windowTitle(), "KeyDown");
    QTest::keyClick(&question, Qt::Key_Left); // types nothing: not taken
    EXPECT_TRUE(question.isVisible());
    QTest::keyClick(&question, Qt::Key_A);
    EXPECT_FALSE(question.isVisible());
    events.ListView1().SetSubItem(row, EventList::HappensTo, "Camera");
    // The cell under the keyboard reads as meant; the row reads whole.
    QAccessibleInterface* focus = QAccessible::queryAccessibleInterface(view)->focusChild();
    ASSERT_TRUE(focus);
    EXPECT_EQ(focus->text(QAccessible::Name), "Key A down");
    EXPECT_EQ(view->model()->index(1, 0).data(Qt::AccessibleTextRole).toString(),
              "When: Key A down, Happens To: Camera, Do Animation: Hop");

    // Escape is no key: the row waits for `KeyUp ("" key)`, and says so.
    QTest::keyClick(view, Qt::Key_Return);
    PressOnMenus({Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down, Qt::Key_Down,
                  Qt::Key_Down, Qt::Key_Right, Qt::Key_Up, Qt::Key_Return});
    QTest::keyClick(&question, Qt::Key_Escape);
    EXPECT_EQ(row->SubItems(EventList::When), "KeyUp (\"\" key)");

    // The animations, by the keyboard, from the Do Animation column.
    script.AddNewAnimation();
    QTest::keyClick(view, Qt::Key_Right);
    QTest::keyClick(view, Qt::Key_Right);
    QTest::keyClick(view, Qt::Key_Return);
    EXPECT_EQ(panel->menusView().openMenu()->title(), "Responses");
    PressOnMenus({Qt::Key_Down, Qt::Key_Down, Qt::Key_Return});
    EXPECT_EQ(row->SubItems(EventList::DoAnimation), "Action2");
}

TEST_F(Builder, TheListsOwnMenuMakesARowAndWhatIsGoneShowsAndIsTold) {
    view->setFocus();
    QTest::keyClick(view, Qt::Key_Menu);
    QMenu* own = panel->menusView().openMenu();
    ASSERT_TRUE(own);
    EXPECT_EQ(own->objectName(), "mnuListViewMain");
    PressOnMenus({Qt::Key_Down, Qt::Key_Return});
    ASSERT_EQ(events.ListView1().Count(), 3);

    // A row whose animation is gone shows red, with the reason as its tip.
    ListRow* row = events.ListView1().Row(2);
    events.ListView1().SetSubItem(row, EventList::DoAnimation, "Walk");
    const QModelIndex animation = view->model()->index(2, EventList::DoAnimation);
    EXPECT_EQ(animation.data(Qt::ForegroundRole).value<QColor>(), QColor(Qt::red));
    EXPECT_EQ(animation.data(Qt::ToolTipRole).toString(), "there is no animation called Walk");
    events.ListView1().SetSubItem(row, EventList::HappensTo, "Bunny");
    EXPECT_EQ(view->model()->index(2, EventList::HappensTo).data(Qt::ToolTipRole).toString(),
              "there is no object called Bunny in the scene");
    // and is itself again once the animation comes.
    script.RenameAnimation(script.TreeView1().FirstRoot(), "Walk");
    EXPECT_FALSE(animation.data(Qt::ForegroundRole).isValid());

    // An undo whose row has gone says so in a box, and the log goes on.
    events.ListView1().Remove(2);
    panel->LVUndoFromLog();
    auto* told = panel->findChild<QMessageBox*>("EventGoneBox");
    ASSERT_TRUE(told);
    EXPECT_TRUE(told->isVisible());
    told->close();
    panel->LVUndoFromLog();
    EXPECT_EQ(events.ListView1().Count(), 1);
}

TEST_F(Builder, WhoARowHappensToIsPickedFromTheSceneOrAnywhereByName) {
    TreeNode* camera = host.objects.AddRoot("k1", "Camera");
    host.objects.SetTag(camera, "Camera");
    ListRow* row = events.ListView1().Row(1);
    Click(Qt::LeftButton, 1, EventList::HappensTo);
    ObjectPickerPopup& picker = panel->menusView().objectPicker();
    ASSERT_TRUE(picker.isVisible());
    // The row's own choice is the one selected; the scene is on top.
    EXPECT_EQ(picker.TreeWidget().Tree().SelectedItem()->Text(), "AnyWhere");
    QTest::keyClicks(picker.findField(), "cam");
    QTest::keyClick(picker.findField(), Qt::Key_Return);
    EXPECT_FALSE(picker.isVisible());
    EXPECT_EQ(row->SubItems(EventList::HappensTo), "Camera");
    // A name no object has is refused, and the row stays.
    Click(Qt::LeftButton, 1, EventList::HappensTo);
    QTest::keyClicks(picker.findField(), "Moon");
    QTest::keyClick(picker.findField(), Qt::Key_Return);
    EXPECT_TRUE(picker.isVisible());
    EXPECT_EQ(row->SubItems(EventList::HappensTo), "Camera");
    picker.close();
    panel->LVUndoFromLog();
    EXPECT_EQ(row->SubItems(EventList::HappensTo), "AnyWhere");
}
