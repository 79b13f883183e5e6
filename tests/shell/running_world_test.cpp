// A world run from the main window over the real engine: Perform, what the world then
// does, the traffic light, mistakes of the user's code, and the camera view's keys and
// clicks reaching the world's events. With a display (Xvfb) the view is drawn and
// takes real input; without one, the tests that need it skip.
#include "window_on_the_engine.h"

#include "text/arbitrary_code_box.h"
#include "text/code_editor.h"

#include "support/qt_print.h"
#include "support/window_wait.h"

#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSettings>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>
#include <QTextEdit>
#include <QTimer>
#include <QToolButton>
#include <gtest/gtest.h>

using namespace vessa;
using namespace vessa::testing;

namespace {

bool drawing() {
    return QGuiApplication::platformName() == QLatin1String("xcb");
}

struct RunningWorld : EngineAndWorld {
    QTemporaryDir settings;
    TreeControl& script = world.script().TreeView1();
    QStringList userErrors; // the captions of the error boxes the user saw
    QTimer errorBoxes;

    RunningWorld() {
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
        call("LoadWorld",
             {qEnvironmentVariable("VESSA47_HOME") + QStringLiteral("Worlds/Default")});
        makeWindow();
        form->resize(900, 700);
        form->show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(form.get(), kWindowWaitMs));
        QWidget* frame = form->OpeningSceneFrame();
        call("imagenavigator", {frame->width(), frame->height(), 1});
        // A cube in the middle of the camera's picture, facing it: its forward is the
        // world's back, its right the world's left.
        call("addobject",
             {qEnvironmentVariable("VESSA47_HOME") + QStringLiteral("Objects/Shapes/Cube.mdl")});
        tool("Cube.Move(Up, 1, Duration=0)");
        runEngine();
        QObject::connect(&errorBoxes, &QTimer::timeout, [this] { closeErrorBox(); });
        errorBoxes.start(0);
    }

    QVariant call(const char* method, const QVariantList& args = {}) {
        return engine.call(QString::fromLatin1(method), args);
    }
    void tool(const char* statement) {
        EXPECT_TRUE(
            engine.ExecuteCode(QString::fromLatin1(statement), QStringLiteral("<Tool>")).isNull());
    }

    void closeErrorBox() {
        QWidget* box = QApplication::activeModalWidget();
        if (!box || box->objectName() != QStringLiteral("ErrorForm"))
            return;
        userErrors << box->findChild<QLabel*>(QStringLiteral("ErrorTypeLabel"))->text();
        QTest::mouseClick(box->findChild<QPushButton*>(QStringLiteral("OkButton")), Qt::LeftButton);
    }

    void clickTab(int tab) {
        auto* tabs = form->findChild<QTabBar*>(QStringLiteral("SwitchTab"));
        QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(tab).center());
    }
    void press(const char* button) {
        QTest::mouseClick(form->findChild<QToolButton*>(QString::fromLatin1(button)),
                          Qt::LeftButton);
        runEngine();
    }

    // Rounds of the main loop until the engine has nothing left to run: its steps, the
    // window's events, and its records to the window.
    void runEngine() {
        for (int round = 0; round < 200; ++round) {
            call("Loop");
            QApplication::processEvents();
            call("flushout");
            world.HandleDifferences(call("PollForMiscDifferences"));
            world.HandleDifferences(call("PollForTreeDifferences"));
            if (call("GetLoopWait").toInt() < 0)
                break;
        }
    }

    QString where(const char* object) {
        form->OutputText()->clear();
        tool(qPrintable(QStringLiteral("print('%.1f %.1f %.1f' % tuple(%1.GetPosition()))")
                            .arg(QString::fromLatin1(object))));
        call("flushout");
        world.HandleDifferences(call("PollForMiscDifferences"));
        return form->OutputText()->toPlainText().trimmed();
    }

    TreeNode* animation(const char* name, std::initializer_list<const char*> lines) {
        TreeNode* root = script.AddRoot(QString::fromLatin1(name).toLower(),
                                        QString::fromLatin1(name) + QStringLiteral(" = DoInOrder"));
        for (const char* line : lines)
            script.Add(root, Relation::Child, QString(), QString::fromLatin1(line));
        return root;
    }

    // F12 in the main window, which the user comes back to from the camera window.
    void flipScriptText() {
        form->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(form.get(), kWindowWaitMs));
        QTest::keyClick(form.get(), Qt::Key_F12);
    }
    CodeEditor* scriptText() { return form->findChild<CodeEditor*>(QStringLiteral("ScriptText")); }
    ArbitraryCodeBox& codeBox() { return form->codeBox(); }
    // The line of the code box that shows marked.
    QString codeBoxMarked() {
        QApplication::processEvents();
        return codeBox().editor().textCursor().selectedText().trimmed();
    }
    // The line of the world's Python that the script text shows marked.
    QString markedLine() {
        QApplication::processEvents();
        return scriptText()->textCursor().selectedText().trimmed();
    }
};

} // namespace

