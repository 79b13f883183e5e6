#include "shell/program.h"

#include "shell/recording_shell.h"
#include "support/recording_view.h"
#include "support/scripted_engine.h"
#include "world/open_world.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace vessa;
using namespace vessa::testing;

namespace {

// Start-up and the main loop with scripted windows, a scripted engine and the open
// world they show.
struct ProgramHarness {
    QTemporaryDir home;
    AppState state;
    EngineLink engine;
    InterpreterRegistry registry;
    RecordingShell shell;
    RecordingErrorDisplay display;
    ThrowingProcessControl process;
    ErrorReporter reporter{state, display, process};
    OpenWorld world{state, engine, reporter};
    RecordingView view;
    ScriptedInterpreter::Log log;
    QString createdAs;
    ScriptedInterpreter* scripted = nullptr; // owned by the engine link
    std::function<void(ScriptedInterpreter&)> configure = [](ScriptedInterpreter&) {
    };
    Program program{state, engine, registry, world, shell, reporter, display, process};

    ProgramHarness() {
        world.attachView(&view);
        world.status().addObserver(view);
        for (const QString& progId : {kEngineProgId, kFallbackEngineProgId})
            registry.add(progId, [this, progId]() -> std::unique_ptr<Interpreter> {
                auto made = std::make_unique<ScriptedInterpreter>(log);
                made->answers = {
                    {QStringLiteral("ReadRegistryHomeDir"), home.path() + QLatin1Char('/')},
                    {QStringLiteral("GetVersionText"), QStringLiteral("9.9")},
                    {QStringLiteral("IsThereADefaultCamera"), true},
                    {QStringLiteral("ScreenWidth"), 1024},
                    {QStringLiteral("ScreenHeight"), 768},
                    {QStringLiteral("PollForMiscDifferences"), QVariantList()},
                    {QStringLiteral("PollForTreeDifferences"), QVariantList()},
                    {QStringLiteral("GetLoopWait"), -1},
                };
                configure(*made);
                createdAs = progId;
                scripted = made.get();
                return made;
            });
    }

    QVariantList argumentsOf(const QString& method) const {
        const qsizetype at = log.calls.indexOf(method);
        return at < 0 ? QVariantList() : log.arguments[at];
    }

    // Start-up must end the process; returns its exit code.
    int exitCodeOfStartUp() {
        try {
            program.startUp();
        } catch (const ProcessEnded& ended) {
            return ended.exitCode;
        }
        ADD_FAILURE() << "start-up went on";
        return -1;
    }
};

} // namespace

TEST(StartUp, RunsItsStepsInOrderAndEntersTheLoopReady) {
    ProgramHarness h;
    h.program.startUp();

    const QStringList expected = {QStringLiteral("CheckForDirectX"),
                                  QStringLiteral("Initialize"),
                                  QStringLiteral("ScreenWidth"),
                                  QStringLiteral("ScreenHeight"),
                                  QStringLiteral("ReadRegistryHomeDir"),
                                  QStringLiteral("SetHomeDirectory"),
                                  QStringLiteral("InitializeSound"),
                                  QStringLiteral("ExecuteCode"),
                                  QStringLiteral("GetVersionText"),
                                  QStringLiteral("ExecuteCode"),
                                  QStringLiteral("LoadWorld"),
                                  QStringLiteral("imagenavigator"),
                                  QStringLiteral("IsThereADefaultCamera"),
                                  QStringLiteral("PreserveDefaultCameraPOV"),
                                  QStringLiteral("SetIsDirty"),
                                  QStringLiteral("ExecuteCode"),
                                  QStringLiteral("GetVersionText"),
                                  QStringLiteral("GetHomeDirectory"),
                                  QStringLiteral("SetIsDirty")};
    EXPECT_EQ(h.log.calls, expected);
    EXPECT_EQ(h.createdAs, kEngineProgId);
    EXPECT_EQ(h.log.arguments[7].first().toString(), QStringLiteral("import __builtin__"));
    EXPECT_EQ(h.log.arguments[9].first().toString(),
              QStringLiteral("Vessa._SetDefaultParentWindowHwnd(7)"));
    EXPECT_EQ(h.argumentsOf(QStringLiteral("LoadWorld")).first().toString(),
              h.home.path() + QStringLiteral("/Worlds/Default"));
    // The camera view is made in pixels from the panel's twips.
    EXPECT_EQ(h.argumentsOf(QStringLiteral("imagenavigator")), (QVariantList{400, 300, 7}));
    EXPECT_EQ(h.state.ScreenWidthTwips, 1024 * 15);
    EXPECT_EQ(h.shell.caption, QStringLiteral("Vessa47 [9.9]"));
    EXPECT_EQ(h.view.status, QStringList{QStringLiteral("named ")}); // the default has no name
    EXPECT_LT(h.shell.events.indexOf(QStringLiteral("createMainForm")),
              h.shell.events.indexOf(QStringLiteral("unloadSplash")));
    EXPECT_EQ(h.shell.idleInterval, 1);
    EXPECT_FALSE(h.state.ExitOnFatal);
    EXPECT_TRUE(h.state.RunEngineLoop);
    EXPECT_EQ(h.state.ErrorLine, 92);
    EXPECT_TRUE(h.display.shown.isEmpty());
}

