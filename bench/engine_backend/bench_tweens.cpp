// One step of the backend with a thousand tweens running (target: under 1 ms).
#include "facade/backend.h"

#include <benchmark/benchmark.h>

namespace {

void BM_StepWith1000Tweens(benchmark::State& state) {
    vessa::core::Backend backend;
    vessa::core::NodeValues values;
    for (int i = 0; i < vessa::core::kChannelCount; ++i)
        values[static_cast<size_t>(i)] =
            vessa::core::defaultValue(static_cast<vessa::core::Channel>(i));
    backend.addNode(1, values, "scene");
    constexpr int kTweens = 1000;
    for (int id = 2; id < 2 + kTweens; ++id) {
        backend.addNode(id, values, "model");
        backend.setParent(id, 1);
        const char* channel = id % 2 ? "position" : "orientation";
        backend.addTween(id, channel, {0.0, 1.0, 0.0, 1.0}, 0.0, 1e9, "gently");
    }
    double now = 0.0;
    for (auto _ : state) {
        now += 0.016;
        benchmark::DoNotOptimize(backend.step(now));
    }
    state.counters["tweens"] = static_cast<double>(backend.tweenCount());
}
BENCHMARK(BM_StepWith1000Tweens)->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
