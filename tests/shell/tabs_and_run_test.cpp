// The world tabs and the run as the main window offers them, over a scripted engine:
// what each switch and each press asks of the engine, and what the user sees.
#include "controls/tree_control_view.h"
#include "script/script_panel.h"
#include "world/python_generator.h"

#include "main_form_harness.h"
#include "support/qt_print.h"
#include "support/window_wait.h"

#include <QAction>
#include <QDir>
#include <QMenu>
#include <QPlainTextEdit>
#include <QRegularExpression>
#include <QSettings>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTextEdit>
#include <QToolButton>
#include <gtest/gtest.h>

#include <optional>

using namespace vessa;
using namespace vessa::testing;

namespace {

// The user's stored preferences, in a folder of this test's own.
struct Preferences {
    QTemporaryDir folder;
    explicit Preferences(std::initializer_list<std::pair<const char*, const char*>> values = {}) {
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, folder.path());
        RegKeys keys;
        for (const auto& [name, value] : values)
            keys.SetRegValue(RegistryRoot::LocalMachine, kPreferencesKey, QString::fromUtf8(name),
                             QString::fromUtf8(value));
    }
};

struct Window : MainFormHarness {
    QTabBar* tabs = form->findChild<QTabBar*>(QStringLiteral("SwitchTab"));
    QToolButton* perform = form->findChild<QToolButton*>(QStringLiteral("PerformScriptButton"));
    QToolButton* light = form->findChild<QToolButton*>(QStringLiteral("TrafficLightImage"));
    QPlainTextEdit* scriptText = form->findChild<QPlainTextEdit*>(QStringLiteral("ScriptText"));

    Window() { form->show(); }

    void clickTab(int tab) {
        QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(tab).center());
    }
    QAction* menuItem(const char* control) {
        return form->findChild<QAction*>(QString::fromLatin1(control));
    }
    // The arguments of each call of `method` since the log was last cleared.
    QList<QVariantList> callsOf(const QString& method) const {
        QList<QVariantList> found;
        for (qsizetype i = 0; i < log.calls.size(); ++i)
            if (log.calls[i] == method)
                found << log.arguments[i];
        return found;
    }
    // The Python statements sent since the log was last cleared.
    QStringList sent() const {
        QStringList statements;
        for (const QVariantList& call : callsOf(QStringLiteral("ExecuteCode")))
            statements << call[0].toString();
        return statements;
    }
    // A key that names a button presses it, as a user sees it pressed: a moment later.
    void waitForCallOf(const char* method) {
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return log.calls.contains(QString::fromLatin1(method));
        })) << method;
    }
    void forget() {
        log.calls.clear();
        log.arguments.clear();
    }
    void setEngineAnswer(const char* method, const QVariant& answer) {
        scripted->answers[QString::fromLatin1(method)] = answer;
    }
    void useWindow(QWidget* window) {
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window, kWindowWaitMs));
    }
};

} // namespace

TEST(Tabs, LeavingTheOpeningSceneMovesTheViewAndTheMenusAndTheSameTabAgainAsksNothing) {
    Preferences none;
    Window w;
    QAction* undo = w.menuItem("EditUndoTextMenuButton");
    EXPECT_FALSE(undo->isEnabled());
    EXPECT_FALSE(w.renderForm.isVisible());

    w.forget();
    w.clickTab(1);
    EXPECT_EQ(w.sent(), QStringList{QStringLiteral("PreserveHandbasket()")});
    EXPECT_TRUE(undo->isEnabled());
    EXPECT_TRUE(w.renderForm.isVisible());
    EXPECT_EQ(w.callsOf(QStringLiteral("setimagenavigatorparent")).last(), QVariantList{qint64(2)});
    // An unnamed world is never backed up.
    EXPECT_TRUE(w.callsOf(QStringLiteral("BackupScene")).isEmpty());

    w.forget();
    w.clickTab(1);
    EXPECT_TRUE(w.log.calls.isEmpty());

    w.forget();
    w.clickTab(0);
    EXPECT_EQ(w.sent(), QStringList{QStringLiteral("RestoreHandbasket()")});
    EXPECT_EQ(w.callsOf(QStringLiteral("SetIsDirty")), QList<QVariantList>{{0}});
    EXPECT_FALSE(undo->isEnabled());
    EXPECT_FALSE(w.renderForm.isVisible());
    EXPECT_EQ(w.callsOf(QStringLiteral("setimagenavigatorparent")).last(), QVariantList{qint64(1)});
    // The opening scene allows adding objects; a command not yet built stays off.
    EXPECT_TRUE(w.menuItem("mnuAddObject")->isEnabled());
    EXPECT_FALSE(w.menuItem("mnuMakeObject")->isEnabled());
}