TEST(RunningWorld, PerformMovesTheWorldAndTheTrafficLightPutsItBack) {
    RunningWorld w;
    w.script.Add(w.script.FirstRoot(), Relation::Child, QString(),
                 "Cube.Move(Forward, 2, Duration=0, more...)");
    w.clickTab(1);
    ASSERT_EQ(w.where("Cube"), QStringLiteral("0.0 1.0 0.0"));

    w.press("PerformScriptButton");
    EXPECT_EQ(w.where("Cube"), QStringLiteral("0.0 1.0 -2.0"));
    w.tool("Cube.Move(Right, 1, Duration=0)");
    w.runEngine();
    w.press("TrafficLightImage");
    EXPECT_EQ(w.where("Cube"), QStringLiteral("0.0 1.0 0.0"));
    // Each run starts from the start kept aside, not from where the last one left it.
    w.press("PerformScriptButton");
    w.press("PerformScriptButton");
    EXPECT_EQ(w.where("Cube"), QStringLiteral("0.0 1.0 -2.0"));
    EXPECT_TRUE(w.userErrors.isEmpty());
    EXPECT_TRUE(w.internalErrors.shown.isEmpty());
}

TEST(RunningWorld, MistakesAreToldByTheirLineInTheirOwnPartAndMarkedInTheirOwnBox) {
    RunningWorld w;
    w.script.Add(w.script.FirstRoot(), Relation::Child, QString(),
                 "Bunny.Move(Forward, 1, more...)");
    w.clickTab(1);
    w.press("PerformScriptButton");
    const QString python = w.form->worldRun().ScriptText().Text;
    const int generatedLine = python.left(python.indexOf(QStringLiteral("Bunny"))).count(u'\n');
    ASSERT_EQ(w.userErrors.size(), 1);
    EXPECT_TRUE(w.userErrors[0].endsWith(QStringLiteral(" on line %1").arg(generatedLine + 1)))
        << w.userErrors[0].toStdString();
    // A mistake of the generated part shows the world's Python with its line marked.
    EXPECT_TRUE(w.scriptText()->isVisible());
    EXPECT_EQ(w.markedLine(), QStringLiteral("Bunny.Move(Forward, 1),"));
    EXPECT_EQ(w.scriptText()->textCursor().blockNumber(), generatedLine);
    w.flipScriptText();

    // The code box's lines count from its own first line, its first and its last.
    w.script.Remove(w.script.FirstRoot()->Child()->Index());
    for (const auto& [code, line] :
         {std::pair{"print(y)\r\nx = 1", 0}, std::pair{"x = 1\r\nprint(x)\r\nprint(y)", 2}}) {
        w.world.ArbitraryCodeBox().Text = QString::fromLatin1(code);
        w.press("PerformScriptButton");
        EXPECT_TRUE(w.userErrors.last().endsWith(QStringLiteral(" on line %1").arg(line + 1)))
            << w.userErrors.last().toStdString();
        EXPECT_TRUE(w.codeBox().editor().isVisible());
        EXPECT_EQ(w.codeBoxMarked(), QStringLiteral("print(y)"));
        EXPECT_EQ(w.codeBox().editor().textCursor().blockNumber(), line);
        EXPECT_FALSE(w.scriptText()->isVisible());
    }
    ASSERT_EQ(w.userErrors.size(), 3);

    // Shown, the text runs as it stands, and its own lines are told.
    w.flipScriptText();
    w.scriptText()->setPlainText(QStringLiteral("x = 1\nprint(z)\n"));
    w.press("PerformScriptButton");
    ASSERT_EQ(w.userErrors.size(), 4);
    EXPECT_TRUE(w.userErrors[3].endsWith(QStringLiteral(" on line 2")))
        << w.userErrors[3].toStdString();
    EXPECT_EQ(w.markedLine(), QStringLiteral("print(z)"));
    EXPECT_TRUE(w.internalErrors.shown.isEmpty());
}

