// Find and Replace through the form, with real keys: in the script, and in a box of
// code when that is where the user works.
#include "controls/tree_control.h"
#include "script/script_model.h"
#include "text/find_form.h"

#include "script/script_test_support.h"
#include "support/window_wait.h"

#include <QApplication>
#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>
#include <gtest/gtest.h>

using namespace vessa;
using vessa::testing::FakeScriptHost;

namespace {

struct Find : ::testing::Test {
    FakeScriptHost host;
    ScriptModel model{host};
    TreeControl& tree = model.TreeView1();
    QWidget window;
    QPlainTextEdit* code = new QPlainTextEdit(&window);
    FindForm* form = new FindForm(model, &window);
    bool codeHasFocus = false;
    TreeNode* move = nullptr;
    TreeNode* turn = nullptr;

    void SetUp() override {
        model.Initialize();
        move = tree.Add(tree.FirstRoot(), Relation::Child, "", "Camera.Move(Forward, 1, more...)");
        turn = tree.Add(tree.FirstRoot(), Relation::Child, "", "Bunny.Turn(Left, 1/4, more...)");
        form->setCodeBox(code);
        form->setCodeBoxHasFocus([this] { return codeHasFocus; });
        window.show();
    }

    // The menu's command, and the form active as the window manager makes it.
    void openFind(bool replacing = false) {
        if (replacing)
            form->EditReplaceMenuButton_Click();
        else
            form->EditFindMenuButton_Click();
        ASSERT_TRUE(QTest::qWaitForWindowActive(form, vessa::testing::kWindowWaitMs));
    }
    template <typename T = QWidget> T* control(const char* name) {
        return form->findChild<T*>(QString::fromLatin1(name));
    }
    QLineEdit* findBox() { return control<QLineEdit>("FindTextBox"); }
    QPushButton* findButton() { return control<QPushButton>("FindButton"); }
    void type(const char* name, const QString& text) { QTest::keyClicks(control(name), text); }
    // Enter where the text to find is typed.
    void enter() { QTest::keyClick(findBox(), Qt::Key_Return); }
    // What the form says under its fields of the last replace.
    QString status() {
        for (const QLabel* label : form->findChildren<QLabel*>())
            if (label->text().endsWith("changed."))
                return label->text();
        return {};
    }
    QString told() {
        auto* message = form->findChild<QMessageBox*>();
        if (!message)
            return {};
        const QString said = message->windowTitle() + u'|' + message->text();
        message->done(QMessageBox::Ok);
        QApplication::processEvents();
        return said;
    }
};

TEST_F(Find, TypingAndEnterFindInTheScriptAndTheButtonSaysWhereTheFindStands) {
    openFind();
    ASSERT_TRUE(form->isVisible());
    EXPECT_EQ(form->windowTitle(), "Vessa - Find");
    EXPECT_TRUE(control("ReplaceTextBox")->isHidden());
    EXPECT_TRUE(findBox()->hasFocus());
    EXPECT_FALSE(form->searchesCodeBox());
    type("FindTextBox", "BUNNY");
    EXPECT_EQ(findButton()->text(), "Find");
    enter();
    EXPECT_EQ(tree.SelectedItem(), turn);
    EXPECT_EQ(findButton()->text(), "Find Next");
    EXPECT_EQ(findButton()->accessibleName(), "Find Next");
    enter();
    EXPECT_EQ(told(), "Vessa - Find|No more matches for \"BUNNY\"");
    EXPECT_EQ(findButton()->text(), "Find Again");
    EXPECT_EQ(findButton()->accessibleName(), "Find Again");
    // Typing changes the text: a new find.
    type("FindTextBox", ".");
    EXPECT_EQ(findButton()->text(), "Find");
    EXPECT_EQ(findButton()->accessibleName(), "Find");
    // The form's own keys: Escape closes it, the menu opens it again with the text
    // selected to type over.
    QTest::keyClick(findBox(), Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible());
    openFind();
    EXPECT_EQ(findBox()->selectedText(), "BUNNY.");
}

TEST_F(Find, MatchCaseAndWholeWordAreCheckedFromTheKeyboard) {
    openFind();
    type("FindTextBox", "camera");
    QTest::keyClick(findBox(), Qt::Key_Tab);
    EXPECT_TRUE(control("MatchCaseCheck")->hasFocus());
    QTest::keyClick(control("MatchCaseCheck"), Qt::Key_Space);
    ASSERT_TRUE(control<QCheckBox>("MatchCaseCheck")->isChecked());
    findBox()->setFocus();
    enter();
    EXPECT_EQ(told(), "Vessa - Find|No more matches for \"camera\"");
    control<QCheckBox>("MatchCaseCheck")->setChecked(false);
    control<QCheckBox>("WholeWordCheck")->setChecked(true);
    findBox()->setText("Bun");
    enter();
    EXPECT_TRUE(told().startsWith("Vessa - Find|"));
    findBox()->setText("Bunny");
    enter();
    EXPECT_EQ(tree.SelectedItem(), turn);
}

TEST_F(Find, TheCodeBoxIsSearchedWhenItHasTheFocusAndAfterTheLastTheNextFindStartsAtTheTop) {
    code->setPlainText("speed = 2\nSpeed = speed * 2\n");
    const TreeNode* selectedLine = tree.SelectedItem();
    codeHasFocus = true;
    openFind();
    ASSERT_TRUE(form->searchesCodeBox());
    type("FindTextBox", "speed");
    QList<int> found;
    for (int press = 0; press < 3; ++press) {
        enter();
        found << code->textCursor().selectionStart();
    }
    EXPECT_EQ(found, (QList<int>{0, 10, 18}));
    EXPECT_EQ(code->textCursor().selectedText(), "speed");
    enter();
    EXPECT_EQ(told(), "Vessa - Find|No more matches for \"speed\"");
    enter();
    EXPECT_EQ(code->textCursor().selectionStart(), 0);
    EXPECT_EQ(tree.SelectedItem(), selectedLine);
}

TEST_F(Find, ReplaceAllInTheScriptIsOneUndoAndABrokenLineIsRefused) {
    openFind(true);
    EXPECT_EQ(form->windowTitle(), "Vessa - Replace");
    ASSERT_TRUE(control("ReplaceTextBox")->isVisible());
    type("FindTextBox", "Camera");
    type("ReplaceTextBox", "Bunny");
    QTest::mouseClick(control("ReplaceAllButton"), Qt::LeftButton);
    EXPECT_EQ(move->Text(), "Bunny.Move(Forward, 1, more...)");
    EXPECT_EQ(status(), "1 line(s) changed.");
    model.UndoFromLog();
    EXPECT_EQ(tree.FirstRoot()->Child()->Text(), "Camera.Move(Forward, 1, more...)");

    // Replace: the selected line changes, and the next one is found.
    findBox()->setText("Left");
    control<QLineEdit>("ReplaceTextBox")->setText("Right");
    tree.SetSelectedItem(turn);
    QTest::mouseClick(control("ReplaceButton"), Qt::LeftButton);
    EXPECT_EQ(turn->Text(), "Bunny.Turn(Right, 1/4, more...)");
    EXPECT_EQ(told(), "Vessa - Find|No more matches for \"Left\"");
    // "Turn" into "Spin": no such command, so the line stays and the user is told.
    findBox()->setText("Turn");
    control<QLineEdit>("ReplaceTextBox")->setText("Spin");
    tree.SetSelectedItem(turn);
    QTest::mouseClick(control("ReplaceButton"), Qt::LeftButton);
    EXPECT_EQ(turn->Text(), "Bunny.Turn(Right, 1/4, more...)");
    EXPECT_TRUE(told().contains("Bunny.Spin(Right, 1/4, more...)"));
}

TEST_F(Find, ReplaceInTheCodeBoxGoesThroughItsOwnUndo) {
    code->setPlainText("x = 1\nprint(x)\n");
    codeHasFocus = true;
    openFind(true);
    type("FindTextBox", "x");
    type("ReplaceTextBox", "count");
    QTest::mouseClick(control("ReplaceAllButton"), Qt::LeftButton);
    EXPECT_EQ(code->toPlainText(), "count = 1\nprint(count)\n");
    EXPECT_EQ(status(), "2 place(s) changed.");
    code->undo();
    EXPECT_EQ(code->toPlainText(), "x = 1\nprint(x)\n");
}

} // namespace
