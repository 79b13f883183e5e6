// The sketch tool: from the end of a stroke of 500 points to the object ready to draw
// (the stroke cleaned, the surface inflated and checked, OpenSceneGraph's node built).

#include "export/sketch_object.h"
#include "export/sketch_session.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <numbers>

namespace {

using namespace vessa;

// A lumpy blob about 420 pixels across in a 700 × 520 drawing area, as a hand draws it.
std::vector<vessa::SketchPoint> handDrawnStroke(int points) {
    std::vector<SketchPoint> stroke;
    for (int i = 0; i < points; ++i) {
        const double a = 2 * std::numbers::pi * i / points;
        const double r = 170 + 40 * std::sin(3 * a) + 15 * std::cos(7 * a) + 3 * std::sin(41 * a);
        stroke.push_back({350 + 1.2 * r * std::cos(a), 260 + r * std::sin(a)});
    }
    return stroke;
}

void BM_StrokeToShadedObject(benchmark::State& state) {
    const std::vector<SketchPoint> stroke = handDrawnStroke(500);
    size_t triangles = 0;
    for (auto _ : state) {
        SketchSession session;
        if (!session.addStroke(stroke).made) {
            state.SkipWithError("the stroke made no object");
            return;
        }
        osg::ref_ptr<osg::Node> object =
            sketchObjectNode(session.current()->mesh, session.colour(), "Sketch");
        benchmark::DoNotOptimize(object.get());
        triangles = session.current()->mesh.triangles.size() / 3;
    }
    state.counters["triangles"] = static_cast<double>(triangles);
}
BENCHMARK(BM_StrokeToShadedObject)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();

} // namespace

BENCHMARK_MAIN();
