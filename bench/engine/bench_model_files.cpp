// Models made by other programs, as the tests make them (a robot of four
// boxes, a thousand meters tall, with a picture): from addobject through
// the gateway, as the front end calls it, to the first frame of the camera
// view that shows the object, at 640 x 480. Each reading is of a file the
// engine has not read before. Run under Xvfb:
//   xvfb-run -a -s "-screen 0 1280x1024x24 -noreset" build/bench/bench_model_files
#include "gateway/engine_registration.h"
#include "gateway/interpreter_registry.h"
#include "support/third_party_files.h"

#include <QApplication>
#include <QImage>
#include <QTemporaryDir>
#include <QWidget>
#include <benchmark/benchmark.h>

#include <filesystem>
#include <stdexcept>

namespace {

namespace samples = vessa::samples;

constexpr int kWidth = 640;
constexpr int kHeight = 480;
constexpr int kHostId = 7;

class ViewedWorld {
public:
    ViewedWorld() {
        host_.setProperty("vessaHostId", kHostId);
        host_.resize(kWidth, kHeight);
        host_.show();
        vessa::InterpreterRegistry registry;
        vessa::registerPythonEngine(registry, QStringLiteral(VESSA_PYTHON_DIR));
        engine_ = registry.create(vessa::kEngineProgId);
        call("imagenavigator", {kWidth, kHeight, kHostId});
        call("LoadWorld", {QStringLiteral(VESSA_HOME_DIR "/Worlds/Default")});
    }

    QVariant call(const char* method, const QVariantList& args = {}) {
        return engine_->call(QString::fromUtf8(method), args);
    }

    // The view's next frame, drawn now.
    QImage frame() {
        auto* view = host_.findChild<QWidget*>(QStringLiteral("ImageNavigator"));
        if (!view)
            throw std::runtime_error("the engine made no camera view");
        return view->grab().toImage();
    }

private:
    QWidget host_;
    std::unique_ptr<vessa::Interpreter> engine_;
};

// The robot's red nose, which faces the camera.
bool showsTheRobot(const QImage& image) {
    for (int y = 0; y < image.height(); y += 2) {
        for (int x = 0; x < image.width(); x += 2) {
            const QColor c = image.pixelColor(x, y);
            if (c.red() > 120 && c.green() < 50 && c.blue() < 50)
                return true;
        }
    }
    return false;
}

// Made once, and gone before the application is.
std::unique_ptr<ViewedWorld> viewed;

// A copy of the file made under a new name, so that it is read anew as a
// file a user picks is, added, and the frame that shows it drawn. Whether
// it showed the robot; the object is taken back out after the timing
// (when timed).
bool addAndShow(benchmark::State* timed, const std::filesystem::path& made, int copy) {
    const auto pause = [timed] {
        if (timed)
            timed->PauseTiming();
    };
    const auto resume = [timed] {
        if (timed)
            timed->ResumeTiming();
    };
    pause();
    const auto file =
        made.parent_path() / ("Robot" + std::to_string(copy) + made.extension().string());
    std::filesystem::copy_file(made, file);
    resume();
    const QVariant failure = viewed->call("addobject", {QString::fromStdString(file.string())});
    const QImage image = viewed->frame();
    pause();
    if (!failure.isNull())
        throw std::runtime_error(failure.toString().toStdString());
    viewed->call("ExecuteCode",
                 {QStringLiteral("undo()"), QStringLiteral("<Tool>"), QStringLiteral("exec")});
    viewed->call("PollForMiscDifferences");
    viewed->call("PollForTreeDifferences");
    resume();
    return showsTheRobot(image);
}

template <typename Write> void measure(benchmark::State& state, const char* ext, Write write) {
    if (!viewed)
        viewed = std::make_unique<ViewedWorld>();
    QTemporaryDir folder;
    const std::filesystem::path made = folder.filePath("Robot.").toStdString() + ext;
    write(samples::robot(500), folder.path().toStdString(), "Robot");
    // Once before the timing: the reader program and OpenGL start the first time.
    int shown = 0, copy = 0;
    addAndShow(nullptr, made, ++copy);
    for (auto _ : state)
        shown += addAndShow(&state, made, ++copy);
    state.counters["shown"] = shown == static_cast<int>(state.iterations()) ? 1 : 0;
}

void BM_ObjWithItsMaterialsAndPictureToFirstFrame(benchmark::State& state) {
    measure(state, "obj", samples::writeObj);
}
BENCHMARK(BM_ObjWithItsMaterialsAndPictureToFirstFrame)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void BM_3dsToFirstFrame(benchmark::State& state) {
    measure(state, "3ds", samples::write3ds);
}
BENCHMARK(BM_3dsToFirstFrame)->Unit(benchmark::kMillisecond)->UseRealTime();

void BM_GlbToFirstFrame(benchmark::State& state) {
    measure(state, "glb", samples::writeGlb);
}
BENCHMARK(BM_GlbToFirstFrame)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    QApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    viewed.reset();
    return 0;
}
