#pragma once

#include "text/code_editing.h"
#include "world/script_error_place.h"

#include <QString>

namespace vessa {

struct AppState;
class EngineLink;
class ErrorReporter;
class OpenWorld;
class RunView;
class WorldRun;

// The code box's text, and lines of it or of the script text, run by themselves in the
// scene (Ctrl+P and F5 in the boxes), and the engine's undo from the boxes (F4). Each
// tells the world's run what ran and sets ErrorLineOffset, the box's line at which the
// text the engine counts lines in begins, so that an error is marked on its line.
class CodeBoxRun {
public:
    CodeBoxRun(AppState& state, EngineLink& engine, ErrorReporter& reporter, OpenWorld& world,
               WorldRun& run, RunView& view);
    CodeBoxRun(const CodeBoxRun&) = delete;
    CodeBoxRun& operator=(const CodeBoxRun&) = delete;

    // The world put back as it starts, then all of the code box's text run in it, with
    // the camera window in front.
    void RunCodeBox();
    // The lines of the code box's text: the caret's line alone as at a prompt (its value
    // printed), or the selected lines.
    void RunCodeBoxSelection(const LineRange& lines);
    // The same for lines of the script text, whose text is given.
    void RunSelectedLine(const QString& scriptText, const LineRange& lines);
    // Undoes the engine's last step, with its sound.
    void UndoKey();

private:
    void runLines(const QString& text, const LineRange& lines, RanText ran, const QString& failure);

    AppState& state_;         // Not owned.
    EngineLink& engine_;      // Not owned.
    ErrorReporter& reporter_; // Not owned.
    OpenWorld& world_;        // Not owned.
    WorldRun& run_;           // Not owned.
    RunView& view_;           // Not owned.
};

} // namespace vessa
