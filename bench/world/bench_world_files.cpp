// A world of 1,000 objects and 10,000 script lines (500 animations of 20 lines, 1,000
// event rows, 1,000 lines of code) saved into its folder and opened again through the
// File commands and the real engine, front end and engine together. Targets: a save
// under 200 ms, a load under 300 ms, and no step of an autosave holding the user
// interface for more than 16 ms.
#include "world/autosave.h"
#include "world/world_folder.h"

#include "world/world_on_engine.h"

#include <QCoreApplication>
#include <QElapsedTimer>

#include <benchmark/benchmark.h>

using namespace vessa;
using namespace vessa::testing;

namespace {

struct BigWorld {
    QTemporaryDir dir;
    QString folder = dir.filePath(QStringLiteral("Big"));
    std::unique_ptr<WorldOnEngine> w;

    BigWorld() {
        qputenv("VESSA47_HOME", VESSA_HOME_DIR "/");
        qputenv("PYTHONPATH", VESSA_PYTHON_DIR);
        w = std::make_unique<WorldOnEngine>();
        w->run(QStringLiteral("for _ in range(1000): Ground.Copy()"));
        TreeControl& tree = w->world.script().TreeView1();
        for (int animation = 0; animation < 500; ++animation) {
            const QString name = QStringLiteral("Walk%1").arg(animation + 1);
            TreeNode* root = tree.AddRoot(name.toLower(), name + QStringLiteral(" = DoInOrder"));
            for (int line = 0; line < 20; ++line)
                tree.Add(root, Relation::Child, QString(),
                         line % 2 ? QStringLiteral("Ground.Move(Forward, 1, Duration=2, more...)")
                                  : QStringLiteral("Camera.Turn(Left, 1/4, more...)"));
        }
        for (int row = 0; row < 1000; ++row)
            w->world.events().addRow(QStringLiteral("LeftMouseButtonDown"),
                                     QStringLiteral("AnyWhere"),
                                     QStringLiteral("Walk%1").arg(row % 500 + 1));
        QStringList code;
        for (int line = 0; line < 1000; ++line)
            code << QStringLiteral("print('line %1 of the code box')").arg(line);
        w->world.ArbitraryCodeBox().Text = code.join(QStringLiteral("\r\n"));
        QDir().mkdir(folder);
        w->poll();
    }
};

BigWorld& big() {
    static BigWorld world;
    return world;
}

void BM_SaveBigWorld(benchmark::State& state) {
    BigWorld& b = big();
    for (auto _ : state)
        if (b.w->files.SaveWorld(b.folder) != kYesSave)
            state.SkipWithError("the world was not saved");
}
BENCHMARK(BM_SaveBigWorld)->Unit(benchmark::kMillisecond)->Iterations(5);

// From the folder to the scene in the engine and the trees, script, rows and code in
// the front end.
void BM_LoadBigWorld(benchmark::State& state) {
    BigWorld& b = big();
    if (!isWorldFolder(b.folder) && b.w->files.SaveWorld(b.folder) != kYesSave)
        state.SkipWithError("the world was not saved");
    for (auto _ : state) {
        if (!b.w->files.LoadWorld(b.folder, false))
            state.SkipWithError("the world was not opened");
        b.w->poll();
    }
    state.counters["script lines"] = static_cast<double>(b.w->world.script().TreeView1().Count());
}
BENCHMARK(BM_LoadBigWorld)->Unit(benchmark::kMillisecond)->Iterations(5);

// The longest time one autosave holds the user interface's thread: its start, and each
// turn of the event loop that takes a step of it. Reported as the time of each.
void BM_AutosaveLongestHold(benchmark::State& state) {
    BigWorld& b = big();
    QTemporaryDir root;
    RecoveryStore store(root.path());
    Autosave autosave(b.w->engine, b.w->world, store, [](const QString&) {});
    b.w->world.status().markModified();
    double longestMs = 0;
    int turns = 0;
    for (auto _ : state) {
        QElapsedTimer held;
        held.start();
        autosave.copyNow();
        double longest = static_cast<double>(held.nsecsElapsed()) / 1e6;
        turns = 0;
        // Its steps on this thread; then its files are written on another.
        while (autosave.busy() && !store.copying()) {
            held.restart();
            QCoreApplication::processEvents();
            longest = std::max(longest, static_cast<double>(held.nsecsElapsed()) / 1e6);
            ++turns;
        }
        store.waitForCopy();
        if (!store.lastProblem().isEmpty())
            state.SkipWithError("the copy was not written");
        state.SetIterationTime(longest / 1000);
        longestMs = std::max(longestMs, longest);
    }
    state.counters["longest ms"] = longestMs;
    state.counters["turns"] = turns;
}
BENCHMARK(BM_AutosaveLongestHold)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(5);

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
