#include <QCoreApplication>
#include <QDirIterator>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

// The default world as a web page: the export as a whole process, the size of
// what it writes, and the page in Debian's Chromium, headless with software
// WebGL, served over the loopback address: from opening it to its first drawn
// frame, then its frames a second.

namespace {

const QString DefaultWorld = QStringLiteral(VESSA_HOME_DIR "/Worlds/Default");

bool exportPage(const QString& out) {
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        env.remove(QString::fromLatin1(name));
    QProcess process;
    process.setProcessEnvironment(env);
    process.start(QStringLiteral(VESSA_PROGRAM),
                  {QStringLiteral("export"), DefaultWorld, QStringLiteral("--web"), out});
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
void BM_PageColdStartToFirstFrame(benchmark::State& state) {
    QTemporaryDir out;
    if (!exportPage(out.path())) {
        state.SkipWithError("the export did not end cleanly");
        return;
    }
    QProcess server;
    server.setProcessChannelMode(QProcess::MergedChannels);
    server.start(QStringLiteral("/usr/bin/python3"),
                 {QStringLiteral("-u"), QStringLiteral("-m"), QStringLiteral("http.server"),
                  QStringLiteral("0"), QStringLiteral("--bind"), QStringLiteral("127.0.0.1"),
                  QStringLiteral("--directory"), out.path()});
    static const QRegularExpression portSaid(QStringLiteral(R"(port (\d+))"));
    QString said, port;
    while (port.isEmpty() && server.waitForReadyRead(30000)) {
        said += QString::fromUtf8(server.readAll());
        port = portSaid.match(said).captured(1);
    }
    double fps = 0;
    for (auto _ : state) {
        QProcess node;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("VESSA_WEB_MODULES"), QStringLiteral(VESSA_WEB_MODULES));
        node.setProcessEnvironment(env);
        node.start(QStringLiteral("node"),
                   {QStringLiteral(VESSA_SOURCE_DIR "/tests/export/web/browse.mjs"),
                    QStringLiteral("timing"),
                    QStringLiteral("http://127.0.0.1:%1/Default.html").arg(port),
                    QStringLiteral("3")});
        node.waitForFinished(180000);
        const QJsonObject seen = QJsonDocument::fromJson(node.readAllStandardOutput()).object();
        if (!seen.contains(QStringLiteral("firstFrameSeconds"))) {
            state.SkipWithError(node.readAllStandardError().constData());
            break;
        }
        state.SetIterationTime(seen[QStringLiteral("firstFrameSeconds")].toDouble());
        fps += seen[QStringLiteral("framesPerSecond")].toDouble();
    }
    state.counters["frames_per_second"] = fps / static_cast<double>(state.iterations());
    server.kill();
    server.waitForFinished();
}
BENCHMARK(BM_PageColdStartToFirstFrame)
    ->Unit(benchmark::kMillisecond)
    ->Iterations(3)
    ->UseManualTime();

} // namespace

BENCHMARK_MAIN();
