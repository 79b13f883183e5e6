// Damaged files through the readers, as a friend's world brings them: the
// engine's object files, .obj, .3ds and sounds, damaged as the readers'
// tests damage them (target: at least 10,000 a minute, each refused or
// loaded, none crashing the program). And one whole object file, for what
// reading in the reader program costs a file that is fine.
#include "models/model_reading.h"
#include "reading/description.h"
#include "reading/reader_process.h"
#include "support/sample_files.h"

#include <benchmark/benchmark.h>
#include <sndfile.h>

#include <chrono>

namespace {

using namespace vessa::core;
namespace samples = vessa::samples;

struct DamagedPool {
    samples::ScratchFolder folder;
    std::vector<std::pair<FileKind, std::string>> files;
};

// kCopies damaged copies of a file of each kind, each under its own name.
void fill(DamagedPool& pool) {
    constexpr std::uint32_t kCopies = 100;
    samples::writeModelFile(pool.folder.file("Bunny.mdl"));
    samples::writeObjFile(pool.folder.file(""), "Lamp");
    samples::write3dsFile(pool.folder.file("Mast.3ds"));
    samples::writeSoundFile(pool.folder.file("Tone.wav"), SF_FORMAT_WAV, 2);
    for (const auto& [name, kind] :
         {std::pair{"Bunny.mdl", FileKind::Model}, std::pair{"Lamp.obj", FileKind::Model},
          std::pair{"Mast.3ds", FileKind::Model}, std::pair{"Tone.wav", FileKind::Sound}}) {
        const samples::Bytes good = samples::readBytes(pool.folder.file(name));
        for (std::uint32_t seed = 0; seed < kCopies; ++seed) {
            const std::string path = pool.folder.file(std::to_string(seed) + name);
            samples::writeBytes(path, samples::damaged(good, seed));
            pool.files.emplace_back(kind, path);
        }
    }
}

// The program's own way with each kind: true when the file was loaded.
bool read(ReaderProcess& reader, FileKind kind, const std::string& path) {
    if (kind == FileKind::Sound) {
        const ReaderProcess::Reply reply = reader.read(kind, path);
        return reply.outcome == Outcome::Answered && decodeSound(reply.answer).has_value();
    }
    try {
        readModel(path, reader);
        return true;
    } catch (const ModelError&) {
        return false;
    }
}

void BM_DamagedFiles(benchmark::State& state) {
    DamagedPool pool;
    fill(pool);
    ReaderProcess& reader = ReaderProcess::shared();
    size_t next = 0;
    double loaded = 0;
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state) {
        const auto& [kind, path] = pool.files[next++ % pool.files.size()];
        loaded += read(reader, kind, path);
    }
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    const auto files = static_cast<double>(state.iterations());
    state.counters["files_per_minute"] = files / took.count() * 60.0;
    state.counters["loaded_percent"] = 100.0 * loaded / files;
}
BENCHMARK(BM_DamagedFiles)->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(10.0);

void BM_WholeObjectFile(benchmark::State& state) {
    samples::ScratchFolder folder;
    samples::writeModelFile(folder.file("Bunny.mdl"));
    for (auto _ : state)
        benchmark::DoNotOptimize(readModel(folder.file("Bunny.mdl"), ReaderProcess::shared()));
}
BENCHMARK(BM_WholeObjectFile)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