TEST(Tabs, ANamedWorldIsBackedUpOnTheAnimationsTabAndTheEnginesMarkCarriesOver) {
    Preferences none;
    QTemporaryDir folder;
    Window w;
    w.world.SetSaveName(folder.path());
    w.setEngineAnswer("getisdirty", 1); // the user changed the opening scene
    w.forget();
    w.clickTab(1);
    EXPECT_TRUE(QDir(folder.filePath(QStringLiteral("Backups"))).exists());
    const QList<QVariantList> backups = w.callsOf(QStringLiteral("BackupScene"));
    ASSERT_EQ(backups.size(), 1);
    EXPECT_EQ(backups[0][0], folder.filePath(QStringLiteral("Backups")));
    EXPECT_TRUE(backups[0][1].toString().contains(QStringLiteral("Action1 = DoInOrder(")));
    // Dirty before the backup, dirty after it; and the world now holds unsaved work.
    const int backup = w.log.calls.indexOf(QStringLiteral("BackupScene"));
    EXPECT_EQ(w.log.arguments[w.log.calls.indexOf(QStringLiteral("SetIsDirty"), backup)],
              QVariantList{1});
    EXPECT_TRUE(w.world.status().ScriptDirty());
    EXPECT_TRUE(w.form->windowTitle().endsWith(QStringLiteral(" [modified]")));

    // A clean engine is made clean again after the backup, and nothing is marked.
    w.setEngineAnswer("getisdirty", 0);
    w.clickTab(0);
    QTemporaryDir clean;
    w.world.SetSaveName(clean.path());
    w.forget();
    w.clickTab(2);
    w.clickTab(1);
    EXPECT_EQ(w.callsOf(QStringLiteral("BackupScene")).size(), 1);
    EXPECT_EQ(w.callsOf(QStringLiteral("SetIsDirty")), QList<QVariantList>{{0}});
}

TEST(Tabs, BackupsTurnedOffInThePreferencesAreNotMade) {
    Preferences off{{"AutoSaveEnabled", "False"}};
    QTemporaryDir folder;
    Window w;
    w.world.SetSaveName(folder.path());
    w.clickTab(1);
    EXPECT_TRUE(w.callsOf(QStringLiteral("BackupScene")).isEmpty());
    EXPECT_FALSE(QDir(folder.filePath(QStringLiteral("Backups"))).exists());
}

