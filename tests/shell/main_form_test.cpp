#include "controls/tree_control_view.h"
#include "events/event_panel.h"
#include "script/script_panel.h"
#include "shell/error_form.h"

#include "main_form_harness.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QDialog>
#include <QKeyEvent>
#include <QMenuBar>
#include <QPushButton>
#include <QTabBar>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <QToolButton>
#include <gtest/gtest.h>

using namespace vessa;
using namespace vessa::testing;

TEST(MainFormWidgets, OutputAppendsAtTheEndButPrintOutputWritesAtTheInsertionPoint) {
    MainFormHarness h;
    h.form->appendOutput(QStringLiteral("one "), Qt::black);
    h.form->appendOutput(QStringLiteral("two"), QColor(255, 0, 0));
    EXPECT_EQ(h.form->OutputText()->toPlainText(), QStringLiteral("one two"));

    QTextCursor cursor = h.form->OutputText()->textCursor();
    cursor.setPosition(0);
    h.form->OutputText()->setTextCursor(cursor);
    h.form->PrintOutput(QStringLiteral("first"));
    EXPECT_EQ(h.form->OutputText()->toPlainText(), QStringLiteral("first\none two"));
}

TEST(MainFormWidgets, ClosingACleanWorldClosesTheEngineAndReleasesIt) {
    MainFormHarness h;
    h.form->show();
    EXPECT_TRUE(h.form->close());
    EXPECT_FALSE(h.engine.isSet());
    EXPECT_TRUE(h.log.calls.contains(QStringLiteral("DestroyImageNavigator")));
    EXPECT_EQ(h.log.calls.last(), QStringLiteral("Close"));
}

TEST(MainFormWidgets, CancelOnADirtyWorldKeepsEverythingRunning) {
    MainFormHarness h;
    h.world.status().markModified();
    h.form->show();
    QTimer::singleShot(0, [] {
        if (QWidget* box = QApplication::activeModalWidget()) {
            QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
            QApplication::sendEvent(box, &escape);
        }
    });
    EXPECT_FALSE(h.form->close());
    EXPECT_TRUE(h.engine.isSet());
    EXPECT_FALSE(h.log.calls.contains(QStringLiteral("Close")));
}

TEST(MainFormWidgets, IdleTimerKeepsTheEngineGoingWhileADialogHoldsTheLoop) {
    MainFormHarness h;
    h.form->setIdleTimerInterval(1);
    QDialog dialog;
    // The engine's first step while the dialog is up closes it; only an engine that never
    // steps leaves it to the limit.
    h.scripted->handlers[QStringLiteral("Loop")] = [&](const QVariantList&) {
        dialog.accept();
        return QVariant();
    };
    QTimer::singleShot(10000, &dialog, &QDialog::reject);
    EXPECT_EQ(dialog.exec(), QDialog::Accepted);
}

TEST(ErrorFormWidget, CopyPutsTheDatedReportOnTheClipboardAndStaysOpen) {
    ErrorFormContent content;
    content.typeCaption = QStringLiteral("Something broke");
    content.labelText = QStringLiteral("Version: 1\r\ndetails");
    ErrorForm form(content, [] { return QStringLiteral("7.7"); });
    form.show();
    form.Command1_Click();
    const QString report = QApplication::clipboard()->text();
    EXPECT_TRUE(report.contains(QStringLiteral("Vessa47 Version: 7.7\r\n")));
    EXPECT_TRUE(report.contains(QStringLiteral("Type: Something broke\r\n")));
    EXPECT_TRUE(report.contains(QStringLiteral("Label:Version: 1\r\ndetails\r\n")));
    EXPECT_TRUE(form.isVisible());
    EXPECT_EQ(form.windowTitle(), QStringLiteral("Vessa"));
}

TEST(MainFormWidgets, TheCaptionNamesTheWorldAndSaysModifiedOnceAfterTheFirstChange) {
    MainFormHarness h;
    h.scripted->answers[QStringLiteral("GetVersionText")] = QStringLiteral("9.9");
    h.world.SetSaveName(QString());
    EXPECT_EQ(h.form->windowTitle(), QStringLiteral("Vessa47 [9.9]"));
    h.form->show();
    QTest::mouseClick(
        h.form->findChild<QTabBar*>(QStringLiteral("SwitchTab")), Qt::LeftButton, {},
        h.form->findChild<QTabBar*>(QStringLiteral("SwitchTab"))->tabRect(1).center());

    // Two changes of the script through its right-click menu: one " [modified]".
    TreeControlView& view = h.form->scriptPanel().TreeView1View();
    const TreeNode* action1 = h.world.script().TreeView1().FirstRoot();
    for (const char* change : {"Change to DoTogether", "Change to DoInOrder"}) {
        QTest::mouseClick(view.viewport(), Qt::RightButton, {}, view.NodeRect(action1).center());
        QMenu* menu = h.form->scriptPanel().OpenMenu();
        ASSERT_TRUE(menu);
        for (QAction* row : menu->actions())
            if (row->text() == QString::fromLatin1(change))
                row->trigger();
    }
    EXPECT_EQ(action1->Text(), QStringLiteral("Action1 = DoInOrder"));
    EXPECT_EQ(h.form->windowTitle(), QStringLiteral("Vessa47 [9.9] [modified]"));
    h.world.SetSaveName(QStringLiteral("/worlds/Garden"));
    EXPECT_EQ(h.form->windowTitle(), QStringLiteral("Vessa47 - /worlds/Garden [9.9]"));
}

