#pragma once

// The main window over the real engine, on the animations tab, for tests that go from
// the window into the scene.
#include "controls/tree_control_view.h"
#include "gateway/engine_registration.h"
#include "gateway/interpreter_registry.h"
#include "script/script_panel.h"
#include "shell/main_form.h"
#include "shell/render_form.h"
#include "world/open_world.h"

#include "support/scripted_engine.h"

#include <QApplication>
#include <QMenu>
#include <QTabBar>
#include <QTest>
#include <QTextEdit>
#include <gtest/gtest.h>

namespace vessa::testing {

// The real engine and the open world, with the main window still to be made over them.
struct EngineAndWorld {
    AppState state;
    EngineLink engine;
    RecordingErrorDisplay internalErrors;
    ThrowingProcessControl process;
    ErrorReporter reporter{state, internalErrors, process};
    OpenWorld world{state, engine, reporter};
    RenderForm renderForm;
    std::unique_ptr<MainForm> form;

    EngineAndWorld() {
        state.ExitOnFatal = false;
        InterpreterRegistry registry;
        registerPythonEngine(registry, qEnvironmentVariable("PYTHONPATH"));
        engine.attach(registry.create(kEngineProgId));
    }
    void makeWindow() {
        form = std::make_unique<MainForm>(state, engine, reporter, renderForm, world);
    }
};

struct WindowOnTheEngine : EngineAndWorld {
    TreeControl& script = world.script().TreeView1();
    TreeNode* action1 = script.FirstRoot();

    WindowOnTheEngine() {
        makeWindow();
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

    // Where object is once everything has run, as the output pane shows it.
    QString positionOf(const QString& object) {
        runEngine();
        form->OutputText()->clear();
        engine.ExecuteCode(QStringLiteral("print('%.3f %.3f %.3f' % tuple(") + object +
                               QStringLiteral(".GetPosition()))"),
                           QStringLiteral("<Tool>"));
        poll();
        return form->OutputText()->toPlainText().trimmed();
    }
    QString cameraPosition() { return positionOf(QStringLiteral("Camera")); }
};

} // namespace vessa::testing
