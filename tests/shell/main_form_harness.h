#pragma once

#include "shell/main_form.h"
#include "shell/render_form.h"
#include "world/open_world.h"

#include "support/scripted_engine.h"

#include <memory>

namespace vessa::testing {

// The main window over a scripted engine.
struct MainFormHarness : ScriptedProgram {
    OpenWorld world{state, engine, reporter};
    RenderForm renderForm;
    std::unique_ptr<MainForm> form;

    MainFormHarness() {
        scripted->answers[QStringLiteral("getisdirty")] = 0;
        scripted->answers[QStringLiteral("GetLoopWait")] = -1;
        form = std::make_unique<MainForm>(state, engine, reporter, renderForm, world);
    }

    // The statements sent to the engine since the last time this was asked.
    QStringList newStatements() {
        const QStringList all = statements();
        const QStringList fresh = all.mid(seen_);
        seen_ = all.size();
        return fresh;
    }

private:
    qsizetype seen_ = 0;
};

} // namespace vessa::testing
