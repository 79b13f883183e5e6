#include "core/app_state.h"
#include "core/engine_link.h"
#include "core/engine_registration.h"
#include "core/error_form.h"
#include "core/error_reporter.h"
#include "core/program.h"
#include "core/qt_shell.h"

#include <QApplication>

int main(int argc, char** argv) {
    // The engine's camera view moves between windows; shared contexts keep its
    // drawing state alive across the move.
    QApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Vessa47"));
    QApplication::setOrganizationName(QStringLiteral("Halden Institute"));

    const QString programDir = QCoreApplication::applicationDirPath();
    if (qEnvironmentVariableIsEmpty("VESSA47_HOME"))
        qputenv("VESSA47_HOME", (programDir + QStringLiteral("/home/")).toLocal8Bit());

    vessa::InterpreterRegistry registry;
    vessa::registerPythonEngine(registry, programDir + QStringLiteral("/python"));

    vessa::AppState state;
    vessa::EngineLink engine;
    vessa::QtProcessControl process;
    vessa::QtErrorDisplay errors([&] {
        try {
            return engine.isSet() ? engine.call(QStringLiteral("GetVersionText")).toString()
                                  : state.VersionText;
        } catch (const vessa::RunTimeError&) {
            return state.VersionText;
        }
    });
    vessa::ErrorReporter reporter(state, errors, process);
    vessa::QtShell shell(state, engine, reporter);
    vessa::Program program(state, engine, registry, shell, reporter, errors, process);
    return program.Main();
}
