// Whole-process figures of the program: start-up time and processor use while
// the main window sits idle.
#include "program_process.h"

#include <QFile>
#include <QThread>
#include <benchmark/benchmark.h>
#include <unistd.h>

namespace {

using vessa::bench::ProgramProcess;

// Start-up, from starting the process to the main window shown and ready.
void BM_StartUpToMainWindow(benchmark::State& state) {
    for (auto _ : state) {
        ProgramProcess program(QStringLiteral("exit"));
        const double seconds = program.startAndWaitForMainWindow();
        if (seconds < 0) {
            state.SkipWithError("the main window never came up");
            break;
        }
        state.SetIterationTime(seconds);
        program.waitForExit(10000);
    }
}
BENCHMARK(BM_StartUpToMainWindow)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(7)
    ->ReportAggregatesOnly(true);

// Start-up on the display, from starting the process to the camera view's first frame
// of the default world. Run under Xvfb.
void BM_StartUpToFirstFrame(benchmark::State& state) {
    if (qEnvironmentVariableIsEmpty("DISPLAY")) {
        state.SkipWithError("needs a display: run under xvfb-run");
        return;
    }
    for (auto _ : state) {
        ProgramProcess program(QStringLiteral("exit"), ProgramProcess::Screen::Display);
        const double seconds = program.startAndWaitFor("driver: first frame drawn");
        if (seconds < 0) {
            state.SkipWithError("the camera view never drew");
            break;
        }
        state.SetIterationTime(seconds);
        program.waitForExit(10000);
    }
}
BENCHMARK(BM_StartUpToFirstFrame)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1)
    ->Repetitions(7)
    ->ReportAggregatesOnly(true);

// Processor time of a process so far, in seconds, from /proc.
double processorSeconds(qint64 pid) {
    QFile stat(QStringLiteral("/proc/%1/stat").arg(pid));
    if (!stat.open(QIODevice::ReadOnly))
        return -1;
    const QByteArray line = stat.readAll();
    // Fields after the command name, which is in parentheses and may hold blanks.
    const QList<QByteArray> fields = line.mid(line.lastIndexOf(')') + 2).split(' ');
    const double ticks = fields.value(11).toDouble() + fields.value(12).toDouble();
    return ticks / static_cast<double>(sysconf(_SC_CLK_TCK));
}

// Share of one core the program uses while nothing happens.
void BM_IdleProcessorUse(benchmark::State& state) {
    for (auto _ : state) {
        ProgramProcess program(QStringLiteral("idle"));
        if (program.startAndWaitForMainWindow() < 0) {
            state.SkipWithError("the main window never came up");
            break;
        }
        QThread::sleep(1); // let start-up work settle
        const double before = processorSeconds(program.pid());
        constexpr int kWindowSeconds = 5;
        QThread::sleep(kWindowSeconds);
        const double used = processorSeconds(program.pid()) - before;
        state.SetIterationTime(kWindowSeconds);
        state.counters["cpu_percent"] = 100.0 * used / kWindowSeconds;
    }
}
BENCHMARK(BM_IdleProcessorUse)->UseManualTime()->Unit(benchmark::kSecond)->Iterations(1);

} // namespace

BENCHMARK_MAIN();
