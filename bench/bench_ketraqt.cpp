// One measure of the library over one movie in a process of its own, as one JSON line:
//   bench_ketraqt open|seqread|seektime|seeknum FILE
//   bench_ketraqt write FILE COUNT
#include "Measure.h"
#include "OpenMovie.h"
#include "WriteMovie.h"

#include <base/CException.h>

using namespace measure;
using Ketra::QT::QTChunk;
using Ketra::QT::QTTrack;

namespace {

void doOpen(const char* file) {
    const Memory before = memory();
    resetPeak();
    const double start = now();
    OpenMovie open(file);
    const double seconds = now() - start;
    const Memory after = memory();
    printOpen(file, seconds, before, after, open.samples());
}

/// Seconds back to ticks, so that the sums compare with those of programs that count in ticks.
class Ticks {
public:
    explicit Ticks(QTTrack& track) : scale_(track.getAtomMediaTimeScale()) {}
    std::int64_t operator()(double seconds) const { // rounded by hand: no time stands before the start here
        return static_cast<std::int64_t>(seconds * scale_ + 0.5);
    }

private:
    double scale_;
};

void add(Sum& sum, const Frame& frame, const Ticks& ticks) {
    if (!frame) {
        ++sum.errors;
        return;
    }
    sum.add(frame->getData(), frame->getDataLength(), ticks(frame->getDecodeTime()), ticks(frame->getTime()),
            frame->getIsKeyFrame());
}

void doRead(const char* file) {
    OpenMovie open(file);
    QTTrack& track = open.video();
    const Ticks ticks(track);
    Sum sum;
    const double start = now();
    if (track.initWithSample(1) == 0) {
        QTChunk& chunk = *track.getChunk();
        while (const Frame frame{chunk.getNextFrame()}) {
            add(sum, frame, ticks);
        }
    }
    printRead("seqread", file, now() - start, sum);
}

void doSeekTime(const char* file) {
    OpenMovie open(file);
    QTTrack& track = open.video();
    const Ticks ticks(track);
    const std::uint64_t scale = track.getAtomMediaTimeScale();
    const auto milliseconds = static_cast<std::uint32_t>(track.getAtomMediaDuration() * 1000 / scale);
    // A seek takes seconds in a float, which is coarser than a millisecond late in a long movie: aim at the
    // middle of the frame that is shown at the wanted time, so that every program lands on the same one.
    const auto frames = OpenMovie::sizes(track).getNumberOfEntries();
    const double frameTicks = static_cast<double>(track.getAtomMediaDuration()) / frames;
    Walk walk;
    Sum sum;
    const double start = now();
    for (std::uint32_t i = 0; i < kSeeks; ++i) {
        const auto wanted = static_cast<double>(walk.next(milliseconds) * scale / 1000);
        const double middle = (std::floor(wanted / frameTicks) + 0.5) * frameTicks;
        const int result = track.initWithTime(static_cast<float>(middle / static_cast<double>(scale)));
        add(sum, Frame(result == 0 ? track.getChunk()->getNextFrame() : nullptr), ticks);
    }
    printRead("seektime", file, now() - start, sum);
}

void doSeekNumber(const char* file) {
    OpenMovie open(file);
    QTTrack& track = open.video();
    const Ticks ticks(track);
    const auto frames = OpenMovie::sizes(track).getNumberOfEntries();
    Walk walk;
    Sum sum;
    const double start = now();
    for (std::uint32_t i = 0; i < kSeeks; ++i) {
        const int result = track.initWithSample(walk.next(frames) + 1);
        add(sum, Frame(result == 0 ? track.getChunk()->getNextFrame() : nullptr), ticks);
    }
    printRead("seeknum", file, now() - start, sum);
}

void doWrite(const char* file, std::uint32_t count) {
    const Payloads samples(count);
    const Memory before = memory();
    resetPeak();
    const double start = now();
    const double closing = writeMovie(file, samples, count);
    const double end = now();
    printWrite(end - start, end - closing, before, memory(), count);
}

int run(const std::string& measure, const char* file) {
    if (measure == "open") {
        doOpen(file);
    } else if (measure == "seqread") {
        doRead(file);
    } else if (measure == "seektime") {
        doSeekTime(file);
    } else if (measure == "seeknum") {
        doSeekNumber(file);
    } else {
        return 2;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const bool write = argc == 4 && std::string(argv[1]) == "write";
    if (argc != 3 && !write) {
        std::fputs("usage: bench_ketraqt open|seqread|seektime|seeknum FILE\n"
                   "       bench_ketraqt write FILE COUNT\n",
                   stderr);
        return 2;
    }
    try {
        if (write) return doWrite(argv[2], static_cast<std::uint32_t>(std::strtoul(argv[3], nullptr, 10))), 0;
        return run(argv[1], argv[2]);
    } catch (const Ketra::CException& e) {
        std::fprintf(stderr, "%s: %s\n", argv[2], e.what());
    } catch (const std::exception& e) {
        std::fprintf(stderr, "%s: %s\n", argv[2], e.what());
    }
    return 1;
}
