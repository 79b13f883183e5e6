#include "world/code_box_run.h"

#include "gateway/app_state.h"
#include "gateway/engine_link.h"
#include "gateway/error_reporter.h"
#include "world/open_world.h"
#include "world/script_run.h"
#include "world/world_run.h"

namespace vessa {

CodeBoxRun::CodeBoxRun(AppState& state, EngineLink& engine, ErrorReporter& reporter,
                       OpenWorld& world, WorldRun& run, RunView& view)
    : state_(state), engine_(engine), reporter_(reporter), world_(world), run_(run), view_(view) {
}

void CodeBoxRun::RunCodeBox() {
    try {
        runTool(engine_, reporter_, QStringLiteral("RestoreHandbasket()"),
                QStringLiteral("MainForm:PerformScrip: Error restoring handbasket"));
        view_.LogMessage(run_.runningLine());
        view_.focusCameraWindow();
        state_.ErrorLineOffset = 0;
        run_.tellRan(RanText::CodeBoxLines);
        QString text = world_.ArbitraryCodeBox().Text;
        if (!text.endsWith(u'\n'))
            text += u'\n';
        reporter_.CheckInterpreterResult(
            engine_.call(QStringLiteral("ExecuteCode"), {text, kHandEditedSourceTag, "exec"}),
            QStringLiteral("MainForm:RunCodeBox: Error running the code box."));
    } catch (const RunTimeError& e) {
        reporter_.reportAtTop(ReportForm::C, QStringLiteral("VB:MainForm:RunCodeBox() Error"), e);
    }
}

void CodeBoxRun::RunCodeBoxSelection(const LineRange& lines) {
    runLines(world_.ArbitraryCodeBox().Text, lines, RanText::CodeBoxLines,
             QStringLiteral("VB:MainForm:RunCodeBoxSelection() Error"));
}

void CodeBoxRun::RunSelectedLine(const QString& scriptText, const LineRange& lines) {
    runLines(scriptText, lines, RanText::ScriptTextLines,
             QStringLiteral("VB:MainForm:RunSelectedLine() Error"));
}

// The whole text goes along: the engine cuts the lines out, so that the lines it tells
// of count as the box's do from the first of them.
void CodeBoxRun::runLines(const QString& text, const LineRange& lines, RanText ran,
                          const QString& failure) {
    try {
        state_.ErrorLineOffset = lines.first;
        run_.tellRan(ran);
        const QString mode = lines.selection ? QStringLiteral("exec") : QStringLiteral("single");
        reporter_.CheckInterpreterResult(
            engine_.call(QStringLiteral("ExecuteLines"),
                         {text + u'\n', lines.first, lines.last, kHandEditedSourceTag, mode}),
            QStringLiteral("MainForm:RunCodeBoxSelection: Error running the selected lines."));
    } catch (const RunTimeError& e) {
        reporter_.reportAtTop(ReportForm::C, failure, e);
    }
}

void CodeBoxRun::UndoKey() {
    try {
        runTool(engine_, reporter_, QStringLiteral("undo()"),
                QStringLiteral("MainForm:ScriptText_KeyDown(F4): Error running undo."));
        runTool(engine_, reporter_, QStringLiteral("PlaySystemSound('Undo')"),
                QStringLiteral("MainForm:ScriptText_KeyDown(F4): Error playing sound."));
    } catch (const RunTimeError& e) {
        reporter_.reportAtTop(ReportForm::C,
                              QStringLiteral("VB:MainForm:ScriptText_KeyDown() Error"), e);
    }
}

} // namespace vessa