namespace {

// An error in the user's code, as the engine's poll brings it.
QVariant userError() {
    return QVariantList{QVariant(QVariantList{QStringLiteral("popuperrordialog"),
                                              QStringLiteral("NameError"), QStringLiteral("-1")})};
}

// Closes the error box once it is up; remembers whether the camera window was on top
// while the box was.
struct ErrorBoxCloser {
    RenderForm& camera;
    bool cameraOnTopDuringBox = true;
    bool closed = false;

    void arm() {
        QTimer::singleShot(0, [this] {
            QWidget* box = QApplication::activeModalWidget();
            if (!box) {
                arm();
                return;
            }
            cameraOnTopDuringBox = camera.windowFlags().testFlag(Qt::WindowStaysOnTopHint);
            QTest::mouseClick(box->findChild<QPushButton*>(QStringLiteral("OkButton")),
                              Qt::LeftButton);
            closed = true;
        });
    }
};

} // namespace

TEST(CameraWindow, StaysOnTopAfterAnErrorInTheUsersCodeOnlyWhenTheUserTickedTheBox) {
    MainFormHarness h;
    h.form->show();
    h.renderForm.show();
    auto* check1 = h.renderForm.findChild<QCheckBox*>(QStringLiteral("Check1"));
    ASSERT_FALSE(check1->isChecked());

    ErrorBoxCloser closer{h.renderForm};
    closer.arm();
    h.world.HandleDifferences(userError());
    EXPECT_TRUE(closer.closed);
    EXPECT_FALSE(h.renderForm.windowFlags().testFlag(Qt::WindowStaysOnTopHint));

    // Ticked: above the others, but not above the error box while it is up.
    QTest::mouseClick(check1, Qt::LeftButton, {}, QPoint(8, check1->height() / 2));
    ASSERT_TRUE(check1->isChecked());
    EXPECT_TRUE(h.renderForm.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    closer.arm();
    h.world.HandleDifferences(userError());
    EXPECT_FALSE(closer.cameraOnTopDuringBox);
    EXPECT_TRUE(h.renderForm.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
}

TEST(UndoButtons, TheScenesUndoesTheEnginesLastStepAndTheScriptsItsOwnLastChange) {
    MainFormHarness h;
    h.form->show();
    auto* scene = h.form->findChild<QToolButton*>(QStringLiteral("UndoButton"));
    auto* script = h.form->findChild<QToolButton*>(QStringLiteral("ScriptUndoButton"));
    ASSERT_TRUE(scene && script);
    const auto undoEmpty = [&](bool empty) {
        h.world.HandleDifferences(QVariantList{
            QVariant(QVariantList{QStringLiteral("undoemptychange"), QString(), empty})});
    };
    // The engine's undo stack starts empty: nothing to undo, and a click does nothing.
    EXPECT_FALSE(scene->isEnabled());
    QTest::mouseClick(scene, Qt::LeftButton);
    EXPECT_TRUE(h.newStatements().isEmpty());
    undoEmpty(false);
    EXPECT_TRUE(scene->isEnabled());
    EXPECT_FALSE(script->isEnabled()); // the engine's records say nothing of the script
    QTest::mouseClick(scene, Qt::LeftButton);
    EXPECT_EQ(h.newStatements(),
              (QStringList{QStringLiteral("undo()"), QStringLiteral("PlaySystemSound('Undo')")}));
    undoEmpty(true);
    EXPECT_FALSE(scene->isEnabled());

    // On the animations tab the script's button takes back the script's own change.
    auto* tabs = h.form->findChild<QTabBar*>(QStringLiteral("SwitchTab"));
    QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(1).center());
    h.newStatements();
    TreeControlView& view = h.form->scriptPanel().TreeView1View();
    const TreeNode* action1 = h.world.script().TreeView1().FirstRoot();
    QTest::mouseClick(view.viewport(), Qt::RightButton, {}, view.NodeRect(action1).center());
    for (QAction* row : h.form->scriptPanel().OpenMenu()->actions())
        if (row->text() == QStringLiteral("Change to DoTogether"))
            row->trigger();
    ASSERT_EQ(action1->Text(), QStringLiteral("Action1 = DoTogether"));
    EXPECT_TRUE(script->isEnabled());
    QTest::mouseClick(script, Qt::LeftButton);
    EXPECT_EQ(action1->Text(), QStringLiteral("Action1 = DoInOrder"));
    EXPECT_FALSE(script->isEnabled());
    EXPECT_TRUE(h.newStatements().isEmpty());
    EXPECT_EQ(script->accessibleName(), QStringLiteral("Undo Changes to Script"));
    EXPECT_NE(scene->accessibleName(), script->accessibleName());
}

TEST(EventsTab, TheEditMenusUndoAndTheUndoButtonTakeBackEventRowsThere) {
    MainFormHarness h;
    h.form->show();
    auto* tabs = h.form->findChild<QTabBar*>(QStringLiteral("SwitchTab"));
    auto* undoButton = h.form->findChild<QToolButton*>(QStringLiteral("ScriptUndoButton"));
    EventPanel& events = h.form->eventPanel();
    const ListControl& rows = h.world.events().ListView1();
    const auto undoFromTheEditMenu = [&] {
        QMenuBar* bar = h.form->menuBar();
        auto* edit = h.form->findChild<QMenu*>(QStringLiteral("EditMenuButton"));
        QTest::mouseClick(bar, Qt::LeftButton, {},
                          bar->actionGeometry(edit->menuAction()).center());
        QAction* undo = h.form->findChild<QAction*>(QStringLiteral("EditUndoTextMenuButton"));
        QTest::mouseClick(edit, Qt::LeftButton, {}, edit->actionGeometry(undo).center());
    };

    h.world.script().AddNewAnimation();
    QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(2).center());
    ASSERT_TRUE(events.MakeEventButton().isVisible());
    EXPECT_FALSE(undoButton->isEnabled());
    QTest::mouseClick(&events.MakeEventButton(), Qt::LeftButton);
    QTest::mouseClick(&events.MakeEventButton(), Qt::LeftButton);
    undoFromTheEditMenu();
    EXPECT_EQ(rows.Count(), 2);
    QTest::mouseClick(undoButton, Qt::LeftButton);
    EXPECT_EQ(rows.Count(), 1);
    EXPECT_FALSE(undoButton->isEnabled());
    EXPECT_EQ(h.world.script().TreeView1().RootCount(), 2);

    // On the animations tab the same menu row undoes the script.
    QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(1).center());
    EXPECT_FALSE(events.MakeEventButton().isVisible());
    undoFromTheEditMenu();
    EXPECT_EQ(h.world.script().TreeView1().RootCount(), 1);
}

