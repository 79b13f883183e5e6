#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

// Starts the built program as a user would, headless, with a home folder and
// settings of its own, driven by the test driver plugin.

namespace {

struct ProgramRun {
    bool finished = false;
    int exitCode = -1;
    QString errors; // standard error, where the driver reports
};

// With settings kept in configFolder.
ProgramRun runProgram(const QString& program, const QString& script, const QString& configFolder) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    env.insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"), QStringLiteral("vessatestdriver"));
    env.insert(QStringLiteral("QT_PLUGIN_PATH"), QStringLiteral(VESSA_TEST_PLUGIN_DIR));
    env.insert(QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"), QStringLiteral("1"));
    env.insert(QStringLiteral("XDG_CONFIG_HOME"), configFolder);
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

} // namespace

TEST(WholeProgram, ShowsTheDefaultWorldVisitsEachTabAndExitsThroughTheFileMenu) {
    const ProgramRun run =
        runProgram(QStringLiteral(VESSA_PROGRAM),
                   QStringLiteral("wait:300;dump:ObjectTree;tab:1;tab:2;tab:0;exit"));
    const std::string errors = run.errors.toStdString();
    ASSERT_TRUE(run.finished) << errors;
    EXPECT_EQ(run.exitCode, 0) << errors;
    EXPECT_TRUE(run.errors.contains(QStringLiteral("driver: main window shown"))) << errors;
    EXPECT_FALSE(run.errors.contains(QStringLiteral("did not open"))) << errors;
    EXPECT_FALSE(run.errors.contains(QStringLiteral("Traceback"))) << errors;
    EXPECT_FALSE(run.errors.contains(QStringLiteral("driver: ErrorForm"))) << errors;
    // The default world reached the object tree through the engine's records.
    for (const char* line : {"driver: ObjectTree: Scene\n", "driver: ObjectTree:   Camera\n",
                             "driver: ObjectTree:   Light\n", "driver: ObjectTree:   Ground\n"})
        EXPECT_TRUE(run.errors.contains(QString::fromLatin1(line))) << line << errors;
}

TEST(WholeProgram, AScreenReaderHearsTheTitleAndTheWorldTabsAndTheKeyboardSwitchesThem) {
    const ProgramRun run =
        runProgram(QStringLiteral(VESSA_PROGRAM),
                   QStringLiteral("reader:MainForm;reader:SwitchTab;key:Ctrl+Tab;reader:SwitchTab;"
                                  "reader:RenderForm;exit"));
    const std::string errors = run.errors.toStdString();
    ASSERT_TRUE(run.finished) << errors;
    EXPECT_EQ(run.exitCode, 0) << errors;
    // The name is the title, with the engine's version in it.
    EXPECT_TRUE(run.errors.contains(QStringLiteral("driver: reader: MainForm window \"Vessa47 [")))
        << errors;
    for (const char* line :
         {"driver: reader: SwitchTab page-tab-list \"World tabs\" selected \"Opening Scene\"\n",
          "driver: reader: SwitchTab page-tab-list \"World tabs\" selected \"Animations\"\n",
          "driver: reader: RenderForm window \"Vessa - Camera\"\n"})
        EXPECT_TRUE(run.errors.contains(QString::fromLatin1(line))) << line << errors;
}

TEST(WholeProgram, WithoutAnEngineItSaysWhyInABoxAndEnds) {
    // The program alone in a folder: no engine package beside it under either name.
    QTemporaryDir alone;
    const QString program = alone.path() + QStringLiteral("/vessa47");
    ASSERT_TRUE(QFile::copy(QStringLiteral(VESSA_PROGRAM), program));
    const ProgramRun run = runProgram(program, QStringLiteral("exit"));
    const std::string errors = run.errors.toStdString();
    ASSERT_TRUE(run.finished) << errors;
    EXPECT_EQ(run.exitCode, 1) << errors;
    EXPECT_FALSE(run.errors.contains(QStringLiteral("driver: main window shown"))) << errors;
    const qsizetype box = run.errors.indexOf(QStringLiteral("driver: ErrorForm: "));
    ASSERT_GE(box, 0) << errors;
    const QString shown = run.errors.mid(box).section(QLatin1Char('\n'), 0, 0);
    EXPECT_TRUE(shown.contains(QStringLiteral("Please copy this message to the clipboard (with "
                                              "the button to the right)")))
        << shown.toStdString();
    EXPECT_FALSE(shown.contains(QStringLiteral("Windows"))) << shown.toStdString();
    EXPECT_TRUE(shown.contains(QStringLiteral("Error Creating COM server object")))
        << shown.toStdString();
    EXPECT_TRUE(shown.contains(QStringLiteral("Vessia.Interpreter"))) << shown.toStdString();
}

TEST(WholeProgram, WindowsAndDividersComeBackWhereTheUserLeftThemAfterARestart) {
    QTemporaryDir config;
    const ProgramRun first =
        runProgram(QStringLiteral(VESSA_PROGRAM),
                   QStringLiteral("place:MainForm,40,30,700,560;place:RenderForm,460,50,300,260;"
                                  "divide:SplitterV,0.3;divide:SplitterH1,0.7;wait:100;exit"),
                   config.path());
    ASSERT_TRUE(first.finished) << first.errors.toStdString();
    ASSERT_EQ(first.exitCode, 0) << first.errors.toStdString();
    const ProgramRun second = runProgram(
        QStringLiteral(VESSA_PROGRAM),
        QStringLiteral("where:MainForm;where:RenderForm;where:SplitterV;where:SplitterH1;exit"),
        config.path());
    const std::string errors = second.errors.toStdString();
    ASSERT_TRUE(second.finished) << errors;
    for (const char* line :
         {"driver: where: MainForm 40 30 700 560\n", "driver: where: RenderForm 460 50 300 260\n"})
        EXPECT_TRUE(second.errors.contains(QString::fromLatin1(line))) << line << errors;
    // A divider's share comes back to within a pixel or two of the panes' sizes.
    const auto share = [&](const QString& divider) {
        const QString tag = QStringLiteral("driver: where: ") + divider + QLatin1Char(' ');
        const qsizetype at = second.errors.indexOf(tag);
        return at < 0
                   ? -1.0
                   : second.errors.mid(at + tag.size()).section(QLatin1Char('\n'), 0, 0).toDouble();
    };
    EXPECT_NEAR(share(QStringLiteral("SplitterV")), 0.3, 0.015) << errors;
    EXPECT_NEAR(share(QStringLiteral("SplitterH1")), 0.7, 0.015) << errors;
}
