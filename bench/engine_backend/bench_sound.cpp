// What sound costs while nothing plays: the processor time of two quiet
// seconds after a sound was heard, with the device kept open (OpenAL's
// mixer goes on mixing silence) and once the player has closed it (target:
// nothing). Run with ALSOFT_DRIVERS=null where there is no sound card.
#include "sound/sound_player.h"
#include "support/sample_files.h"

#include <benchmark/benchmark.h>
#include <sndfile.h>

#include <chrono>
#include <ctime>
#include <thread>

namespace {

using namespace std::chrono_literals;
using vessa::core::ReaderProcess;
using vessa::core::SoundPlayer;
namespace samples = vessa::samples;

void BM_QuietSeconds(benchmark::State& state) {
    const bool keptOpen = state.range(0) != 0;
    samples::ScratchFolder folder;
    const std::string tone = folder.file("Tone.wav");
    samples::writeSoundFile(tone, SF_FORMAT_WAV, 1);
    SoundPlayer player(SoundPlayer::Output::Device, ReaderProcess::shared(),
                       keptOpen ? std::chrono::milliseconds(1h) : std::chrono::milliseconds(200));
    player.play(tone, 1.0);
    std::this_thread::sleep_for(std::chrono::duration<double>(player.seconds(tone)) + 500ms);
    for (auto _ : state) {
        const std::clock_t before = std::clock();
        std::this_thread::sleep_for(2s);
        const double cpuSeconds = static_cast<double>(std::clock() - before) / CLOCKS_PER_SEC;
        state.counters["cpu_percent"] = 100.0 * cpuSeconds / 2.0;
    }
    state.counters["device_open"] = player.deviceOpen() ? 1 : 0;
}
BENCHMARK(BM_QuietSeconds)
    ->ArgName("device_kept_open")
    ->Arg(1)
    ->Arg(0)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

} // namespace

BENCHMARK_MAIN();