TEST(RunningWorld, TheCodeBoxRunsByItsKeysAndItsMistakesAreMarkedOnTheirLine) {
    RunningWorld w;
    w.clickTab(1);
    w.world.ArbitraryCodeBox().Visible = true;
    w.form->showCodeBox(true);
    CodeEditor& box = w.codeBox().editor();
    w.form->activateWindow(); // from the camera window, which the tab brought up
    ASSERT_TRUE(QTest::qWaitForWindowActive(w.form.get(), kWindowWaitMs));
    box.setFocus();
    QTest::keyClicks(box.viewport(), QStringLiteral("Cube.Move(Up, 1, Duration=0)"));
    QTest::keyClick(&box, Qt::Key_Return);
    QTest::keyClicks(box.viewport(), QStringLiteral("hop = 2"));
    EXPECT_EQ(w.world.ArbitraryCodeBox().Text, "Cube.Move(Up, 1, Duration=0)\r\nhop = 2");
    EXPECT_TRUE(w.form->windowTitle().endsWith(QStringLiteral(" [modified]")));
    EXPECT_TRUE(w.form->CodeBoxHasFocus());

    // Ctrl+P: from the world's start, all of it.
    QTest::keyClick(&box, Qt::Key_P, Qt::ControlModifier);
    w.runEngine();
    EXPECT_EQ(w.where("Cube"), QStringLiteral("0.0 2.0 0.0"));
    QTest::keyClick(&box, Qt::Key_P, Qt::AltModifier);
    w.runEngine();
    EXPECT_EQ(w.where("Cube"), QStringLiteral("0.0 2.0 0.0")); // from the start again

    // F5 on the first line runs it alone, in the world as it is; F4 takes it back.
    QTest::keyClick(&box, Qt::Key_Home, Qt::ControlModifier);
    QTest::keyClick(&box, Qt::Key_F5);
    w.runEngine();
    EXPECT_EQ(w.where("Cube"), QStringLiteral("0.0 3.0 0.0"));
    QTest::keyClick(&box, Qt::Key_F4);
    w.runEngine();
    EXPECT_EQ(w.where("Cube"), QStringLiteral("0.0 2.0 0.0"));

    // A mistake in the last of three selected lines, the selection from the box's second
    // line: the line of the box is marked and told.
    box.moveCursor(QTextCursor::End);
    QTest::keyClick(&box, Qt::Key_Return);
    QTest::keyClicks(box.viewport(), QStringLiteral("x = 1"));
    QTest::keyClick(&box, Qt::Key_Return);
    QTest::keyClicks(box.viewport(), QStringLiteral("print(nothing)"));
    QTextCursor select(box.document()->findBlockByNumber(1));
    select.movePosition(QTextCursor::End, QTextCursor::KeepAnchor);
    box.setTextCursor(select);
    QTest::keyClick(&box, Qt::Key_F5);
    w.runEngine();
    ASSERT_EQ(w.userErrors.size(), 1);
    EXPECT_TRUE(w.userErrors[0].endsWith(QStringLiteral(" on line 4")))
        << w.userErrors[0].toStdString();
    EXPECT_EQ(w.codeBoxMarked(), QStringLiteral("print(nothing)"));
    EXPECT_EQ(w.codeBox().LineLabel().text(), QStringLiteral("Line: 4"));

    // A mistake of Python's grammar on the first line, run with Ctrl+P.
    box.setPlainText(QStringLiteral("if x = 1:\n    pass\n"));
    QTest::keyClick(&box, Qt::Key_P, Qt::ControlModifier);
    w.runEngine();
    ASSERT_EQ(w.userErrors.size(), 2);
    EXPECT_EQ(w.codeBoxMarked(), QStringLiteral("if x = 1:"));
    EXPECT_TRUE(w.internalErrors.shown.isEmpty());
}

