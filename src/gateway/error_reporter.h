#pragma once

#include "gateway/app_state.h"
#include "gateway/error_display.h"

#include <QVariant>

namespace vessa {

// The common exit for engine calls that failed and for errors that reached the
// top of a chain: shows ErrorForm, and ends the process while start-up has not
// yet passed the point after which the program always goes on.
class ErrorReporter {
public:
    ErrorReporter(AppState& state, ErrorDisplay& display, ProcessControl& process)
        : state_(state), display_(display), process_(process) {}

    // Null and "" are success; anything else is shown as an internal error.
    void CheckInterpreterResult(const QVariant& result, const QString& message);

    // Handles a run-time error that reached a handler at the top of a chain:
    // prepends the handler's block, reports the chain, and clears it.
    void reportAtTop(ReportForm form, const QString& firstLine, const RunTimeError& error);
    // The report of a failure that stopped an event handler of a window.
    void reportHandlerFailure(const RunTimeError& error);

    AppState& state() { return state_; }

private:
    AppState& state_;
    ErrorDisplay& display_;
    ProcessControl& process_;
};

class EngineLink;

// Runs one of the front end's own statements in the engine; a failure is
// shown with failureMessage.
void runTool(EngineLink& engine, ErrorReporter& reporter, const QString& statement,
             const QString& failureMessage);

// Builds the handler's block into the state's error chain and raises again, as
// routines in the middle of a call chain do.
[[noreturn]] void raiseWithReport(AppState& state, ReportForm form, const QString& firstLine,
                                  const RunTimeError& error);

// Turns any failure escaping `body` into a RunTimeError.
template <typename Body> void asRunTimeError(Body&& body) {
    try {
        body();
    } catch (const RunTimeError&) {
        throw;
    } catch (const std::exception& e) {
        throw RunTimeError(RunTimeError::InternalError, QString::fromUtf8(e.what()));
    }
}

} // namespace vessa
