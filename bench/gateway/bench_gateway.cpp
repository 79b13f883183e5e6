// The cost of one call through the gateway into the real engine.
#include "gateway/engine_registration.h"
#include "gateway/interpreter_registry.h"

#include <benchmark/benchmark.h>

namespace {

std::unique_ptr<vessa::Interpreter> makeEngine() {
    vessa::InterpreterRegistry registry;
    vessa::registerPythonEngine(registry, QStringLiteral(VESSA_PYTHON_DIR));
    return registry.create(vessa::kEngineProgId);
}

void BM_getisdirty(benchmark::State& state) {
    static auto engine = makeEngine();
    for (auto _ : state)
        benchmark::DoNotOptimize(engine->call(QStringLiteral("getisdirty")));
}
BENCHMARK(BM_getisdirty);

void BM_PollForMiscDifferences_Empty(benchmark::State& state) {
    static auto engine = makeEngine();
    for (auto _ : state)
        benchmark::DoNotOptimize(engine->call(QStringLiteral("PollForMiscDifferences")));
}
BENCHMARK(BM_PollForMiscDifferences_Empty);

void BM_ExecuteCode_Statement(benchmark::State& state) {
    static auto engine = makeEngine();
    const QVariantList args = {QStringLiteral("x = 1"), QStringLiteral("<Tool>"),
                               QStringLiteral("exec")};
    for (auto _ : state)
        benchmark::DoNotOptimize(engine->call(QStringLiteral("ExecuteCode"), args));
}
BENCHMARK(BM_ExecuteCode_Statement);

} // namespace

BENCHMARK_MAIN();
