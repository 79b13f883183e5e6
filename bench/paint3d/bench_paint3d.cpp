// One step of a brush stroke in the paint tool: the ray under the mouse
// found on the surface, the texels under the brush kept for undo and the
// dab put onto a 1,024 x 1,024 skin. Target: under 16 ms a step.

#include "paint_session.h"
#include "painted_file.h"
#include "reading/reader_process.h"
#include "turntable.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <stdexcept>

namespace {

using namespace vessa::paint3d;

// The gallery's beach ball, its one part on a 1,024 x 1,024 skin.
PaintObject ball() {
    OpenedObject opened = openForPainting(VESSA_HOME_DIR "/Objects/Shapes/Ball.mdl",
                                          vessa::core::ReaderProcess::shared());
    if (!opened.object)
        throw std::runtime_error(opened.refusal);
    return std::move(*opened.object);
}

// arg 0: the brush's radius in texels; arg 1: soft (1) or hard (0).
void BM_BrushStrokeStep(benchmark::State& state) {
    PaintSession session(ball());
    const Skin& skin = session.object().parts.front().skin;
    if (skin.width() != Skin::kLargestSide)
        throw std::runtime_error("the ball's skin is not 1,024 texels across");
    session.brush =
        Brush{static_cast<double>(state.range(0)), {200, 40, 40, 255}, state.range(1) != 0};
    Turntable turntable(session.picker().centre(), session.picker().radius());
    turntable.setSize(800, 600);
    session.beginStroke(turntable.rayAt(400, 300));
    double angle = 0.0;
    long long hits = 0;
    for (auto _ : state) {
        // Round and round over the ball, a pixel or so a step, as a drag dabs.
        angle += 0.02;
        const Ray ray = turntable.rayAt(400 + 60 * std::cos(angle), 300 + 60 * std::sin(angle));
        hits += session.continueStroke(ray) ? 1 : 0;
    }
    session.endStroke();
    state.counters["hit_fraction"] =
        static_cast<double>(hits) / static_cast<double>(std::max<long long>(1, state.iterations()));
}
BENCHMARK(BM_BrushStrokeStep)
    ->Args({8, 0})
    ->Args({32, 1})
    ->Args({128, 1})
    ->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
