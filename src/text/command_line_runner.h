#pragma once

#include "text/command_history.h"

#include <QString>

namespace vessa {

class EngineLink;
class ErrorReporter;

// Runs the lines typed on the command line in the scene at once, as at a prompt (the
// engine prints the value of an expression), and keeps their history. What the line
// does wrong, and code that runs too long, the engine tells the user as a mistake in
// their code; the engine's watchdog stops a line that never ends.
class CommandLineRunner {
public:
    CommandLineRunner(EngineLink& engine, ErrorReporter& reporter)
        : engine_(engine), reporter_(reporter) {}

    // The one way a line is run. Answers the line as it ran, trimmed.
    QString ExecuteCommandLine(const QString& line);
    CommandHistory& history() { return history_; }

private:
    EngineLink& engine_;      // Not owned.
    ErrorReporter& reporter_; // Not owned.
    CommandHistory history_;
};

// The words of the command line's help boxes.
inline const QString CommandLineHelpTitle = QStringLiteral("Vessa47 - COMMAND LINE");
inline const QString CommandLineHelpText =
    QStringLiteral("Type Vessa commands into the this text box and press 'Enter' or click the "
                   "GO BUTTON to run them.");
inline const QString GoButtonHelpTitle = QStringLiteral("Vessa - GO BUTTON");
inline const QString GoButtonHelpText =
    QStringLiteral("The GO button executes the line of code in the command box (the box to the "
                   "left of the GO button).You can drag objects over the command box to change "
                   "this line of code.");

} // namespace vessa
