// Cut, Copy, Paste and Delete as a user reaches them in the main window: the Edit menu and
// its keys, the script tree's right-click menu, the "Delete Animation" question, a code box
// with the keyboard, the event rows, and text that other programs put on the clipboard.
#include "controls/list_control_view.h"
#include "controls/tree_control_view.h"
#include "events/event_panel.h"
#include "script/script_panel.h"
#include "shell/edit_menu.h"

#include "main_form_harness.h"
#include "support/qt_print.h"
#include "support/window_wait.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QTest>
#include <gtest/gtest.h>

using namespace vessa;
using namespace vessa::testing;

namespace {

// The animations tab with Action1 holding one line, which the World Start row does.
struct Editing : MainFormHarness {
    ScriptPanel& panel = form->scriptPanel();
    TreeControlView& view = panel.TreeView1View();
    TreeControl& tree = world.script().TreeView1();
    ListControl& rows = world.events().ListView1();
    TreeNode* action1 = tree.FirstRoot();
    TreeNode* line = nullptr;

    Editing() {
        line = tree.Add(action1, Relation::Child, "", "Camera.Move(Forward, 1, more...)");
        tree.SetExpanded(action1, true);
        form->show();
        form->SwitchToTab(1);
        useMainWindow();
    }

    void useMainWindow() {
        form->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(form.get(), kWindowWaitMs));
    }
    QAction* action(const char* control) { return form->findChild<QAction*>(control); }
    void press(QWidget* widget, Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        widget->setFocus();
        QTest::keyClick(widget, key, modifiers);
        QApplication::processEvents();
    }
    // Right-clicks node and answers the visible captions of the menu that opens, which
    // stays open only when asked to.
    QStringList rightClick(const TreeNode* node, bool keepOpen = false) {
        QTest::mouseClick(view.viewport(), Qt::RightButton, {}, view.NodeRect(node).center());
        QApplication::processEvents();
        QStringList shown;
        QMenu* menu = panel.OpenMenu();
        if (!menu)
            return shown;
        for (QAction* row : menu->actions())
            if (row->isVisible() && !row->isSeparator())
                shown << row->text();
        if (!keepOpen)
            QTest::keyClick(menu, Qt::Key_Escape);
        return shown;
    }
    // Right-clicks node and clicks the row of the menu with that caption.
    void chooseOnNode(const TreeNode* node, const QString& caption) {
        rightClick(node, true);
        QMenu* menu = panel.OpenMenu();
        ASSERT_TRUE(menu);
        for (QAction* row : menu->actions())
            if (row->text() == caption) {
                QTest::mouseClick(menu, Qt::LeftButton, {}, menu->actionGeometry(row).center());
                QApplication::processEvents();
                return;
            }
        FAIL() << "no row " << caption.toStdString();
    }
    // Opens the Edit menu with the mouse and clicks the item named control.
    void chooseFromEditMenu(const char* control) {
        QMenuBar* bar = form->menuBar();
        auto* edit = form->findChild<QMenu*>(QStringLiteral("EditMenuButton"));
        QTest::mouseClick(bar, Qt::LeftButton, {},
                          bar->actionGeometry(edit->menuAction()).center());
        ASSERT_TRUE(QTest::qWaitForWindowExposed(edit, kWindowWaitMs));
        QTest::mouseClick(edit, Qt::LeftButton, {}, edit->actionGeometry(action(control)).center());
        QApplication::processEvents();
    }
    QMessageBox* question() {
        for (QMessageBox* box : form->findChildren<QMessageBox*>())
            if (box->isVisible())
                return box;
        return nullptr;
    }
    QStringList lines(const TreeNode* block) const {
        QStringList texts;
        for (const TreeNode* child = block->Child(); child; child = child->Next())
            texts << child->Text();
        return texts;
    }
};

} // namespace

