// The camera view at 640 x 480 under Xvfb and Mesa: frames per second of the
// default world (target 60+) and of 200 gallery objects sharing their shapes
// (target 30+; the home folder's gallery, VESSA47_HOME, else a made-up
// animal), what a still world draws (nothing), and one pick (target under
// 2 ms). VESSA_DRAWING_OUTPUT names a folder for a picture of the crowd.
#include "facade/backend.h"
#include "scene/engine_frame.h"
#include "view/view_widget.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QTimer>
#include <QWidget>
#include <benchmark/benchmark.h>
#include <osg/Geode>
#include <osg/ShapeDrawable>
#include <osgDB/Registry>

#include <algorithm>
#include <ctime>
#include <filesystem>
#include <fstream>

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
// legs, some four thousand triangles. Used when the home folder has no
// gallery.
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
    auto* animal = new osg::Group;
    animal->setName("Animal");
    animal->addChild(geode);
    return animal;
}

// The gallery's object files in the home folder (VESSA47_HOME), or one
// made here.
std::vector<std::string> objectFiles(const std::string& scratch) {
    std::vector<std::string> files;
    const std::filesystem::path objects =
        qEnvironmentVariable("VESSA47_HOME").toStdString() + "Objects";
    std::error_code missing;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(objects, missing)) {
        if (entry.path().extension() == ".mdl")
            files.push_back(entry.path().string());
    }
    std::sort(files.begin(), files.end());
    if (files.empty()) {
        files.push_back(scratch + "/Animal.mdl");
        osg::ref_ptr<osg::Node> animal = animalShape();
        std::ofstream out(files.back(), std::ios::binary);
        osgDB::Registry::instance()->getReaderWriterForExtension("osgb")->writeNode(*animal, out);
    }
    return files;
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
        ChannelValue eye = backend.get(2, "position");
        eye[2] = eyeZ + step;
        backend.set(2, "position", eye);
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
    double eyeZ = -8.0;

private:
    QWidget host_;
};

// Frames per second, and the processor time of a frame in all the
// program's threads (Mesa's drawing threads too): on a machine shared with
// other work the rate varies from run to run, the processor time less.
void measureFrames(benchmark::State& state, View& view) {
    double step = 0.0;
    const std::clock_t cpuBefore = std::clock();
    for (auto _ : state)
        view.nextFrame(step += 0.001);
    const double cpuSeconds = static_cast<double>(std::clock() - cpuBefore) / CLOCKS_PER_SEC;
    const auto frames = static_cast<double>(state.iterations());
    state.counters["fps"] = benchmark::Counter(frames, benchmark::Counter::kIsRate);
    state.counters["cpu_ms_per_frame"] = 1e3 * cpuSeconds / frames;
}

void BM_DefaultWorldFrame(benchmark::State& state) {
    View view;
    measureFrames(state, view);
}
BENCHMARK(BM_DefaultWorldFrame)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3.0);

// What the engine sets on each object it copies, whatever it was.
const std::pair<const char*, vessa::core::StyleValue> kLooksOfACopy[] = {
    {"visible", true},
    {"filling", std::string("Solid")},
    {"lighting", std::string("Lit")},
    {"texture", true},
    {"shadow", true}};

// count objects on a grid in front of the camera, made as the engine makes
// a copy of them: a node for the object and one for each part, drawn with
// the part of its file, each told every look it has.
void populate(View& view, int count) {
    QTemporaryDir scratch;
    const auto files = objectFiles(scratch.path().toStdString());
    int id = 100;
    for (int i = 0; i < count; ++i) {
        const std::string& file = files[static_cast<size_t>(i) % files.size()];
        const auto model = view.backend.models().load(file);
        const int first = id;
        for (size_t part = 0; part < model->parts.size(); ++part, ++id) {
            const auto& piece = model->parts[part];
            const ChannelValue place =
                part ? piece.position : ChannelValue{(i % 20 - 9.5) * 2.0, 0, (i / 20) * 2.5, 0};
            view.backend.addNode(id, {place, piece.orientation, {1, 1, 1, 0}, {1, 1, 1, 0}},
                                 "model");
            view.backend.setParent(id, part ? first + piece.parent : 1);
            view.backend.setStyle(id, "model", file + "#" + std::to_string(part));
            for (const auto& [style, value] : kLooksOfACopy)
                view.backend.setStyle(id, style, value);
        }
    }
    // Stand back and look down on the crowd, all of it on the ground.
    const double rows = (count + 19) / 20;
    view.backend.set(4, "size", {80, 0.1, std::max(80.0, 2 * (rows * 2.5 + 10)), 0});
    view.backend.set(2, "orientation", vessa::core::quatFromAxisAngle(1, 0, 0, 0.3));
}

void BM_GalleryCrowdFrame(benchmark::State& state) {
    View view;
    populate(view, static_cast<int>(state.range(0)));
    view.backend.set(2, "position", {0, 9, -16, 0});
    view.eyeZ = -16.0;
    view.nextFrame(0.0);
    if (const char* folder = std::getenv("VESSA_DRAWING_OUTPUT"))
        view.widget().grabFramebuffer().save(QString::fromUtf8(folder) +
                                             QStringLiteral("/crowd%1.png").arg(state.range(0)));
    measureFrames(state, view);
}
BENCHMARK(BM_GalleryCrowdFrame)
    ->Arg(200)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->MinTime(3.0);

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
