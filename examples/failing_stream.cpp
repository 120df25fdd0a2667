// Lets one call of the stream after the other go wrong while a movie is opened and read, and shows what a
// program is told: by a stream that throws, and by one that returns errors.
//
//     failing_stream movie.mov
#include <base/CException.h>
#include <base/CFileStream.h>
#include <qt/QTCMStream.h>
#include <qt/QTChunk.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>

#include <cstdio>
#include <exception>
#include <memory>
#include <stdexcept>

using namespace Ketra;

namespace {

//! [stream]
/// Thrown by the stream, through the library, to whoever called the library. Not a CException: those are the
/// library's own words.
class StreamError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Passes everything on, until the call whose number it was given.
class FailingStream : public QT::QTCMStream {
public:
    FailingStream(Ferro::RStream* source, unsigned int failingCall, bool throws)
        : QTCMStream(source), left_(failingCall), throws_(throws) {}

    std::int64_t read(unsigned char* buffer, std::int64_t length) override {
        return fails("cannot read") ? -1 : QTCMStream::read(buffer, length);
    }
    std::int64_t lseek(std::int64_t offset, unsigned char relative) override {
        return fails("cannot seek") ? -1 : QTCMStream::lseek(offset, relative);
    }
    std::int64_t size() override { return fails("cannot tell the size") ? -1 : QTCMStream::size(); }

    /// The library takes an error for the end of the data. A stream that throws nothing remembers.
    bool hasFailed() const { return hasFailed_; }

private:
    bool fails(const char* what) {
        if (left_ == 0 || --left_ > 0) return false;
        hasFailed_ = true;
        if (throws_) throw StreamError(what);
        return true;
    }

    unsigned int left_; // calls up to the failing one; 0: none of them fails
    bool throws_;
    bool hasFailed_ = false;
};
//! [stream]

struct Outcome {
    enum { kWhole, kStreamError, kLibraryError, kNoMovie, kDamaged } what;
    unsigned int tracks = 0;
    unsigned int frames = 0;
};

Outcome readMovie(QT::QTStream& stream) {
    constexpr unsigned int kMostFrames = 5; // of each track
    const std::unique_ptr<QT::QTMovie> movie(QT::QTMovie::createNewQTMovieFromStream(&stream, QT::kMOV));
    if (!movie) return {Outcome::kNoMovie};
    Outcome outcome{Outcome::kWhole};
    for (QT::QTTrack* track : movie->getTracks()) {
        ++outcome.tracks;
        if (track->initWithTime(0.5F) != 0 || track->initWithSample(1) != 0) continue;
        for (unsigned int i = 0; i < kMostFrames; ++i) {
            const std::unique_ptr<QT::QTFrame> frame(track->getChunk()->getNextFrame());
            if (!frame || frame->getDataLength() == 0) break;
            ++outcome.frames;
        }
    }
    return outcome;
}

/// The movie with call number `call` failing; 0: with none of them.
Outcome attempt(Ferro::RStream& source, unsigned int call, bool throws) {
    //! [handle]
    FailingStream stream(&source, call, throws);
    try {
        Outcome outcome = readMovie(stream);
        if (stream.hasFailed() && outcome.what == Outcome::kWhole) outcome.what = Outcome::kDamaged;
        return outcome;
    } catch (const StreamError&) { // the stream's own exception, as it was thrown
        return {Outcome::kStreamError};
    } catch (const CException&) { // what could be read makes no sense
        return {Outcome::kLibraryError};
    }
    //! [handle]
}

/// Every call of the stream in its turn; true when each failure was told.
bool failEach(Ferro::RStream& source, bool throws) {
    const Outcome sound = attempt(source, 0, throws);
    if (sound.what != Outcome::kWhole) throw std::runtime_error("no movie, or a damaged one");
    unsigned int counts[5] = {};
    unsigned int calls = 0;
    for (;;) {
        const Outcome outcome = attempt(source, calls + 1, throws);
        if (outcome.what == Outcome::kWhole) { // it took fewer calls
            if (outcome.tracks != sound.tracks || outcome.frames != sound.frames) return false;
            break;
        }
        ++counts[outcome.what];
        ++calls;
    }
    std::printf("%s: %u calls; the stream's exception %u times, the library's %u, no movie %u, "
                "noted by the stream %u\n",
                throws ? "throws" : "returns errors", calls, counts[Outcome::kStreamError],
                counts[Outcome::kLibraryError], counts[Outcome::kNoMovie], counts[Outcome::kDamaged]);
    return !throws || counts[Outcome::kStreamError] == calls;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "failing_stream MOVIE\n");
        return 2;
    }
    try {
        Ferro::RStream source(new Ferro::CFileStream(argv[1], Ferro::CFileStream::kRead));
        const bool told = failEach(source, true) && failEach(source, false);
        if (!told) std::fprintf(stderr, "%s: a failure was not told\n", argv[1]);
        return told ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
        return 1;
    }
}
