#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// Starts the built program as a user would, headless, with a home folder and
// settings of its own, and leaves it through the File menu.

namespace {

QProcessEnvironment programEnvironment(const QString& configDir) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    env.insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"), QStringLiteral("vessatestdriver"));
    env.insert(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral(VESSA_TEST_PLUGIN_DIR));
    env.insert(QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"), QStringLiteral("1"));
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), configDir);
    env.insert(QStringLiteral("VESSA47_DRIVER_SCRIPT"),
               QStringLiteral("wait:300;dump:ObjectTree;tab:1;tab:2;tab:0;exit"));
    env.remove(QStringLiteral("VESSA47_HOME")); // the program finds its home beside itself
    return env;
}

} // namespace

TEST(WholeProgram, ShowsTheDefaultWorldVisitsEachTabAndExitsThroughTheFileMenu) {
    QTemporaryDir config;
    QProcess program;
    program.setProcessEnvironment(programEnvironment(config.path()));
    program.start(QStringLiteral(VESSA_PROGRAM), {});
    ASSERT_TRUE(program.waitForStarted(10000));
    const bool finished = program.waitForFinished(60000);
    const QString errors = QString::fromLocal8Bit(program.readAllStandardError());
    if (!finished)
        program.kill();
    ASSERT_TRUE(finished) << errors.toStdString();
    EXPECT_EQ(program.exitStatus(), QProcess::NormalExit) << errors.toStdString();
    EXPECT_EQ(program.exitCode(), 0) << errors.toStdString();
    EXPECT_TRUE(errors.contains(QStringLiteral("driver: main window shown")))
        << errors.toStdString();
    EXPECT_FALSE(errors.contains(QStringLiteral("did not open"))) << errors.toStdString();
    EXPECT_FALSE(errors.contains(QStringLiteral("Traceback"))) << errors.toStdString();
    // The default world reached the object tree through the engine's records.
    for (const char* line : {"driver: ObjectTree: Scene\n", "driver: ObjectTree:   Camera\n",
                             "driver: ObjectTree:   Light\n", "driver: ObjectTree:   Ground\n"})
        EXPECT_TRUE(errors.contains(QString::fromLatin1(line))) << line << errors.toStdString();
}
