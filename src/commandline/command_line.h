#pragma once

#include <QStringList>

#include <functional>
#include <memory>

namespace vessa {

class Interpreter;

// The program's face for people who handle many worlds (teachers, a class's shared
// folder, scripts): commands on world folders that need no window and no display.
//   generate WORLD     the world's Python, as saving the world writes it
//   check WORLD...     loads and runs each world, reports its errors
//   thumbnail WORLD... draws each world's picture through its camera
// and --help and --version.

// Exit codes.
enum CommandLineExit { ExitClean = 0, ExitWorldError = 1, ExitBadArguments = 2 };

// Whether the program was started for the command line rather than its windows: its
// first argument is a command (anything not starting with "-"), --help or --version.
// Other options are Qt's own, for the windows.
bool isCommandLineCall(const QString& firstArgument);

// Runs the command of arguments (as QCoreApplication gives them, the program first)
// with its output on the standard output and errors on the standard error; answers the
// exit code. makeEngine makes the engine for the commands that need it.
int runCommandLine(const QStringList& arguments,
                   const std::function<std::unique_ptr<Interpreter>()>& makeEngine);

} // namespace vessa
