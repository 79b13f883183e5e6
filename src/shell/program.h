#pragma once

#include "gateway/app_state.h"
#include "gateway/engine_link.h"
#include "gateway/error_reporter.h"
#include "gateway/interpreter_registry.h"
#include "shell/shell.h"

#include <functional>

namespace vessa {

class OpenWorld;

// The life of the process: start-up in a fixed order of steps, each leaving its
// number in ErrorLine, then the main loop, which polls the engine and hands the
// records to the open world, until the engine is released.
// Each stretch of steps has its own error handler, which decides whether a
// failure ends the process, is reported and skipped, or sends start-up back.
class Program {
public:
    Program(AppState& state, EngineLink& engine, const InterpreterRegistry& registry,
            OpenWorld& world, Shell& shell, ErrorReporter& reporter, ErrorDisplay& errors,
            ProcessControl& process);

    // Start-up and the main loop; returns the process's exit code.
    int Main();

    void startUp();
    // One round of the main loop; false once the engine has been released.
    bool runLoopRound();

private:
    void beforeEngine();
    void createEngine();
    void checkEngine();
    void setUpWindowsAndWorld();
    void showDefaultWorld();

    // Runs `statement`; a failure is reported with `firstLine` and skipped.
    void resumeNext(const QString& firstLine, const std::function<void()>& statement);
    void fatal(ReportForm form, const QString& firstLine, const RunTimeError& error);
    void unhandled(const RunTimeError& error);
    QVariant engineCall(const QString& method, const QVariantList& args = {});

    AppState& state_;
    EngineLink& engine_;
    const InterpreterRegistry& registry_;
    OpenWorld& world_;
    Shell& shell_;
    ErrorDisplay& errors_;
    ProcessControl& process_;
    ErrorReporter& reporter_;
    int nextPumpWaitMs_ = 0;
};

ErrorFormContent displayDepthErrorContent(int bitsPerPixel);

} // namespace vessa