TEST(StartUp, FallsBackToTheSecondProgIdAndEndsWhenNeitherExists) {
    ProgramHarness fallback;
    fallback.registry.remove(kEngineProgId);
    fallback.program.startUp();
    EXPECT_EQ(fallback.createdAs, kFallbackEngineProgId);
    EXPECT_TRUE(fallback.display.shown.isEmpty());

    // Neither: the program ends, and says why in a box, not only on standard error.
    ProgramHarness none;
    none.registry.remove(kEngineProgId);
    none.registry.remove(kFallbackEngineProgId);
    EXPECT_EQ(none.exitCodeOfStartUp(), 1);
    EXPECT_TRUE(none.log.calls.isEmpty());
    ASSERT_EQ(none.display.shown.size(), 1);
    const QString report = none.display.shown[0].labelText;
    EXPECT_TRUE(
        report.contains(QStringLiteral("VB:MainModule:Main() Error Creating COM server object")));
    EXPECT_TRUE(report.contains(kEngineProgId));
    EXPECT_TRUE(report.contains(kFallbackEngineProgId));
}

TEST(StartUp, FailedCallEndsTheProcessBeforeTheEngineIsSetUpAndNotAfter) {
    ProgramHarness early;
    early.configure = [](ScriptedInterpreter& e) {
        e.answers[QStringLiteral("CheckForDirectX")] = QStringLiteral("no OpenGL");
    };
    EXPECT_EQ(early.exitCodeOfStartUp(), 1);
    ASSERT_EQ(early.display.shown.size(), 1);
    EXPECT_TRUE(early.display.shown[0].labelText.contains(early.state.DirectXMessage));
    EXPECT_TRUE(early.display.shown[0].labelText.endsWith(QStringLiteral("no OpenGL")));

    ProgramHarness late;
    late.configure = [](ScriptedInterpreter& e) {
        e.answers[QStringLiteral("SetHomeDirectory")] = QStringLiteral("no such folder");
    };
    late.program.startUp();
    ASSERT_EQ(late.display.shown.size(), 1);
    EXPECT_TRUE(late.display.shown[0].labelText.contains(
        QStringLiteral("MainModule:Main choked on SetHomeDirectory.")));
    EXPECT_EQ(late.shell.caption, QStringLiteral("Vessa47 [9.9]"));
}

TEST(StartUp, EngineRaisingAfterSetUpIsReportedAndStartUpGoesOn) {
    ProgramHarness h;
    h.configure = [](ScriptedInterpreter& e) {
        e.failures[QStringLiteral("InitializeSound")] = QStringLiteral("no sound device");
    };
    h.program.startUp();
    ASSERT_EQ(h.display.shown.size(), 1);
    const QString label = h.display.shown[0].labelText;
    EXPECT_TRUE(label.contains(QStringLiteral("Vessa47 - Error")));
    EXPECT_TRUE(label.contains(
        QStringLiteral("VB:MainModule:Main() Error after setting up COM server object")));
    EXPECT_TRUE(label.contains(QStringLiteral("<ErrorLine> 44")));
    EXPECT_TRUE(h.state.ErrorChain.isEmpty());
    EXPECT_TRUE(h.log.calls.contains(QStringLiteral("SetIsDirty")));
}

