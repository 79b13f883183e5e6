#include "commandline/command_line.h"
#include "gateway/app_state.h"
#include "gateway/engine_link.h"
#include "gateway/engine_registration.h"
#include "gateway/error_reporter.h"
#include "shell/error_form.h"
#include "shell/program.h"
#include "shell/qt_shell.h"
#include "world/open_world.h"

#include <QApplication>

namespace {

void nameTheProgram() {
    QCoreApplication::setApplicationName(QStringLiteral("Vessa47"));
    QCoreApplication::setOrganizationName(QStringLiteral("Halden Institute"));
    QCoreApplication::setApplicationVersion(QStringLiteral(VESSA_VERSION));
}

// The program finds its home folder and its engine beside itself.
QString prepareProgramDir() {
    const QString programDir = QCoreApplication::applicationDirPath();
    if (qEnvironmentVariableIsEmpty("VESSA47_HOME"))
        qputenv("VESSA47_HOME", (programDir + QStringLiteral("/home/")).toLocal8Bit());
    return programDir;
}

// The commands on world folders: no window, no splash, no display.
int runCommand(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    nameTheProgram();
    const QString programDir = prepareProgramDir();
    vessa::InterpreterRegistry registry;
    vessa::registerPythonEngine(registry, programDir + QStringLiteral("/python"));
    return vessa::runCommandLine(app.arguments(),
                                 [&registry] { return registry.create(vessa::kEngineProgId); });
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 1 && vessa::isCommandLineCall(QString::fromLocal8Bit(argv[1])))
        return runCommand(argc, argv);

    // The engine's camera view moves between windows; shared contexts keep its
    // drawing state alive across the move.
    QApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);
    nameTheProgram();
    const QString programDir = prepareProgramDir();

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
    vessa::OpenWorld world(state, engine, reporter);
    vessa::QtShell shell(state, engine, reporter, world);
    vessa::Program program(state, engine, registry, world, shell, reporter, errors, process);
    return program.Main();
}
