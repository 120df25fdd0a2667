// Single operations of the library, on the movies that bench/report.py has made. KETRAQT_BENCH_DATA names
// their folder; a movie that is not there is skipped with a word.
#include "OpenMovie.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

using namespace measure;
using Ketra::QT::QTTrack;

namespace {

std::string movieFile(benchmark::State& state) {
    const char* folder = std::getenv("KETRAQT_BENCH_DATA");
    std::filesystem::path path = folder ? folder : "build/bench/data";
    path /= std::to_string(state.range(0)).append(".mp4");
    if (!std::ifstream(path)) {
        state.SkipWithError("no such movie; bench/report.py makes it");
        path.clear();
    }
    return path.string();
}

void open(benchmark::State& state) {
    const std::string path = movieFile(state);
    if (path.empty()) return;
    for (auto _ : state) {
        OpenMovie movie(path.c_str());
        benchmark::DoNotOptimize(movie.movie().getNumberOfTracks());
    }
}

void readFrames(benchmark::State& state) {
    const std::string path = movieFile(state);
    if (path.empty()) return;
    OpenMovie open(path.c_str());
    QTTrack& track = open.video();
    std::int64_t frames = 0;
    for (auto _ : state) {
        track.initWithSample(1);
        while (const Frame frame{track.getChunk()->getNextFrame()}) {
            benchmark::DoNotOptimize(frame->getData());
            ++frames;
        }
    }
    state.SetItemsProcessed(frames);
}

// The positions jump about by a fixed stride that shares no factor with the counts.
constexpr std::uint64_t kStride = 7368787;

void seekNumber(benchmark::State& state) {
    const std::string path = movieFile(state);
    if (path.empty()) return;
    OpenMovie open(path.c_str());
    QTTrack& track = open.video();
    const auto count = static_cast<std::uint64_t>(state.range(0));
    std::uint64_t at = 0;
    for (auto _ : state) {
        at = (at + kStride) % count;
        track.initWithSample(static_cast<unsigned int>(at) + 1);
        const Frame frame(track.getChunk()->getNextFrame());
        benchmark::DoNotOptimize(frame->getData());
    }
    state.SetItemsProcessed(state.iterations());
}

void seekTime(benchmark::State& state) {
    const std::string path = movieFile(state);
    if (path.empty()) return;
    OpenMovie open(path.c_str());
    QTTrack& track = open.video();
    const auto count = static_cast<std::uint64_t>(state.range(0));
    const double frameSeconds = track.getDuration() / static_cast<double>(count);
    std::uint64_t at = 0;
    for (auto _ : state) {
        at = (at + kStride) % count;
        track.initWithTime(static_cast<float>((static_cast<double>(at) + 0.5) * frameSeconds));
        const Frame frame(track.getChunk()->getNextFrame());
        benchmark::DoNotOptimize(frame->getData());
    }
    state.SetItemsProcessed(state.iterations());
}

void writeHeader(benchmark::State& state) {
    const std::string path = movieFile(state);
    if (path.empty()) return;
    OpenMovie open(path.c_str());
    std::int64_t bytes = 0;
    for (auto _ : state) {
        open.movie().updateAtomSizes();
        const Frame header(open.movie().serializeRoot());
        benchmark::DoNotOptimize(header->getData());
        bytes += header->getDataLength();
    }
    state.SetBytesProcessed(bytes);
}

void sizes(benchmark::internal::Benchmark* b) {
    b->ArgName("samples")->Arg(100000)->Arg(1000000)->Arg(4000000);
}

BENCHMARK(open)->Apply(sizes)->Unit(benchmark::kMillisecond);
BENCHMARK(readFrames)->Apply(sizes)->Unit(benchmark::kMillisecond);
BENCHMARK(seekNumber)->Apply(sizes);
BENCHMARK(seekTime)->Apply(sizes);
BENCHMARK(writeHeader)->Apply(sizes)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
