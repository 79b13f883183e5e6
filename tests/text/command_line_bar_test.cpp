// The command line through real keys: Enter and F5 run, F12 changes faces, Up and Down
// walk the history, Tab completes.
#include "controls/tree_control.h"
#include "controls/tree_control_view.h"
#include "text/command_line_bar.h"

#include "support/scripted_engine.h"
#include "support/window_wait.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QCompleter>
#include <QLineEdit>
#include <QMessageBox>
#include <QTest>
#include <QToolButton>
#include <gtest/gtest.h>

using namespace vessa;

namespace {

struct CommandLine : ::testing::Test {
    vessa::testing::ScriptedProgram program;
    TreeControl oneLine;
    TreeControl objects;
    CommandLineBar bar{program.engine, program.reporter, *new TreeControlView(oneLine), objects};
    QComboBox& box = bar.CommandLineBox();
    QLineEdit& edit = *box.lineEdit();

    void SetUp() override {
        objects.AddRoot("", "Scene");
        for (const char* name : {"Camera", "Bunny", "BunnyTwo"})
            objects.Add(objects.FirstRoot(), Relation::Child, "", name);
        for (TreeNode* node = objects.FirstRoot()->Child(); node; node = node->Next())
            objects.SetTag(node, node->Text());
        bar.show();
        bar.activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(&bar, vessa::testing::kWindowWaitMs));
        edit.setFocus();
    }

    void type(const QString& text) { QTest::keyClicks(&edit, text); }
    // A key in the box, or on the widget given.
    void press(int key, QWidget* on = nullptr) { QTest::keyClick(on ? on : &box, Qt::Key(key)); }
    QStringList ran() const {
        QStringList lines;
        for (qsizetype call = 0; call < program.log.calls.size(); ++call)
            if (program.log.arguments[call].value(1) == QStringLiteral("<Command Line>"))
                lines << program.log.arguments[call].value(0).toString();
        return lines;
    }
    // The message box shown, closed; its title and text.
    QString told() {
        auto* message = bar.findChild<QMessageBox*>();
        if (!message)
            return {};
        const QString said = message->windowTitle() + u'|' + message->text();
        message->done(QMessageBox::Ok);
        QApplication::processEvents();
        return said;
    }
    QStringList history() const {
        QStringList items;
        for (int row = 0; row < box.count(); ++row)
            items << box.itemText(row);
        return items;
    }
};

TEST_F(CommandLine, EnterRunsTheLineAndLeavesItInTheBoxWithTheCaretAtTheEnd) {
    type(" camera.move(forward) ");
    edit.setCursorPosition(3);
    press(Qt::Key_Return);
    EXPECT_EQ(ran(), QStringList{"camera.move(forward)"});
    EXPECT_EQ(box.currentText(), " camera.move(forward) ");
    EXPECT_EQ(edit.cursorPosition(), edit.text().size());
    EXPECT_FALSE(edit.hasSelectedText());
    // The same line in other letters, with F5: run again, one entry in the list.
    edit.clear();
    type("CAMERA.MOVE(FORWARD)");
    press(Qt::Key_F5);
    EXPECT_EQ(ran().size(), 2);
    EXPECT_EQ(history(), QStringList{"camera.move(forward)"});
    edit.clear();
    type("Bunny.Hide()");
    press(Qt::Key_Enter);
    EXPECT_EQ(history(), (QStringList{"Bunny.Hide()", "camera.move(forward)"}));
    EXPECT_EQ(told(), QString());
}

TEST_F(CommandLine, ALineOfBlanksGivesTheHelpAndAnEmptyBox) {
    type("    ");
    press(Qt::Key_Return);
    EXPECT_EQ(told(), "Vessa47 - COMMAND LINE|Type Vessa commands into the this text box and "
                      "press 'Enter' or click the GO BUTTON to run them.");
    EXPECT_EQ(box.currentText(), QString());
    EXPECT_TRUE(ran().isEmpty());
    // The GO button on the box does what Enter does.
    QTest::mouseClick(&bar.GoButton(), Qt::LeftButton);
    EXPECT_TRUE(told().startsWith("Vessa47 - COMMAND LINE|"));
}