TEST(RunningWorld, TheWorldsPythonRunsBySelectionAndMakesAButtonOfItUnderTheCameraView) {
    RunningWorld w;
    w.animation("Hop", {"Cube.Move(Up, 1, Duration=0, more...)"});
    w.clickTab(1);
    w.flipScriptText();
    CodeEditor* python = w.scriptText();
    ASSERT_TRUE(python->isVisible());
    const QString text = python->toPlainText();
    const int line = text.left(text.indexOf(QStringLiteral("Cube.Move"))).count(u'\n');
    QTextCursor select(python->document()->findBlockByNumber(line));
    python->setTextCursor(select);
    python->setFocus();

    // F5 runs the caret's line alone; the block's comma makes it a tuple, which runs.
    QTest::keyClick(python, Qt::Key_F5);
    w.runEngine();
    EXPECT_EQ(w.where("Cube"), QStringLiteral("0.0 2.0 0.0"));
    // Alt+P performs the world as the Perform button does: from its start.
    QTest::keyClick(python, Qt::Key_P, Qt::AltModifier);
    w.runEngine();
    EXPECT_EQ(w.where("Cube"), QStringLiteral("0.0 1.0 0.0")); // Hop is only defined

    // A right click on the selected line offers the on-the-fly button.
    select.movePosition(QTextCursor::EndOfBlock, QTextCursor::KeepAnchor);
    python->setTextCursor(select);
    python->ensureCursorVisible();
    QTextCursor inside(select.block());
    inside.movePosition(QTextCursor::Right, QTextCursor::MoveAnchor, 6);
    const QPoint onTheLine = python->cursorRect(inside).center() + QPoint(3, 0);
    ASSERT_TRUE(python->viewport()->rect().contains(onTheLine));
    QTest::mouseClick(python->viewport(), Qt::RightButton, {}, onTheLine);
    auto* menu = w.form->findChild<QMenu*>(QStringLiteral("ScriptTextMenuButton"));
    ASSERT_TRUE(menu->isVisible());
    QAction* make = w.form->findChild<QAction*>(QStringLiteral("ScriptTextOTFButton"));
    ASSERT_TRUE(make->isEnabled());
    make->trigger();
    menu->close();
    auto* button = w.renderForm.findChild<QPushButton*>(QStringLiteral("OnTheFlyButton1"));
    ASSERT_NE(button, nullptr);
    EXPECT_EQ(button->text(), QStringLiteral("Cube.Move(Up, 1, Dura..."));
    QTest::mouseClick(button, Qt::LeftButton);
    QTest::mouseClick(button, Qt::LeftButton);
    w.runEngine();
    EXPECT_EQ(w.where("Cube"), QStringLiteral("0.0 3.0 0.0"));
    EXPECT_TRUE(w.userErrors.isEmpty());
    EXPECT_TRUE(w.internalErrors.shown.isEmpty());
}

TEST(RunningWorld, KeysAndClicksInTheCameraViewReachTheWorldsEvents) {
    if (!drawing())
        GTEST_SKIP() << "the camera view needs a display";
    RunningWorld w;
    w.animation("Hop", {"Cube.Move(Up, 1, Duration=0, more...)"});
    w.animation("Slide", {"Cube.Move(Right, 1, Duration=0, more...)"});
    EventList& events = w.world.events();
    events.addRow(QStringLiteral(R"(KeyDown ("A" key))"), QStringLiteral("AnyWhere"),
                  QStringLiteral("Hop"));
    events.addRow(QStringLiteral("LeftMouseButtonDown"), QStringLiteral("Cube"),
                  QStringLiteral("Slide"));
    w.clickTab(1);
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&w.renderForm, kWindowWaitMs));
    w.press("PerformScriptButton");
    ASSERT_TRUE(QTest::qWaitForWindowActive(&w.renderForm, kWindowWaitMs));
    auto* view = w.renderForm.RenderFrame()->findChild<QWidget*>(QStringLiteral("ImageNavigator"));
    ASSERT_NE(view, nullptr);
    EXPECT_EQ(QApplication::focusWidget(), view); // keys go to the world at once

    // A click beside the cube is no click on it.
    QTest::mouseClick(view, Qt::LeftButton, {}, QPoint(5, 5));
    w.runEngine();
    EXPECT_EQ(w.where("Cube"), QStringLiteral("0.0 1.0 0.0"));
    QTest::mouseClick(view, Qt::LeftButton, {}, view->rect().center());
    w.runEngine();
    EXPECT_EQ(w.where("Cube"), QStringLiteral("-1.0 1.0 0.0"));
    QTest::keyClick(view, Qt::Key_A);
    w.runEngine();
    EXPECT_EQ(w.where("Cube"), QStringLiteral("-1.0 2.0 0.0"));
    if (qEnvironmentVariableIsSet("VESSA_DRAWING_OUTPUT")) {
        const QString folder = qEnvironmentVariable("VESSA_DRAWING_OUTPUT");
        w.renderForm.grab().save(folder + QStringLiteral("/camera_window_running.png"));
        w.form->grab().save(folder + QStringLiteral("/main_window_running.png"));
    }

    // Escape in the camera window stops the world and puts it back.
    QTest::keyClick(view, Qt::Key_Escape);
    w.runEngine();
    EXPECT_EQ(w.where("Cube"), QStringLiteral("0.0 1.0 0.0"));
    EXPECT_TRUE(w.userErrors.isEmpty());
}