TEST(StartUp, MissingCameraIsReportedOnceAndStartUpGoesOn) {
    ProgramHarness h;
    h.configure = [](ScriptedInterpreter& e) {
        e.answers[QStringLiteral("IsThereADefaultCamera")] = false;
    };
    h.program.startUp();
    ASSERT_EQ(h.display.shown.size(), 1);
    EXPECT_TRUE(h.display.shown[0].labelText.contains(
        QStringLiteral("VB MAIN: Default camera not detected after default scene load. ")));
    EXPECT_EQ(h.shell.caption, QStringLiteral("Vessa47 [9.9]"));
}

TEST(StartUp, HelpWindowOpensOnlyWhenWantedAndThePageExists) {
    ProgramHarness without;
    without.shell.helpWanted = true;
    without.program.startUp();
    EXPECT_TRUE(without.shell.helpPages.isEmpty());
    EXPECT_TRUE(without.display.shown.isEmpty());

    ProgramHarness with;
    with.shell.helpWanted = true;
    QDir(with.home.path()).mkpath(QStringLiteral("Worlds/Default"));
    QFile page(with.home.path() + QStringLiteral("/Worlds/Default/World_VessaHelp.html"));
    ASSERT_TRUE(page.open(QIODevice::WriteOnly));
    page.close();
    with.program.startUp();
    EXPECT_EQ(with.shell.helpPages, QStringList{page.fileName()});
}

TEST(StartUp, AnEngineThatCannotKeepTheCameraPointOfViewYetShowsNoError) {
    ProgramHarness h;
    h.configure = [](ScriptedInterpreter& e) {
        e.handlers[QStringLiteral("PreserveDefaultCameraPOV")] = [](const QVariantList&) {
            return QVariant(QStringLiteral("PreserveDefaultCameraPOV is not available yet."));
        };
    };
    h.program.startUp();
    EXPECT_TRUE(h.display.shown.isEmpty());
    EXPECT_TRUE(h.state.RunEngineLoop);
}

TEST(StartUp, LateFailureGoesBackToTheCameraViewOnceThenEnds) {
    ProgramHarness once;
    int preserveCalls = 0;
    once.configure = [&](ScriptedInterpreter& e) {
        e.handlers[QStringLiteral("PreserveDefaultCameraPOV")] = [&](const QVariantList&) {
            if (++preserveCalls == 1)
                throw RunTimeError(RunTimeError::AutomationError, QStringLiteral("first time"));
            return QVariant();
        };
    };
    once.program.startUp();
    EXPECT_EQ(once.log.calls.count(QStringLiteral("imagenavigator")), 2);
    EXPECT_EQ(preserveCalls, 2);
    EXPECT_TRUE(once.display.shown.isEmpty());

    ProgramHarness twice;
    twice.configure = [](ScriptedInterpreter& e) {
        e.failures[QStringLiteral("PreserveDefaultCameraPOV")] = QStringLiteral("always");
    };
    EXPECT_EQ(twice.exitCodeOfStartUp(), 1);
    ASSERT_EQ(twice.display.shown.size(), 1);
    const QString report = twice.display.shown[0].labelText;
    EXPECT_TRUE(report.contains(QStringLiteral("Run-time error '440':")));
    EXPECT_TRUE(report.contains(QStringLiteral("<DESCRIPTION> always")));
    EXPECT_TRUE(report.contains(QStringLiteral("<ErrorLine> 62")));
}

TEST(StartUp, DisplayWithTooFewColoursEndsBeforeAnyEngineExists) {
    ProgramHarness h;
    h.shell.bitsPerPixel = 4;
    EXPECT_EQ(h.exitCodeOfStartUp(), 1);
    EXPECT_TRUE(h.createdAs.isEmpty());
    ASSERT_EQ(h.display.shown.size(), 1);
    EXPECT_TRUE(h.display.shown[0].labelText.contains(QStringLiteral("has4 bits per pixel")));
}

