#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

// What watching the world's code for time costs in the web page, where no
// thread can watch it and the code's own lines read the clock: a tight loop
// of a million turns run as the world's code, against the same loop run by
// the page unwatched, in Debian's Chromium, headless, served over the loopback
// address.

namespace {

constexpr int kLoops = 1000000;

void BM_PageTightLoopWatched(benchmark::State& state) {
    QTemporaryDir out;
    QProcess exporter;
    exporter.start(QStringLiteral(VESSA_PROGRAM),
                   {QStringLiteral("export"), QStringLiteral(VESSA_HOME_DIR "/Worlds/Default"),
                    QStringLiteral("--web"), out.path()});
    if (!exporter.waitForFinished(60000) || exporter.exitCode() != 0 ||
        !QFile::copy(QStringLiteral(VESSA_SOURCE_DIR "/bench/export/tight_loop.html"),
                     out.filePath(QStringLiteral("tight_loop.html")))) {
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
    double plain = 0;
    for (auto _ : state) {
        QProcess node;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("VESSA_WEB_MODULES"), QStringLiteral(VESSA_WEB_MODULES));
        node.setProcessEnvironment(env);
        node.start(QStringLiteral("node"),
                   {QStringLiteral(VESSA_SOURCE_DIR "/tests/export/web/browse.mjs"),
                    QStringLiteral("steps"),
                    QStringLiteral("http://127.0.0.1:%1/tight_loop.html?world=Default&loops=%2")
                        .arg(port)
                        .arg(kLoops)});
        node.waitForFinished(300000);
        const QJsonObject seen = QJsonDocument::fromJson(node.readAllStandardOutput()).object();
        if (!seen.contains(QStringLiteral("watched"))) {
            state.SkipWithError(node.readAllStandardError().constData());
            break;
        }
        state.SetIterationTime(seen[QStringLiteral("watched")].toDouble());
        plain += seen[QStringLiteral("plain")].toDouble();
    }
    state.counters["unwatched_ms"] = plain * 1000 / static_cast<double>(state.iterations());
    server.kill();
    server.waitForFinished();
}
BENCHMARK(BM_PageTightLoopWatched)->Unit(benchmark::kMillisecond)->Iterations(3)->UseManualTime();

} // namespace

BENCHMARK_MAIN();