TEST_F(CommandLine, F12ChangesFacesAndGoRunsTheTreesLineAsTheEngineTakesIt) {
    press(Qt::Key_F12);
    EXPECT_TRUE(box.isHidden());
    ASSERT_TRUE(bar.CommandLineTreeview().isVisible());
    EXPECT_TRUE(bar.CommandLineTreeview().hasFocus());
    // Empty, the tree face explains the GO button.
    QTest::mouseClick(&bar.GoButton(), Qt::LeftButton);
    EXPECT_EQ(told(), "Vessa - GO BUTTON|The GO button executes the line of code in the command "
                      "box (the box to the left of the GO button).You can drag objects over the "
                      "command box to change this line of code.");
    oneLine.AddRoot("", "Camera.Move(Forward, 1, Style=BeginGently-EndAbruptly, more...)");
    press(Qt::Key_F5, &bar.CommandLineTreeview());
    EXPECT_EQ(ran(), QStringList{"Camera.Move(Forward, 1, Style=BeginGently)"});
    oneLine.Clear();
    oneLine.AddRoot("", "Bunny.Hide(more...)");
    QTest::mouseClick(&bar.GoButton(), Qt::LeftButton);
    EXPECT_EQ(ran().last(), "Bunny.Hide()");
    press(Qt::Key_F12, &bar.CommandLineTreeview());
    EXPECT_TRUE(bar.CommandLineTreeview().isHidden());
    EXPECT_TRUE(box.isVisible());
}

TEST_F(CommandLine, UpAndDownWalkTheHistoryFromWhatIsBeingTyped) {
    for (const char* line : {"first()", "second()"}) {
        edit.clear();
        type(line);
        press(Qt::Key_Return);
    }
    edit.clear();
    type("half");
    press(Qt::Key_Up);
    EXPECT_EQ(edit.text(), "second()");
    press(Qt::Key_Up);
    EXPECT_EQ(edit.text(), "first()");
    press(Qt::Key_Up);
    EXPECT_EQ(edit.text(), "first()");
    press(Qt::Key_Down);
    press(Qt::Key_Down);
    EXPECT_EQ(edit.text(), "half");
    EXPECT_EQ(ran().size(), 2);
}

TEST_F(CommandLine, TabCompletesAndWithNothingToCompleteGoesOn) {
    type("cam");
    press(Qt::Key_Tab);
    EXPECT_EQ(edit.text(), "Camera");
    EXPECT_TRUE(box.hasFocus());
    type(".Mo");
    press(Qt::Key_Tab);
    type("(f");
    press(Qt::Key_Tab);
    EXPECT_EQ(edit.text(), "Camera.Move(Forward");
    // Several fit: the list of them comes up to choose from.
    edit.clear();
    type("Bu");
    press(Qt::Key_Tab);
    EXPECT_EQ(edit.text(), "Bunny");
    QCompleter* choices = bar.findChild<QCompleter*>();
    ASSERT_NE(choices, nullptr);
    ASSERT_TRUE(choices->popup()->isVisible());
    EXPECT_EQ(choices->popup()->model()->rowCount(), 2);
    QTest::keyClick(choices->popup(), Qt::Key_Down);
    QTest::keyClick(choices->popup(), Qt::Key_Down);
    QTest::keyClick(choices->popup(), Qt::Key_Return);
    EXPECT_EQ(edit.text(), "BunnyTwo");
    EXPECT_TRUE(ran().isEmpty());
    // Nothing to complete: Tab is the way on to the GO button.
    type("(");
    press(Qt::Key_Tab);
    EXPECT_TRUE(bar.GoButton().hasFocus());
}

TEST_F(CommandLine, ClickedObjectsAndScriptLinesComeOntoTheFaceShown) {
    type("typed");
    bar.ObjectTree_NodeClick("Bunny");
    EXPECT_EQ(edit.text(), "Bunny");
    EXPECT_EQ(edit.selectedText(), "Bunny");
    // A script line as the engine takes it; a line of Python as it stands.
    bar.takeScriptLine("Camera.Move(Forward, 1, more...)", false);
    EXPECT_EQ(edit.text(), "Camera.Move(Forward, 1)");
    bar.takeScriptLine("print('hi')", true);
    EXPECT_EQ(edit.text(), "print('hi')");
    // On the tree face the line stands in the tree as the script shows it; the box and
    // its text are left as they were.
    press(Qt::Key_F12);
    bar.ObjectTree_NodeClick("Camera");
    bar.takeScriptLine("Bunny.Turn(Left, 1/4, more...)", false);
    ASSERT_NE(oneLine.FirstRoot(), nullptr);
    EXPECT_EQ(oneLine.FirstRoot()->Text(), "Bunny.Turn(Left, 1/4, more...)");
    EXPECT_EQ(oneLine.RootCount(), 1);
    EXPECT_EQ(edit.text(), "print('hi')");
}

TEST_F(CommandLine, ALineOfAHundredThousandCharactersRunsAndTheBoxKeepsItsSize) {
    const int width = box.sizeHint().width();
    const QString longLine = "s = '" + QString(100000, u'a') + "'";
    edit.setText(longLine);
    press(Qt::Key_Return);
    EXPECT_EQ(ran(), QStringList{longLine});
    EXPECT_EQ(box.itemText(0).size(), longLine.size());
    EXPECT_EQ(box.sizeHint().width(), width);
}

} // namespace