TEST(MainLoop, OneRoundHandsThePollsToTheWorldAndSkipsTheTreePollWhileTheTreeIsHidden) {
    ProgramHarness h;
    h.program.startUp();
    h.log.calls.clear();
    EXPECT_TRUE(h.program.runLoopRound());
    EXPECT_EQ(h.log.calls,
              (QStringList{QStringLiteral("getisdirty"), QStringLiteral("Loop"),
                           QStringLiteral("flushout"), QStringLiteral("PollForMiscDifferences"),
                           QStringLiteral("GetLoopWait")}));

    h.scripted->answers[QStringLiteral("PollForMiscDifferences")] =
        QVariantList{QVariant(QVariantList{QStringLiteral("output"), QStringLiteral("hi")})};
    h.scripted->answers[QStringLiteral("PollForTreeDifferences")] =
        QVariantList{QVariant(QVariantList{QStringLiteral("objectconstruct"), QStringLiteral("3"),
                                           QStringLiteral("scene")}),
                     QVariant(QVariantList{QStringLiteral("objectnamechange"), QStringLiteral("3"),
                                           QString(), QStringLiteral("Scene")})};
    h.program.runLoopRound();
    EXPECT_EQ(h.view.output, QStringList{QStringLiteral("hi")});
    EXPECT_EQ(h.world.trees().ObjectTree.Count(), 0);

    h.shell.treeVisible = true;
    h.log.calls.clear();
    h.program.runLoopRound();
    EXPECT_TRUE(h.log.calls.contains(QStringLiteral("PollForTreeDifferences")));
    ASSERT_EQ(h.world.trees().ObjectTree.Count(), 1);
    EXPECT_EQ(h.world.trees().ObjectTree.FirstRoot()->Text(), QStringLiteral("Scene"));
}

TEST(MainLoop, SleepsOnlyWhenTheRoundBroughtNothingAndTheEngineIsIdle) {
    ProgramHarness h;
    h.program.startUp();
    h.program.runLoopRound(); // an idle engine: the next pump may sleep
    h.program.runLoopRound();
    EXPECT_GT(h.shell.waits.last(), 0);

    h.scripted->answers[QStringLiteral("PollForMiscDifferences")] =
        QVariantList{QVariant(QVariantList{QStringLiteral("output"), QStringLiteral("hi")})};
    h.program.runLoopRound(); // records came: the next pump must not sleep
    h.program.runLoopRound();
    EXPECT_EQ(h.shell.waits.last(), 0);

    h.scripted->answers[QStringLiteral("PollForMiscDifferences")] = QVariantList();
    h.scripted->answers[QStringLiteral("GetLoopWait")] = 0; // animations running
    h.program.runLoopRound();
    h.program.runLoopRound();
    EXPECT_EQ(h.shell.waits.last(), 0);
}

TEST(MainLoop, FailureIsReportedAndTheRoundGoesOn) {
    ProgramHarness h;
    h.program.startUp();
    h.scripted->failures[QStringLiteral("Loop")] = QStringLiteral("engine step broke");
    h.log.calls.clear();
    EXPECT_TRUE(h.program.runLoopRound());
    ASSERT_EQ(h.display.shown.size(), 1);
    EXPECT_TRUE(h.display.shown[0].labelText.contains(
        QStringLiteral("VB:MainModule:Main() Error while running main loop")));
    EXPECT_TRUE(h.display.shown[0].labelText.contains(QStringLiteral("<ErrorLine> 94")));
    EXPECT_TRUE(h.log.calls.contains(QStringLiteral("PollForMiscDifferences")));
}

TEST(MainLoop, EndsAsSoonAsTheEngineIsReleasedDuringThePump) {
    ProgramHarness h;
    h.shell.onPump = [&] {
        h.engine.release();
    };
    h.log.calls.clear();
    EXPECT_EQ(h.program.Main(), 0);
    EXPECT_FALSE(h.log.calls.contains(QStringLiteral("flushout")));
}