TEST(Tabs, TheStoredCodeBoxChoiceDecidesWhatTheBlankSpaceMenuOffers) {
    // Stored choice, and whether the box shows after entering a script tab; with nothing
    // stored the box keeps the state the world gave it (shown).
    for (const auto& [stored, shown] : {std::pair{"True", true}, {"False", false}, {"", true}}) {
        std::optional<Preferences> preferences;
        if (*stored)
            preferences.emplace(std::initializer_list<std::pair<const char*, const char*>>{
                {"CodeBoxVisible", stored}});
        else
            preferences.emplace();
        Window w;
        w.world.ArbitraryCodeBox().Visible = true;
        w.clickTab(2);
        w.clickTab(1);
        TreeControlView& view = w.form->scriptPanel().TreeView1View();
        QTest::mouseClick(view.viewport(), Qt::RightButton, {},
                          QPoint(5, view.viewport()->height() - 5));
        QMenu* menu = w.form->scriptPanel().OpenMenu();
        ASSERT_NE(menu, nullptr) << stored;
        QStringList offered;
        for (QAction* row : menu->actions())
            if (row->isVisible())
                offered << row->text();
        EXPECT_EQ(offered.contains(QStringLiteral("Remove Python Code Box")), shown) << stored;
        EXPECT_EQ(offered.contains(QStringLiteral("Add Python Code Box")), !shown) << stored;
        EXPECT_EQ(w.world.ArbitraryCodeBox().Visible, shown) << stored;
        menu->close();
    }
}

TEST(Perform, RunsTheGeneratedPythonFromTheHandbasketAndTellsTheUser) {
    Preferences none;
    Window w;
    w.clickTab(1);
    TreeControl& tree = w.world.script().TreeView1();
    tree.Add(tree.FirstRoot(), Relation::Child, QString(), "Camera.Move(Forward, 1, more...)");
    w.world.events().addRow(QStringLiteral(R"(KeyDown ("A" key))"), QStringLiteral("AnyWhere"),
                            QStringLiteral("Gone"));
    w.world.ArbitraryCodeBox().Text = QStringLiteral("print(1)");
    const PythonScript python =
        MakePythonScript(tree, w.world.events().ListView1(), w.world.ArbitraryCodeBox().Text);
    w.state.ErrorLineOffset = 7;
    w.forget();

    QTest::mouseClick(w.perform, Qt::LeftButton);
    const QStringList engineWork = {QStringLiteral("ExecuteCode"),
                                    QStringLiteral("setrenderwindowfocus"),
                                    QStringLiteral("ExecuteLines"), QStringLiteral("ExecuteLines")};
    EXPECT_EQ(w.log.calls.mid(w.log.calls.indexOf(QStringLiteral("ExecuteCode"))), engineWork);
    EXPECT_EQ(w.sent(), QStringList{QStringLiteral("RestoreHandbasket()")});
    const QString sent = python.text + QLatin1Char('\n');
    const int lastLine = lineOfPosition(sent, sent.size() - 1);
    EXPECT_EQ(w.callsOf(QStringLiteral("ExecuteLines")),
              (QList<QVariantList>{{sent, 0, python.handEditedLine - 1,
                                    QStringLiteral("<treeview>"), QStringLiteral("exec")},
                                   {sent, python.handEditedLine, lastLine,
                                    QStringLiteral("<Script Text>"), QStringLiteral("exec")}}));
    EXPECT_EQ(w.state.ErrorLineOffset, 0);
    const QString output = w.form->OutputText()->toPlainText();
    EXPECT_TRUE(output.contains(QRegularExpression(
        QStringLiteral(
            R"(^Running unnamed world at [A-Z][a-z]{2} \d{1,2} \d{4} \d\d:\d\d:\d\d\.\.\.$)"),
        QRegularExpression::MultilineOption)))
        << output.toStdString();
    // The row the Python had to leave out is told.
    EXPECT_TRUE(output.contains(QStringLiteral("Row 2 of the event list"))) << output.toStdString();
    EXPECT_EQ(w.perform->accessibleName(), QStringLiteral("Perform again"));
    EXPECT_EQ(w.light->accessibleName(), QStringLiteral("Stop the world"));

    QTemporaryDir folder;
    w.world.SetSaveName(folder.path());
    QTest::mouseClick(w.perform, Qt::LeftButton);
    EXPECT_TRUE(w.form->OutputText()->toPlainText().contains(
        QStringLiteral("Running ") + folder.path() + QStringLiteral(" at ")));
}

