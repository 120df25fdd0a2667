// Time and memory for files of one mebibyte that are made to cost as much as they can, one process a file,
// one JSON line each:
//   bench_hostile          names, one a line
//   bench_hostile N        the N-th of them, from 0: opened, walked and read, then written
#include "HostileFiles.h"
#include "Measure.h"
#include "hostile/Harness.h"

#include <qt/QTCMStream.h>
#include <qt/QTChunk.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>
#include <qt/QTUtils.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

using namespace Ketra::QT;

namespace {

struct Result {
    bool isMovie = false;
    double openSeconds = 0;
    double walkSeconds = 0;
    double writeSeconds = 0;
    std::uint64_t atoms = 0;
    std::uint64_t frames = 0;
};

void readSome(QTTrack& track, Result& result) {
    const auto read = [&](int count) {
        hostile::attempt([&] {
            for (int i = 0; i < count; ++i) {
                const std::unique_ptr<QTFrame> frame(track.getChunk() ? track.getChunk()->getNextFrame()
                                                                      : nullptr);
                if (!frame) return;
                ++result.frames;
            }
        });
    };
    for (const unsigned int n : {1u, 1000u, 100000u, 0x7FFFFFFFu}) {
        hostile::attempt([&] { track.initWithSample(n); });
        read(20);
    }
    for (const float share : {0.0f, 0.5f, 0.99f}) {
        hostile::attempt([&] { track.initWithTime(share * static_cast<float>(track.getDuration())); });
        read(20);
    }
}

Result run(const hostile::Bytes& bytes) {
    Result result;
    double start = measure::now();
    const auto lap = [&] {
        const double was = start;
        start = measure::now();
        return start - was;
    };
    Ketra::Ferro::RStream source(new hostile::FaultyStream(bytes.data(), bytes.size(),
                                                           hostile::Fault::none)); // borrows, copies nothing
    QTCMStream stream(&source);
    std::unique_ptr<QTMovie> movie;
    hostile::attempt([&] { movie.reset(QTMovie::createNewQTMovieFromStream(&stream, kMOV)); });
    result.openSeconds = lap();
    if (!movie) return result;
    result.isMovie = true;
    result.atoms = movie->getUtils()->getAllAtoms(movie->getRoot()).size();
    std::vector<QTTrack*> tracks = movie->getTracks();
    tracks.resize(std::min<std::size_t>(tracks.size(), 16));
    for (QTTrack* track : tracks) {
        readSome(*track, result);
    }
    result.walkSeconds = lap();
    hostile::attempt([&] { movie->updateAtomSizes(); });
    hostile::attempt([&] { hostile::consume(movie->serializeRoot()); });
    result.writeSeconds = lap();
    return result;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<hostile::HostileFile> files = hostile::hostileFiles();
    if (argc != 2) {
        for (const hostile::HostileFile& file : files) {
            std::puts(file.name.c_str());
        }
        return 0;
    }
    const auto index = static_cast<std::size_t>(std::atoi(argv[1]));
    if (index >= files.size()) return 2;
    const hostile::Bytes bytes = files[index].make();
    malloc_trim(0); // what making the file took does not count
    const measure::Memory before = measure::memory();
    measure::resetPeak();
    const Result r = run(bytes);
    const measure::Memory after = measure::memory();
    std::printf(
        "{\"name\":\"%s\",\"bytes\":%zu,\"movie\":%s,\"open_s\":%.4f,\"walk_s\":%.4f,\"write_s\":%.4f,"
        "\"peak_kb\":%ld,\"atoms\":%" PRIu64 ",\"frames\":%" PRIu64 "}\n",
        files[index].name.c_str(), bytes.size(), r.isMovie ? "true" : "false", r.openSeconds, r.walkSeconds,
        r.writeSeconds, after.peakKb - before.residentKb, r.atoms, r.frames);
    return 0;
}
