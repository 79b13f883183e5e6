// The scene's trees under a big world: a batch of records that builds 3,000
// objects, and the rebuild of the event tab's copy of the tree.
#include "controls/tree_item_model.h"
#include "scene/scene_trees.h"
#include "world/difference_handler.h"

#include <benchmark/benchmark.h>

namespace {

using namespace vessa;

class SilentView : public DifferenceView {
public:
    void appendOutput(const QString&, const QColor&) override {}
    void PrintOutput(const QString&) override {}
    void showUndoAvailable(bool) override {}
    void showWorldActive(bool) override {}
    bool cameraWindowOnTop() const override { return false; }
    void setRenderFormAlwaysOnTop(bool) override {}
    void pumpEvents() override {}
    void showUserError(const ErrorFormContent&) override {}
};

class NoDisplay : public ErrorDisplay {
public:
    void showModal(const ErrorFormContent&) override {}
};

class NoExit : public ProcessControl {
public:
    [[noreturn]] void endProcess(int) override { std::abort(); }
};

void add(QVariantList& records, std::initializer_list<QVariant> items) {
    records.append(QVariant(QVariantList(items)));
}

// 1,000 animals, each with a head and a tail: 3,000 objects in 9,000 records,
// then 1,000 renames of the heads: 10,000 records and a few.
QVariantList bigWorldRecords() {
    QVariantList records;
    add(records, {QStringLiteral("objectconstruct"), QStringLiteral("1"), QStringLiteral("none")});
    add(records,
        {QStringLiteral("objectconstruct"), QStringLiteral("2"), QStringLiteral("junkyard")});
    add(records, {QStringLiteral("objectconstruct"), QStringLiteral("3"), QStringLiteral("scene")});
    add(records, {QStringLiteral("objectnamechange"), QStringLiteral("3"), QString(),
                  QStringLiteral("Scene")});
    const auto object = [&](int id, int parent, const QString& name) {
        add(records,
            {QStringLiteral("objectconstruct"), QString::number(id), QStringLiteral("model")});
        add(records, {QStringLiteral("objectparentchange"), QString::number(id),
                      QStringLiteral("1"), QString::number(parent)});
        add(records, {QStringLiteral("objectnamechange"), QString::number(id), QString(), name});
    };
    for (int n = 0; n < 1000; ++n) {
        const int id = 10 + 3 * n;
        const QString name = QStringLiteral("Animal%1").arg(n);
        object(id, 3, name);
        object(id + 1, id, name + QStringLiteral(".Head"));
        object(id + 2, id, name + QStringLiteral(".Tail"));
    }
    for (int n = 0; n < 1000; ++n)
        add(records, {QStringLiteral("objectnamechange"), QString::number(11 + 3 * n), QString(),
                      QStringLiteral("Animal%1.Noggin").arg(n)});
    return records;
}

struct Handler {
    AppState state;
    EngineLink engine;
    NoDisplay display;
    NoExit process;
    ErrorReporter reporter{state, display, process};
    SilentView view;
    SceneTrees trees;
    RenameFollowers followers;
    DifferenceHandler handler{state, engine, reporter, trees, followers, [](const QString&) {
                              }};

    void handle(const QVariant& records) { handler.HandleDifferences(records, &view); }
};

void BM_HandleDifferences_BigWorld(benchmark::State& state) {
    const QVariant records = bigWorldRecords();
    for (auto _ : state) {
        state.PauseTiming();
        auto h = std::make_unique<Handler>();
        // What the object tree's view would hear.
        TreeItemModel model(h->trees.ObjectTree);
        state.ResumeTiming();
        h->handle(records);
        benchmark::DoNotOptimize(h->trees.ObjectTree.Count());
        state.PauseTiming();
        h.reset();
        state.ResumeTiming();
    }
    state.counters["records"] = static_cast<double>(records.toList().size());
}
BENCHMARK(BM_HandleDifferences_BigWorld)->Unit(benchmark::kMillisecond);

void BM_ObjectTree2Update_BigWorld(benchmark::State& state) {
    Handler h;
    h.handle(bigWorldRecords());
    TreeItemModel model(h.trees.ObjectTree2);
    for (auto _ : state)
        ObjectTree2_Update(h.trees);
    state.counters["nodes"] = h.trees.ObjectTree2.Count();
}
BENCHMARK(BM_ObjectTree2Update_BigWorld)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