TEST(Perform, TheShownScriptTextRunsAsItStandsWithALineFeedOnlyWhereItHasNone) {
    Preferences none;
    Window w;
    w.clickTab(1);
    w.useWindow(w.form.get());
    QTest::keyClick(w.form.get(), Qt::Key_F12);
    ASSERT_TRUE(w.scriptText->isVisible());
    EXPECT_TRUE(w.scriptText->toPlainText().contains(QStringLiteral("Action1 = DoInOrder(")));

    // The user writes their own Python over it; Alt+P runs it, all as their own lines.
    for (const auto& [typed, sent] :
         {std::pair{"x = 1\n", "x = 1\n"}, {"x = 1\ny = 2", "x = 1\ny = 2\n"}}) {
        w.scriptText->selectAll();
        const QStringList lines = QString::fromLatin1(typed).split(u'\n');
        for (qsizetype i = 0; i < lines.size(); ++i) {
            if (i > 0)
                QTest::keyClick(w.scriptText, Qt::Key_Return);
            QTest::keyClicks(w.scriptText, lines[i]);
        }
        ASSERT_EQ(w.scriptText->toPlainText(), QString::fromLatin1(typed));
        w.forget();
        w.log.arguments.clear();
        w.useWindow(w.form.get());
        QTest::keyClick(w.scriptText, Qt::Key_P, Qt::AltModifier);
        w.waitForCallOf("ExecuteLines");
        const QString text = QString::fromLatin1(sent);
        EXPECT_EQ(w.callsOf(QStringLiteral("ExecuteLines")),
                  (QList<QVariantList>{
                      {text, 0, -1, QStringLiteral("<treeview>"), QStringLiteral("exec")},
                      {text, 0, int(text.count(u'\n')) - 1, QStringLiteral("<Script Text>"),
                       QStringLiteral("exec")}}))
            << typed;
    }
}

TEST(TrafficLight, FollowsTheEngineAndStopsTheWorldFromTheButtonOrTheCameraWindow) {
    Preferences none;
    Window w;
    w.clickTab(1);
    const auto engineSays = [&](bool active) {
        w.world.HandleDifferences(QVariantList{
            QVariant(QVariantList{QStringLiteral("activechanged"), QString(), active})});
    };
    EXPECT_EQ(w.light->accessibleName(), QStringLiteral("Reset the world"));
    engineSays(true);
    EXPECT_EQ(w.light->text(), QStringLiteral("&Stop"));
    EXPECT_EQ(w.light->accessibleName(), QStringLiteral("Stop the world"));
    w.forget();

    QTest::mouseClick(w.light, Qt::LeftButton);
    EXPECT_EQ(w.sent(), QStringList{QStringLiteral("RestoreHandbasket()")});
    EXPECT_EQ(w.light->accessibleName(), QStringLiteral("Reset the world"));
    EXPECT_EQ(w.perform->accessibleName(), QStringLiteral("Perform"));

    // While the world runs the keyboard is in the camera window: Escape stops it there.
    QTest::mouseClick(w.perform, Qt::LeftButton);
    engineSays(true);
    w.forget();
    w.useWindow(&w.renderForm);
    QTest::keyClick(&w.renderForm, Qt::Key_Escape);
    EXPECT_EQ(w.sent(), QStringList{QStringLiteral("RestoreHandbasket()")});
    EXPECT_EQ(w.light->text(), QStringLiteral("&Reset"));
    // And Alt+S in the main window.
    engineSays(true);
    w.forget();
    w.useWindow(w.form.get());
    QTest::keyClick(w.form.get(), Qt::Key_S, Qt::AltModifier);
    w.waitForCallOf("ExecuteCode");
    EXPECT_EQ(w.sent(), QStringList{QStringLiteral("RestoreHandbasket()")});
    engineSays(false);
    EXPECT_EQ(w.perform->text(), QStringLiteral("&Perform"));
}
