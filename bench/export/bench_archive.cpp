#include "export/ves_archive.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

// A world of a hundred objects, each from a model file of its own taken from the home
// folder's gallery (so the archive holds what real worlds hold), packed once; then
// unpacked, every entry checked, into a fresh folder, as an import does.

namespace {

QStringList galleryModels() {
    QStringList models;
    QDirIterator it(QStringLiteral(VESSA_HOME_DIR "/Objects"), {QStringLiteral("*.mdl")},
                    QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
        models << it.next();
    models.sort();
    return models;
}

void BM_ImportHundredObjectArchive(benchmark::State& state) {
    QTemporaryDir scratch;
    const QString world = scratch.filePath(QStringLiteral("Hundred"));
    QDir().mkpath(world);
    const QStringList models = galleryModels();
    if (models.isEmpty()) {
        state.SkipWithError("no gallery objects in the home folder");
        return;
    }
    QByteArray scene;
    for (int i = 0; i < 100; ++i) {
        const QString file = QStringLiteral("object%1.mdl").arg(i);
        QFile::copy(models[i % models.size()], world + QLatin1Char('/') + file);
        scene += QStringLiteral("Object(name='Thing%1', file='%2', position=(%1, 0, 0))\r\n")
                     .arg(i)
                     .arg(file)
                     .toUtf8();
    }
    QFile sceneFile(world + QStringLiteral("/World_Scene.py"));
    sceneFile.open(QIODevice::WriteOnly);
    sceneFile.write(scene);
    sceneFile.close();
    const QString archive = scratch.filePath(QStringLiteral("Hundred.ves"));
    if (!vessa::packWorldArchive(world, archive, QStringLiteral("0.1.0")).done()) {
        state.SkipWithError("the archive could not be packed");
        return;
    }
    int run = 0;
    for (auto _ : state) {
        const QString fresh = scratch.filePath(QStringLiteral("TempWorld%1").arg(run++));
        if (!vessa::unpackWorldArchive(archive, fresh, [](qint64, qint64) { return true; }).done())
            state.SkipWithError("the archive was refused");
        state.PauseTiming();
        QDir(fresh).removeRecursively();
        state.ResumeTiming();
    }
    state.counters["archive_MB"] = double(QFileInfo(archive).size()) / (1 << 20);
}
BENCHMARK(BM_ImportHundredObjectArchive)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
