// The camera view at 640 x 480 under Xvfb and Mesa: frames per second of the
// default world (target 60+) and of 200 gallery-like objects sharing their
// shapes (target 30+), what a still world draws (nothing), and one pick
// (target under 2 ms).
#include "backend/backend.h"
#include "view/view_widget.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>
#include <QWidget>
#include <benchmark/benchmark.h>
#include <iostream>
#include <osg/Geode>
#include <osg/MatrixTransform>
#include <osg/ShapeDrawable>
#include <osgUtil/Optimizer>
#include <osgUtil/Simplifier>
#include <osgUtil/Statistics>

#include <ctime>

namespace {

using vessa::core::Backend;
using vessa::core::ChannelValue;
using vessa::core::NodeValues;

constexpr int kWidth = 640;
constexpr int kHeight = 480;
constexpr long long kHostId = 9;

NodeValues values(ChannelValue position, ChannelValue size = {1, 1, 1, 0},
                  ChannelValue color = {1, 1, 1, 0}) {
    return {position, vessa::core::defaultValue(vessa::core::Channel::Orientation), size, color};
}

// About the size and make of a gallery animal: a body, a head, ears and
// legs, some two thousand triangles.
osg::Node* animalShape() {
    auto* hints = new osg::TessellationHints;
    hints->setDetailRatio(0.8f);
    auto* geode = new osg::Geode;
    auto add = [&](osg::Shape* shape, osg::Vec4 color) {
        auto* drawable = new osg::ShapeDrawable(shape, hints);
        drawable->setColor(color);
        geode->addDrawable(drawable);
    };
    const osg::Vec4 fur(0.8f, 0.7f, 0.6f, 1.0f);
    add(new osg::Sphere(osg::Vec3(0, 0.4f, 0), 0.35f), fur);
    add(new osg::Sphere(osg::Vec3(0, 0.85f, 0.25f), 0.2f), fur);
    add(new osg::Capsule(osg::Vec3(0.08f, 1.15f, 0.25f), 0.05f, 0.3f), osg::Vec4(1, 0.8f, 0.8f, 1));
    add(new osg::Capsule(osg::Vec3(-0.08f, 1.15f, 0.25f), 0.05f, 0.3f),
        osg::Vec4(1, 0.8f, 0.8f, 1));
    for (float x : {-0.15f, 0.15f}) {
        for (float z : {-0.15f, 0.15f})
            add(new osg::Cylinder(osg::Vec3(x, 0.1f, z), 0.05f, 0.2f), fur);
    }
    return geode;
}

class View {
public:
    View() {
        host_.setProperty("vessaHostId", kHostId);
        host_.resize(kWidth, kHeight);
        host_.show();
        backend.addNode(1, values({0, 0, 0, 0}), "scene");
        add(2, "camera", values({0, 1.5, -8, 0}));
        add(3, "light", values({2, 6, -4, 0}));
        add(4, "model", values({0, -0.05, 0, 0}, {20, 0.1, 20, 0}, {0.3, 0.6, 0.25, 0}));
        backend.view().open(kWidth, kHeight, kHostId);
        settle();
    }

    void add(int id, const char* kind, const NodeValues& v) {
        backend.addNode(id, v, kind);
        backend.setParent(id, 1);
    }

    vessa::core::ViewWidget& widget() { return *backend.view().widget(); }

    // One frame, as the program gets it: a change, then Qt's event loop
    // draws and composes the view.
    void nextFrame(double step) {
        const auto before = widget().framesDrawn();
        backend.set(2, "position", {0, 1.5, -8 + step, 0});
        while (widget().framesDrawn() == before)
            QCoreApplication::processEvents(QEventLoop::AllEvents);
    }

    void settle() {
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < 300)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    }

    Backend backend;

private:
    QWidget host_;
};

void measureFrames(benchmark::State& state, View& view) {
    double step = 0.0;
    for (auto _ : state)
        view.nextFrame(step += 0.001);
    state.counters["fps"] =
        benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}

void BM_DefaultWorldFrame(benchmark::State& state) {
    View view;
    measureFrames(state, view);
}
BENCHMARK(BM_DefaultWorldFrame)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3.0);

void populate(View& view, int count) {
    osg::ref_ptr<osg::Node> animal = animalShape();
    osgUtil::Optimizer optimizer;
    optimizer.optimize(animal.get(), osgUtil::Optimizer::MERGE_GEOMETRY |
                                         osgUtil::Optimizer::INDEX_MESH |
                                         osgUtil::Optimizer::VERTEX_PRETRANSFORM |
                                         osgUtil::Optimizer::VERTEX_POSTTRANSFORM);
    if (const char* ratio = std::getenv("SIMPLIFY")) {
        osgUtil::Simplifier simplifier(std::atof(ratio));
        animal->accept(simplifier);
    }
    osgUtil::StatsVisitor stats;
    animal->accept(stats);
    stats.print(std::cerr);
    for (int i = 0; i < count; ++i) {
        const int id = 100 + i;
        const double x = (i % 20 - 9.5) * 0.9;
        const double z = (i / 20) * 1.2;
        view.add(id, "model", values({x, 0, z, 0}));
        view.backend.scene().setModel(id, "animal", animal.get());
    }
}

void BM_200SharedObjectsFrame(benchmark::State& state) {
    View view;
    populate(view, 200);
    measureFrames(state, view);
}
BENCHMARK(BM_200SharedObjectsFrame)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3.0);

void BM_PickAmong200Objects(benchmark::State& state) {
    View view;
    populate(view, 200);
    int hits = 0;
    for (auto _ : state)
        hits += view.widget().pick(kWidth / 2.0, kHeight * 0.6).has_value();
    state.counters["hit"] = hits == static_cast<int>(state.iterations()) ? 1 : 0;
}
BENCHMARK(BM_PickAmong200Objects)->Unit(benchmark::kMicrosecond);

// A still world: two seconds of the event loop, frames drawn and processor
// time used in them.
void BM_IdleStillWorld(benchmark::State& state) {
    View view;
    for (auto _ : state) {
        const auto before = view.widget().framesDrawn();
        const std::clock_t cpuBefore = std::clock();
        QElapsedTimer clock;
        clock.start();
        QEventLoop loop;
        QTimer::singleShot(2000, &loop, &QEventLoop::quit);
        loop.exec();
        const double cpu = static_cast<double>(std::clock() - cpuBefore) / CLOCKS_PER_SEC;
        state.counters["frames"] = static_cast<double>(view.widget().framesDrawn() - before);
        state.counters["cpu_percent"] = 100.0 * cpu / (static_cast<double>(clock.elapsed()) / 1e3);
    }
}
BENCHMARK(BM_IdleStillWorld)->Unit(benchmark::kMillisecond)->Iterations(1)->UseRealTime();

} // namespace

int main(int argc, char** argv) {
    QApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
