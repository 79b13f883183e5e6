// "Perform this Line" from the script's node menu, with the real engine behind the
// main window: what the line makes runs in the scene at once.
#include "controls/tree_control_view.h"
#include "gateway/engine_registration.h"
#include "gateway/interpreter_registry.h"
#include "script/script_panel.h"
#include "shell/main_form.h"
#include "shell/render_form.h"
#include "world/open_world.h"

#include "support/qt_print.h"
#include "support/scripted_engine.h"

#include <QApplication>
#include <QLabel>
#include <QMenu>
#include <QPushButton>
#include <QTabBar>
#include <QTest>
#include <QTextEdit>
#include <QTimer>
#include <gtest/gtest.h>

using namespace vessa;
using namespace vessa::testing;

namespace {

struct WindowOnTheEngine {
    AppState state;
    EngineLink engine;
    RecordingErrorDisplay internalErrors;
    ThrowingProcessControl process;
    ErrorReporter reporter{state, internalErrors, process};
    OpenWorld world{state, engine, reporter};
    RenderForm renderForm;
    std::unique_ptr<MainForm> form;
    TreeControl& script = world.script().TreeView1();
    TreeNode* action1 = script.FirstRoot();

    WindowOnTheEngine() {
        state.ExitOnFatal = false;
        InterpreterRegistry registry;
        registerPythonEngine(registry, qEnvironmentVariable("PYTHONPATH"));
        engine.attach(registry.create(kEngineProgId));
        form = std::make_unique<MainForm>(state, engine, reporter, renderForm, world);
        form->show();
        auto* tabs = form->findChild<QTabBar*>(QStringLiteral("SwitchTab"));
        QTest::mouseClick(tabs, Qt::LeftButton, {}, tabs->tabRect(1).center());
        script.SetExpanded(action1, true);
    }

    // A right click on the node, then the menu's "Perform this Line".
    void perform(const TreeNode* node) {
        TreeControlView& view = form->scriptPanel().TreeView1View();
        QApplication::processEvents();
        QTest::mouseClick(view.viewport(), Qt::RightButton, {}, view.NodeRect(node).center());
        QMenu* menu = form->scriptPanel().OpenMenu();
        ASSERT_NE(menu, nullptr);
        for (QAction* row : menu->actions())
            if (row->text() == QStringLiteral("Perform this Line"))
                row->trigger();
    }

    // The engine's steps until nothing is left to run, as the main loop takes them; the
    // records go to the window.
    void runEngine() {
        for (int step = 0; step < 100; ++step) {
            engine.call(QStringLiteral("Loop"));
            if (engine.call(QStringLiteral("GetLoopWait")).toInt() < 0)
                break;
        }
        poll();
    }

    void poll() {
        engine.call(QStringLiteral("flushout"));
        world.HandleDifferences(engine.call(QStringLiteral("PollForMiscDifferences")));
    }

    // Where the camera is once everything has run, as the output pane shows it.
    QString cameraPosition() {
        runEngine();
        form->OutputText()->clear();
        engine.ExecuteCode(QStringLiteral("print('%.3f %.3f %.3f' % tuple(Camera.GetPosition()))"),
                           QStringLiteral("<Tool>"));
        poll();
        return form->OutputText()->toPlainText().trimmed();
    }
};

} // namespace

TEST(PerformThisLine, ALineAndThenABlockMoveTheCameraInTheScene) {
    WindowOnTheEngine w;
    TreeNode* forward = w.script.Add(w.action1, Relation::Child, "",
                                     "Camera.Move(Forward, 1, Duration=0, more...)");
    TreeNode* hop = w.script.Add(w.action1, Relation::Child, "", "DoInOrder : Hop");
    w.script.Add(hop, Relation::Child, "", "Camera.Move(Up, 1, Duration=0, more...)");
    w.script.Add(hop, Relation::Child, "", "Camera.Move(Up, 2, Duration=0, more...)");
    w.script.SetExpanded(hop, true);
    ASSERT_EQ(w.cameraPosition(), QStringLiteral("0.000 0.000 0.000"));

    w.perform(forward);
    EXPECT_EQ(w.cameraPosition(), QStringLiteral("0.000 0.000 1.000"));
    w.perform(hop);
    EXPECT_EQ(w.cameraPosition(), QStringLiteral("0.000 3.000 1.000"));
    EXPECT_TRUE(w.internalErrors.shown.isEmpty());
}

TEST(PerformThisLine, AMistakeInTheLineIsToldAsAMistakeInTheUsersScript) {
    WindowOnTheEngine w;
    TreeNode* line =
        w.script.Add(w.action1, Relation::Child, "", "Bunny.Move(Forward, 1, more...)");
    QString told;
    QTimer closer;
    QObject::connect(&closer, &QTimer::timeout, [&] {
        QWidget* box = QApplication::activeModalWidget();
        if (!box || box->objectName() != QStringLiteral("ErrorForm"))
            return;
        told = box->findChild<QLabel*>(QStringLiteral("ErrorTypeLabel"))->text();
        QTest::mouseClick(box->findChild<QPushButton*>(QStringLiteral("OkButton")), Qt::LeftButton);
    });
    closer.start(0);
    w.perform(line);
    w.runEngine();
    EXPECT_TRUE(told.contains(QStringLiteral("Bunny"))) << told.toStdString();
    EXPECT_TRUE(w.internalErrors.shown.isEmpty());
}
