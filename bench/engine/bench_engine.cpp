// The engine's speed with big worlds, driven through the gateway as the
// front end drives it: a thousand and ten thousand objects, as many running
// animations; and a copy made in a world of ten objects and of ten thousand.
#include "gateway/engine_registration.h"
#include "gateway/interpreter_registry.h"

#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <map>
#include <memory>
#include <stdexcept>

namespace {

constexpr int kObjects = 1000;
constexpr int kManyObjects = 10000;
constexpr int kObjectsOfTheDefaultWorld = 3; // camera, light and ground

// The default world, with copies of its ground added.
class BigWorld {
public:
    explicit BigWorld(int copies) {
        vessa::InterpreterRegistry registry;
        vessa::registerPythonEngine(registry, QStringLiteral(VESSA_PYTHON_DIR));
        engine_ = registry.create(vessa::kEngineProgId);
        call(QStringLiteral("LoadWorld"), {QStringLiteral(VESSA_HOME_DIR "/Worlds/Default")});
        run(QStringLiteral("for _ in range(%1): Ground.Copy()").arg(copies));
        drainRecords();
    }

    QVariant call(const QString& method, const QVariantList& args = {}) {
        return engine_->call(method, args);
    }

    void run(const QString& code) {
        const QVariant failure = call(QStringLiteral("ExecuteCode"),
                                      {code, QStringLiteral("<Tool>"), QStringLiteral("exec")});
        if (!failure.isNull() && !failure.toString().isEmpty())
            throw std::runtime_error(failure.toString().toStdString());
    }

    void drainRecords() {
        call(QStringLiteral("PollForMiscDifferences"));
        call(QStringLiteral("PollForTreeDifferences"));
    }

private:
    std::unique_ptr<vessa::Interpreter> engine_;
};

// A world of that many objects, made once.
BigWorld& worldOf(int objects) {
    static std::map<int, std::unique_ptr<BigWorld>> worlds;
    auto& world = worlds[objects];
    if (!world)
        world = std::make_unique<BigWorld>(objects - kObjectsOfTheDefaultWorld);
    return *world;
}

BigWorld& world() {
    return worldOf(kObjects);
}

BigWorld& defaultWorld() {
    static BigWorld plain(0);
    return plain;
}

// The first picture a process draws starts OpenGL; nothing drawn before it,
// it comes first.
void BM_FirstPictureOfTheDefaultWorld(benchmark::State& state) {
    BigWorld& plain = defaultWorld();
    QTemporaryDir folder;
    for (auto _ : state)
        plain.call(QStringLiteral("SaveScene"), {folder.path()});
}
BENCHMARK(BM_FirstPictureOfTheDefaultWorld)->Iterations(1)->Unit(benchmark::kMillisecond);

// One step of the engine with every object of the world moving at once.
void BM_LoopWithAnimations(benchmark::State& state) {
    BigWorld& w = worldOf(static_cast<int>(state.range(0)));
    w.run(QStringLiteral("for o in Vessa.GetDefaultScene().GetChildren(All):\n"
                         "    o.Move(Forward, 100, Duration=100000)\n"));
    w.call(QStringLiteral("Loop"));
    for (auto _ : state)
        w.call(QStringLiteral("Loop"));
    w.run(QStringLiteral("RestoreHandbasket()"));
    w.drainRecords();
}
BENCHMARK(BM_LoopWithAnimations)->Arg(kObjects)->Arg(kManyObjects)->Unit(benchmark::kMicrosecond);

// A copy of the ground, as the object menu makes it, in a small world and a
// big one; undone between, so that the world keeps its size.
void BM_CopyAnObject(benchmark::State& state) {
    BigWorld& w = worldOf(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        w.run(QStringLiteral("Ground.Copy()"));
        state.PauseTiming();
        w.run(QStringLiteral("undo()"));
        w.drainRecords();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_CopyAnObject)->Arg(10)->Arg(kManyObjects)->Unit(benchmark::kMicrosecond);

void BM_PreserveHandbasket(benchmark::State& state) {
    BigWorld& w = world();
    for (auto _ : state)
        w.run(QStringLiteral("PreserveHandbasket()"));
}
BENCHMARK(BM_PreserveHandbasket)->Unit(benchmark::kMillisecond);

void BM_RestoreHandbasket(benchmark::State& state) {
    BigWorld& w = world();
    w.run(QStringLiteral("PreserveHandbasket()"));
    for (auto _ : state) {
        w.run(QStringLiteral("RestoreHandbasket()"));
        state.PauseTiming();
        w.drainRecords();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_RestoreHandbasket)->Unit(benchmark::kMillisecond);

void BM_SaveScene(benchmark::State& state) {
    BigWorld& w = world();
    QTemporaryDir folder;
    for (auto _ : state)
        w.call(QStringLiteral("SaveScene"), {folder.path()});
}
BENCHMARK(BM_SaveScene)->Unit(benchmark::kMillisecond);

// The default world saved again with the picture it carries, drawn
// offscreen where no camera view exists (headless when run without a
// display); BM_FirstPictureOfTheDefaultWorld is the first save of a process.
void BM_SaveDefaultWorldWithItsPicture(benchmark::State& state) {
    BigWorld& plain = defaultWorld();
    QTemporaryDir folder;
    for (auto _ : state)
        plain.call(QStringLiteral("SaveScene"), {folder.path()});
}
BENCHMARK(BM_SaveDefaultWorldWithItsPicture)->Unit(benchmark::kMillisecond);

// The world saved, then loaded again and again: each load replaces a world
// as big (the first also the objects other benchmarks made and undid).
void BM_LoadWorld(benchmark::State& state) {
    BigWorld& w = worldOf(static_cast<int>(state.range(0)));
    QTemporaryDir folder;
    w.call(QStringLiteral("SaveScene"), {folder.path()});
    w.call(QStringLiteral("LoadWorld"), {folder.path()});
    w.drainRecords();
    for (auto _ : state) {
        w.call(QStringLiteral("LoadWorld"), {folder.path()});
        state.PauseTiming();
        w.drainRecords();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_LoadWorld)
    ->Arg(kObjects)
    ->Arg(kManyObjects)
    ->MinTime(2.0)
    ->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
