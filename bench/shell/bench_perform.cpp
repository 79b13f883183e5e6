// From pressing Perform to the first frame of the running world, for a world of 1,000
// objects and 10,000 script lines, through the main window and the real engine under a
// display (Xvfb and Mesa): target under 150 ms.
//
// The first frame is the first one the camera view (the engine's QOpenGLWidget,
// "ImageNavigator") reports composed on screen, by its frameSwapped signal, after the
// engine's first step of the run. Between the press and that frame the program does
// what its main loop does: the engine's step, then the window's events.
//
// Run: xvfb-run -a -s "-screen 0 1280x1024x24 -noreset" build/bench/bench_perform
#include "gateway/engine_registration.h"
#include "gateway/interpreter_registry.h"
#include "shell/main_form.h"
#include "shell/render_form.h"
#include "support/scripted_engine.h"
#include "world/open_world.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QOpenGLWidget>
#include <QSettings>
#include <QTabBar>
#include <QTemporaryDir>
#include <QTimer>
#include <QToolButton>
#include <benchmark/benchmark.h>

using namespace vessa;

namespace {

constexpr int kObjects = 1000;
constexpr int kAnimations = 500;
constexpr int kLinesPerAnimation = 20;

struct BigRunningWorld {
    QTemporaryDir settings;
    AppState state;
    EngineLink engine;
    testing::RecordingErrorDisplay errors;
    testing::ThrowingProcessControl process;
    ErrorReporter reporter{state, errors, process};
    OpenWorld world{state, engine, reporter};
    RenderForm renderForm;
    std::unique_ptr<MainForm> form;
    QOpenGLWidget* view = nullptr;
    unsigned long frames = 0;
    QElapsedTimer sincePress;
    qint64 firstFrameNs = 0;
    QString problem;    // why the world could not be built, if it could not
    int userErrors = 0; // error boxes of the world's code, closed as they come
    QTimer errorBoxes;

    BigRunningWorld() {
        QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, settings.path());
        state.ExitOnFatal = false;
        InterpreterRegistry registry;
        registerPythonEngine(registry, QStringLiteral(VESSA_PYTHON_DIR));
        engine.attach(registry.create(kEngineProgId));
        call("LoadWorld", {QStringLiteral(VESSA_HOME_DIR "/Worlds/Default")});
        form = std::make_unique<MainForm>(state, engine, reporter, renderForm, world);
        form->resize(900, 700);
        form->show();
        QWidget* frame = form->OpeningSceneFrame();
        call("imagenavigator", {frame->width(), frame->height(), 1});
        // 1,000 cubes sharing their shape, on a grid in front of the camera.
        call("addobject", {QStringLiteral(VESSA_HOME_DIR "/Objects/Shapes/Cube.mdl")});
        const QVariant failure =
            engine.ExecuteCode(QStringLiteral("for i in range(%1):\n"
                                              "    c = Cube.Copy()\n"
                                              "    c.Move(Right, i % 40 - 20, Duration=0)\n"
                                              "    c.Move(Back, i // 40 * 2, Duration=0)\n")
                                   .arg(kObjects - 1),
                               QStringLiteral("<Tool>"));
        if (!failure.isNull())
            problem = failure.toString();
        settle();
        buildScript();
        auto* tabs = form->findChild<QTabBar*>(QStringLiteral("SwitchTab"));
        tabs->setCurrentIndex(1);
        view =
            renderForm.RenderFrame()->findChild<QOpenGLWidget*>(QStringLiteral("ImageNavigator"));
        if (view)
            QObject::connect(view, &QOpenGLWidget::frameSwapped, [this] {
                if (++frames == 1)
                    firstFrameNs = sincePress.nsecsElapsed();
            });
        QObject::connect(&errorBoxes, &QTimer::timeout, [this] {
            if (QWidget* box = QApplication::activeModalWidget()) {
                ++userErrors;
                box->close();
            }
        });
        errorBoxes.start(0);
        settle();
    }

    QVariant call(const char* method, const QVariantList& args = {}) {
        return engine.call(QString::fromLatin1(method), args);
    }

    // 500 animations of 20 lines each, over the cubes; the world's start row runs the first.
    void buildScript() {
        TreeControl& tree = world.script().TreeView1();
        TreeNode* root = tree.FirstRoot();
        for (int animation = 1; animation <= kAnimations; ++animation) {
            if (animation > 1) {
                const QString name = QStringLiteral("Action%1").arg(animation);
                root = tree.AddRoot(name.toLower(), name + QStringLiteral(" = DoInOrder"));
            }
            for (int line = 0; line < kLinesPerAnimation; ++line) {
                const QString cube = QStringLiteral("Cube%1").arg((animation * 7 + line) % 999 + 2);
                tree.Add(root, Relation::Child, QString(),
                         line % 2 ? cube + QStringLiteral(".Move(Up, 1, Duration=2, more...)")
                                  : cube + QStringLiteral(".Turn(Left, 1/4, more...)"));
            }
        }
    }

    // The main loop's rounds until the engine and the window have nothing left to do.
    void settle() {
        for (int round = 0; round < 1000; ++round) {
            call("Loop");
            QApplication::processEvents();
            call("flushout");
            world.HandleDifferences(call("PollForMiscDifferences"));
            world.HandleDifferences(call("PollForTreeDifferences"));
            if (call("GetLoopWait").toInt() < 0)
                break;
        }
        QApplication::processEvents();
    }

    // Milliseconds from the press to the first frame of the run; -1 if none came.
    double performToFirstFrame() {
        auto* perform = form->findChild<QToolButton*>(QStringLiteral("PerformScriptButton"));
        frames = 0;
        sincePress.start();
        perform->click();
        for (int round = 0; round < 1000 && frames == 0; ++round) {
            call("Loop");
            QApplication::processEvents();
        }
        return frames == 0 ? -1.0 : static_cast<double>(firstFrameNs) / 1e6;
    }

    void stop() {
        form->findChild<QToolButton*>(QStringLiteral("TrafficLightImage"))->click();
        settle();
    }
};

void BM_PerformToFirstFrame(benchmark::State& state) {
    if (QGuiApplication::platformName() != QLatin1String("xcb")) {
        state.SkipWithError("needs a display: run under xvfb-run");
        return;
    }
    BigRunningWorld world;
    if (!world.problem.isEmpty() || !world.view) {
        state.SkipWithError(world.view ? qPrintable(world.problem)
                                       : "the camera view did not come into the camera window");
        return;
    }
    for (auto _ : state) {
        const double ms = world.performToFirstFrame();
        if (ms < 0) {
            state.SkipWithError("no frame after Perform");
            break;
        }
        state.SetIterationTime(ms / 1e3);
        state.PauseTiming();
        world.stop();
        state.ResumeTiming();
    }
    state.counters["user_errors"] = world.userErrors;
    state.counters["internal_errors"] = static_cast<double>(world.errors.shown.size());
    state.counters["script_lines"] = world.world.script().TreeView1().Count() - kAnimations;
}
BENCHMARK(BM_PerformToFirstFrame)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(10);

} // namespace

int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsEmpty("DISPLAY"))
        qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
