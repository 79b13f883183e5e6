#include "support/web_server.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

// The default world as a web page: the export as a whole process, the size of
// what it writes, and the page in Debian's Chromium, headless with software
// WebGL, served over the loopback address: from opening it to its first drawn
// frame, then its frames a second; the same for a world of letters, a ball and
// a model with a picture, drawn with shadows on the high-quality path; and what
// watching the world's code for time costs there.

namespace {

const QString DefaultWorld = QStringLiteral(VESSA_HOME_DIR "/Worlds/Default");

// The default world with solid letters, a ball and a cube showing a picture.
QString writeDrawingWorld(const QTemporaryDir& dir) {
    const QString world = dir.filePath(QStringLiteral("Drawing"));
    QDir().mkpath(world);
    const auto write = [&](const QString& name, const QByteArray& bytes) {
        QFile file(QDir(world).filePath(name));
        return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
    };
    QFile scene(DefaultWorld + QStringLiteral("/World_Scene.py"));
    scene.open(QIODevice::ReadOnly);
    write(QStringLiteral("World_Scene.py"),
          scene.readAll() +
              "Object(kind='model', name='Sign', parent='Scene', firstclass=True, "
              "position=(0.0, 2.5, 0.0), orientation=(0, 0, 1, 0), model='text:Hello there')\n"
              "Object(kind='model', name='Ball', parent='Scene', firstclass=True, "
              "position=(-2.5, 0.0, 0.0), model='Ball.mdl#0')\n"
              "Object(kind='model', name='Crate', parent='Scene', firstclass=True, "
              "position=(2.0, 0.0, 0.0), model='Crate.obj#0')\n");
    write(QStringLiteral("Crate.obj"),
          "mtllib Crate.mtl\n"
          "v -1 0 -1\nv 1 0 -1\nv 1 2 -1\nv -1 2 -1\nv -1 0 1\nv 1 0 1\nv 1 2 1\nv -1 2 1\n"
          "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\nusemtl skin\n"
          "f 1/1 4/4 3/3 2/2\nf 5/1 6/2 7/3 8/4\nf 1/1 5/2 8/3 4/4\n"
          "f 2/1 3/4 7/3 6/2\nf 4/1 8/2 7/3 3/4\nf 1/1 2/2 6/3 5/4\n");
    write(QStringLiteral("Crate.mtl"), "newmtl skin\nKd 1 1 1\nmap_Kd Crate.png\n");
    QFile::copy(QStringLiteral(VESSA_HOME_DIR "/Objects/Animals/Bunny.png"),
                QDir(world).filePath(QStringLiteral("Crate.png")));
    QFile::copy(QStringLiteral(VESSA_HOME_DIR "/Objects/Shapes/Ball.mdl"),
                QDir(world).filePath(QStringLiteral("Ball.mdl")));
    return world;
}

bool exportPage(const QString& out, const QString& world = DefaultWorld) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        env.remove(QString::fromLatin1(name));
    QProcess process;
    process.setProcessEnvironment(env);
    process.start(QStringLiteral(VESSA_PROGRAM),
                  {QStringLiteral("export"), world, QStringLiteral("--web"), out});
    return process.waitForFinished(60000) && process.exitCode() == 0;
}

qint64 bytesIn(const QString& folder) {
    qint64 bytes = 0;
    QDirIterator files(folder, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        files.next();
        bytes += files.fileInfo().size();
    }
    return bytes;
}

void BM_ExportDefaultWorld(benchmark::State& state) {
    QTemporaryDir out;
    for (auto _ : state) {
        if (!exportPage(out.path())) {
            state.SkipWithError("the export did not end cleanly");
            return;
        }
    }
    state.counters["page_archive_player_MB"] = static_cast<double>(bytesIn(out.path())) / 1e6;
}
BENCHMARK(BM_ExportDefaultWorld)->Unit(benchmark::kMillisecond)->Iterations(5)->UseRealTime();

// Each iteration's time is the cold start: a fresh browser, nothing cached.
// Argument 0: the default world on the page's own path (the light one with
// software WebGL); 1: the drawing world on the high-quality path.
void BM_PageColdStartToFirstFrame(benchmark::State& state) {
    const bool drawing = state.range(0) == 1;
    QTemporaryDir out;
    const QString world = drawing ? writeDrawingWorld(out) : DefaultWorld;
    const QString page = QFileInfo(world).fileName() + QStringLiteral(".html");
    if (!exportPage(out.path(), world)) {
        state.SkipWithError("the export did not end cleanly");
        return;
    }
    const vessa::testing::WebServer server(out.path());
    double fps = 0;
    for (auto _ : state) {
        const auto [seen, failure] = vessa::testing::browsePage(
            {QStringLiteral("timing"), server.url(page), QStringLiteral("3"),
             drawing ? QStringLiteral("high") : QStringLiteral("low")},
            180000);
        if (!seen.contains(QStringLiteral("firstFrameSeconds"))) {
            state.SkipWithError(failure.constData());
            break;
        }
        state.SetIterationTime(seen[QStringLiteral("firstFrameSeconds")].toDouble());
        fps += seen[QStringLiteral("framesPerSecond")].toDouble();
    }
    state.counters["frames_per_second"] = fps / static_cast<double>(state.iterations());
}
BENCHMARK(BM_PageColdStartToFirstFrame)
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseManualTime();

// What watching the world's code for time costs in the page, where no thread
// can watch it and the code's own lines read the clock: a tight loop of a
// million turns run as the world's code, against the same loop run by the page
// unwatched.
void BM_PageTightLoopWatched(benchmark::State& state) {
    constexpr int kLoops = 1000000;
    QTemporaryDir out;
    if (!exportPage(out.path()) ||
        !QFile::copy(QStringLiteral(VESSA_SOURCE_DIR "/bench/export/tight_loop.html"),
                     out.filePath(QStringLiteral("tight_loop.html")))) {
        state.SkipWithError("the export did not end cleanly");
        return;
    }
    const vessa::testing::WebServer server(out.path());
    double plain = 0;
    for (auto _ : state) {
        const auto [seen, failure] = vessa::testing::browsePage(
            {QStringLiteral("steps"),
             server.url(QStringLiteral("tight_loop.html?world=Default&loops=%1").arg(kLoops))},
            300000);
        if (!seen.contains(QStringLiteral("watched"))) {
            state.SkipWithError(failure.constData());
            break;
        }
        state.SetIterationTime(seen[QStringLiteral("watched")].toDouble());
        plain += seen[QStringLiteral("plain")].toDouble();
    }
    state.counters["unwatched_ms"] = plain * 1000 / static_cast<double>(state.iterations());
}
BENCHMARK(BM_PageTightLoopWatched)->Unit(benchmark::kMillisecond)->Iterations(3)->UseManualTime();

} // namespace

BENCHMARK_MAIN();
