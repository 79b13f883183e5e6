#include "text/command_line_runner.h"

#include "gateway/engine_link.h"
#include "gateway/error_reporter.h"

namespace vessa {

QString CommandLineRunner::ExecuteCommandLine(const QString& line) {
    const QString trimmed = line.trimmed();
    // Not checked: a mistake in the line comes back through the engine's records.
    engine_.ExecuteCode(trimmed, QStringLiteral("<Command Line>"), QStringLiteral("single"));
    runTool(engine_, reporter_, QStringLiteral("PlaySystemSound('DoLine')"),
            QStringLiteral("MainForm:ExecuteCommandLine: Error playing sound."));
    history_.remember(trimmed);
    return trimmed;
}

} // namespace vessa