TEST(EditCommands, TheEditMenuKeysCopyPasteAndDeleteALineEachOneUndo) {
    Editing w;
    EXPECT_FALSE(w.action("EditPasteMenuButton")->isEnabled());
    EXPECT_FALSE(w.rightClick(w.line).contains("Paste Line"));
    w.tree.SetSelectedItem(w.line);

    w.press(&w.view, Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QApplication::clipboard()->text(), "Camera.Move(Forward, 1)\n");
    EXPECT_TRUE(w.action("EditPasteMenuButton")->isEnabled());
    w.press(&w.view, Qt::Key_V, Qt::ControlModifier);
    ASSERT_EQ(w.action1->Children(), 2);
    w.tree.SetSelectedItem(w.action1->ChildAt(1));
    w.press(&w.view, Qt::Key_Delete);
    EXPECT_EQ(w.action1->Children(), 1);
    w.press(&w.view, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(w.action1->Children(), 2);
    w.press(&w.view, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(w.lines(w.action1), QStringList{"Camera.Move(Forward, 1, more...)"});
}

TEST(EditCommands, TheNodeMenuOffersPasteLineOnceSomethingIsCopied) {
    Editing w;
    w.chooseOnNode(w.line, "Copy Line");
    EXPECT_TRUE(w.rightClick(w.line).contains("Paste Line"));
    w.chooseOnNode(w.line, "Paste Line");
    ASSERT_EQ(w.action1->Children(), 2);
    w.chooseOnNode(w.action1->ChildAt(1), "Cut Line");
    EXPECT_EQ(w.action1->Children(), 1);
    w.chooseOnNode(w.line, "Delete Line");
    EXPECT_EQ(w.action1->Children(), 0);
    // Three steps back: the delete, the cut, the paste.
    w.form->scriptPanel().UndoFromLog();
    w.form->scriptPanel().UndoFromLog();
    EXPECT_EQ(w.action1->Children(), 2);
    w.form->scriptPanel().UndoFromLog();
    EXPECT_EQ(w.action1->Children(), 1);
}

TEST(EditCommands, CancelInDeleteAnimationLeavesTreeRowsAndCopyAsTheyWere) {
    Editing w;
    w.chooseOnNode(w.line, "Copy Line");
    w.chooseOnNode(w.action1, "Cut Line");
    QMessageBox* asked = w.question();
    ASSERT_TRUE(asked);
    EXPECT_EQ(asked->windowTitle(), "Delete Animation");
    QTest::mouseClick(asked->button(QMessageBox::Cancel), Qt::LeftButton);
    QApplication::processEvents();
    EXPECT_EQ(w.tree.FirstRoot(), w.action1);
    EXPECT_EQ(w.rows.Count(), 1);
    EXPECT_EQ(w.world.script().CopyBuffer().FirstRoot()->Child()->Text(), w.line->Text());

    // Agreed, the animation goes with its row; one undo brings both back.
    w.chooseOnNode(w.action1, "Delete Line");
    ASSERT_TRUE(w.question());
    QTest::mouseClick(w.question()->button(QMessageBox::Ok), Qt::LeftButton);
    QApplication::processEvents();
    EXPECT_EQ(w.tree.Count(), 0);
    EXPECT_EQ(w.rows.Count(), 0);
    w.form->scriptPanel().UndoFromLog();
    ASSERT_EQ(w.tree.RootCount(), 1);
    EXPECT_EQ(w.tree.FirstRoot()->Text(), "Action1 = DoInOrder");
    EXPECT_EQ(w.rows.Count(), 1);
}

TEST(EditCommands, TheCodeBoxTextGoesThroughTheEditMenuButDeleteTakesTheTreesLine) {
    Editing w;
    auto* box = new QPlainTextEdit(w.form.get());
    box->setGeometry(10, 200, 300, 100);
    box->setPlainText("x = 1\ny = 2");
    box->show();
    w.form->editMenu().setCodeBox(box, [box] { return box->hasFocus(); });
    w.tree.SetSelectedItem(w.line);
    box->setFocus();
    QTest::keyClick(box, Qt::Key_Home, Qt::ControlModifier);
    QTest::keyClick(box, Qt::Key_End, Qt::ShiftModifier);

    w.chooseFromEditMenu("EditCutMenuButton");
    EXPECT_EQ(box->toPlainText(), "\ny = 2");
    EXPECT_EQ(QApplication::clipboard()->text(), "x = 1");
    EXPECT_EQ(w.action1->Children(), 1);
    w.chooseFromEditMenu("EditPasteMenuButton");
    EXPECT_EQ(box->toPlainText(), "x = 1\ny = 2");
    w.chooseFromEditMenu("EditDeleteMenuButton");
    EXPECT_EQ(w.action1->Children(), 0);
    EXPECT_EQ(box->toPlainText(), "x = 1\ny = 2");
    // The box undoes its own text; the menu's undo, the script's line.
    w.press(box, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(box->toPlainText(), "\ny = 2");
    w.chooseFromEditMenu("EditUndoTextMenuButton");
    EXPECT_EQ(w.action1->Children(), 1);
}

TEST(EditCommands, RowsPastedOnTheEventsTabTakeKeysOfTheirOwn) {
    Editing w;
    w.form->SwitchToTab(2);
    w.useMainWindow();
    QWidget& list = w.form->eventPanel().ListView1View();
    w.rows.SetSelectedItem(w.rows.Row(0));
    w.press(&list, Qt::Key_C, Qt::ControlModifier);
    w.press(&list, Qt::Key_V, Qt::ControlModifier);
    w.press(&list, Qt::Key_V, Qt::ControlModifier);
    ASSERT_EQ(w.rows.Count(), 3);
    EXPECT_NE(w.rows.Row(1)->Key(), w.rows.Row(2)->Key());
    EXPECT_EQ(w.rows.Row(2)->SubItems(1), "World Start");
    w.press(&list, Qt::Key_X, Qt::ControlModifier);
    EXPECT_EQ(w.rows.Count(), 2);
    w.press(&list, Qt::Key_Z, Qt::ControlModifier);
    w.press(&list, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(w.rows.Count(), 2);
    EXPECT_EQ(w.tree.FirstRoot()->Children(), 1); // the script saw none of it
}

TEST(EditCommands, TextFromElsewhereBecomesLinesOrIsRefusedWithNothingLost) {
    Editing w;
    QApplication::clipboard()->setText("Bunny.Move(Forward, 1)\nBunny.Turn(Left, 1/4)\n");
    QApplication::processEvents();
    EXPECT_TRUE(w.action("EditPasteMenuButton")->isEnabled());
    w.tree.SetSelectedItem(w.line);
    w.press(&w.view, Qt::Key_V, Qt::ControlModifier);
    ASSERT_EQ(w.action1->Children(), 2);
    EXPECT_EQ(w.lines(w.action1->ChildAt(1)),
              (QStringList{"Bunny.Move(Forward, 1, more...)", "Bunny.Turn(Left, 1/4, more...)"}));
    w.press(&w.view, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(w.action1->Children(), 1);

    QByteArray binary;
    for (int byte = 0; byte < 256 * 4; ++byte)
        binary += static_cast<char>(byte % 256);
    QApplication::clipboard()->setText(QString::fromLatin1(binary));
    w.press(&w.view, Qt::Key_V, Qt::ControlModifier);
    QMessageBox* refusal = w.question();
    ASSERT_TRUE(refusal);
    EXPECT_EQ(refusal->windowTitle(), "Vessa47 - Paste");
    EXPECT_TRUE(refusal->text().endsWith("Nothing was pasted."));
    refusal->close();
    EXPECT_EQ(w.lines(w.action1), QStringList{"Camera.Move(Forward, 1, more...)"});
}

TEST(EditCommands, OnTheOpeningSceneNothingIsCutCopiedPastedOrDeleted) {
    Editing w;
    w.form->SwitchToTab(0);
    for (const char* control :
         {"EditCutMenuButton", "EditCopyMenuButton", "EditPasteMenuButton", "EditDeleteMenuButton"})
        EXPECT_FALSE(w.action(control)->isEnabled()) << control;
    w.tree.SetSelectedItem(w.line);
    w.form->editMenu().run([](EditCommands& commands) {
        commands.EditCutMenuButton_Click();
        commands.EditDeleteMenuButton_Click();
    });
    EXPECT_EQ(w.action1->Children(), 1);
}