TEST(EventsTab, RedoFollowsTheTabAndEachLogKeepsItsOwnHistory) {
    MainFormHarness h;
    h.form->show();
    QApplication::setActiveWindow(h.form.get());
    auto* tabs = h.form->findChild<QTabBar*>(QStringLiteral("SwitchTab"));
    auto* undoButton = h.form->findChild<QToolButton*>(QStringLiteral("ScriptUndoButton"));
    auto* redoButton = h.form->findChild<QToolButton*>(QStringLiteral("ScriptRedoButton"));
    ASSERT_TRUE(redoButton);
    EXPECT_EQ(redoButton->accessibleName(), QStringLiteral("Redo Changes to Script"));
    const ListControl& rows = h.world.events().ListView1();
    TreeControl& tree = h.world.script().TreeView1();
    const auto keys = [&](QKeyCombination combination) {
        QTest::keyClick(h.form.get(), combination.key(), combination.keyboardModifiers());
    };

    // A row made and undone on the events tab; a new animation made and undone on the
    // animations tab.
    QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(2).center());
    QTest::mouseClick(&h.form->eventPanel().MakeEventButton(), Qt::LeftButton);
    keys(Qt::CTRL | Qt::Key_Z);
    ASSERT_EQ(rows.Count(), 1);
    EXPECT_TRUE(redoButton->isEnabled());
    QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(1).center());
    EXPECT_FALSE(redoButton->isEnabled()); // the script has nothing undone yet
    h.world.script().AddNewAnimation();
    QTest::mouseClick(undoButton, Qt::LeftButton);
    ASSERT_EQ(tree.RootCount(), 1);

    // Redo on each tab does the tab's own change again, by key, button or menu.
    keys(Qt::CTRL | Qt::Key_Y);
    EXPECT_EQ(tree.RootCount(), 2);
    EXPECT_EQ(rows.Count(), 1);
    EXPECT_FALSE(redoButton->isEnabled());
    QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(2).center());
    EXPECT_TRUE(redoButton->isEnabled());
    keys(Qt::CTRL | Qt::SHIFT | Qt::Key_Z);
    EXPECT_EQ(rows.Count(), 2);
    EXPECT_EQ(tree.RootCount(), 2);
    QTest::mouseClick(undoButton, Qt::LeftButton);
    QTest::mouseClick(redoButton, Qt::LeftButton);
    EXPECT_EQ(rows.Count(), 2);
    auto* redo = h.form->findChild<QAction*>(QStringLiteral("EditRedoTextMenuButton"));
    EXPECT_FALSE(redo->isEnabled());

    // Tab reaches the redo button right after the undo button.
    EXPECT_EQ(undoButton->nextInFocusChain(), redoButton);
}
