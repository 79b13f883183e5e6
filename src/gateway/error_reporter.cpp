#include "gateway/error_reporter.h"

#include "gateway/engine_link.h"
#include "gateway/interpreter.h"

namespace vessa {

void ErrorReporter::CheckInterpreterResult(const QVariant& result, const QString& message) {
    if (isSuccessResult(result))
        return;
    display_.showModal(internalErrorContent(state_.VersionText, message, result.toString()));
    if (state_.ExitOnFatal)
        process_.endProcess(1);
}

void ErrorReporter::reportAtTop(ReportForm form, const QString& firstLine,
                                const RunTimeError& error) {
    state_.ErrorChain = reportBlock(form, firstLine, error, state_.ErrorLine, state_.ErrorChain);
    const QString chain = state_.ErrorChain;
    state_.ErrorChain.clear();
    CheckInterpreterResult(chain, QStringLiteral("Vessa47 - Error"));
}

void ErrorReporter::reportHandlerFailure(const RunTimeError& error) {
    reportAtTop(ReportForm::C, QStringLiteral("VB: ") + error.source() + QStringLiteral(" -Error"),
                error);
}

void runTool(EngineLink& engine, ErrorReporter& reporter, const QString& statement,
             const QString& failureMessage) {
    reporter.CheckInterpreterResult(engine.ExecuteCode(statement, QStringLiteral("<Tool>")),
                                    failureMessage);
}

void raiseWithReport(AppState& state, ReportForm form, const QString& firstLine,
                     const RunTimeError& error) {
    state.ErrorChain = reportBlock(form, firstLine, error, state.ErrorLine, state.ErrorChain);
    throw RunTimeError(error.number(), state.ErrorChain, error.source());
}

} // namespace vessa
