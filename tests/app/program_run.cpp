#include "app/program_run.h"

#include <QProcess>
#include <QTemporaryDir>

namespace vessa::testing {

// With settings kept in configFolder.
ProgramRun runProgram(const QString& program, const QString& script, const QString& configFolder) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    env.insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"), QStringLiteral("vessatestdriver"));
    env.insert(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral(VESSA_TEST_PLUGIN_DIR));
    env.insert(QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"), QStringLiteral("1"));
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), configFolder);
    // Work kept for recovery goes there too, away from the user's own.
    env.insert(QStringLiteral("XDG_DATA_HOME"), configFolder + QStringLiteral("/data"));
    env.insert(QStringLiteral("VESSA47_DRIVER_SCRIPT"), script);
    // The program finds its home and its engine beside itself.
    env.remove(QStringLiteral("VESSA47_HOME"));
    env.remove(QStringLiteral("PYTHONPATH"));
    QProcess process;
    process.setProcessEnvironment(env);
    process.start(program, {});
    ProgramRun run;
    if (!process.waitForStarted(10000))
        return run;
    run.finished = process.waitForFinished(60000);
    if (!run.finished)
        process.kill();
    run.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    run.errors = QString::fromLocal8Bit(process.readAllStandardError());
    return run;
}

// With settings of its own, which go when it ends.
ProgramRun runProgram(const QString& program, const QString& script) {
    QTemporaryDir config;
    return runProgram(program, script, config.path());
}

} // namespace vessa::testing
