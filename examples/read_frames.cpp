// Reads a movie: lists its tracks, then walks through the frames of each.
//
//     read_frames movie.mov
#include <base/CFileStream.h>
#include <qt/QTCMStream.h>
#include <qt/QTChunk.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>

#include <cstdio>
#include <exception>
#include <memory>

using namespace Ketra;

namespace {

void readTrack(QT::QTTrack& track) {
    std::printf("track %u: %.3f s, %u ticks a second\n", track.getID(), track.getDuration(),
                track.getAtomMediaTimeScale());
    //! [frames]
    if (track.initWithSample(1) != 0) return; // no samples
    unsigned int frames = 0;
    unsigned int keys = 0;
    unsigned long long bytes = 0;
    // A frame is one sample, or the rest of a chunk of plain sound.
    while (std::unique_ptr<QT::QTFrame> frame{track.getChunk()->getNextFrame()}) {
        if (++frames <= 3) {
            std::printf("  at %.3f s for %.3f s: %u bytes%s\n", frame->getTime(), frame->getDuration(),
                        frame->getDataLength(), frame->getIsKeyFrame() ? ", key" : "");
        }
        keys += frame->getIsKeyFrame() ? 1 : 0;
        bytes += frame->getDataLength();
    }
    //! [frames]
    std::printf("  %u frames, %u of them key frames, %llu bytes\n", frames, keys, bytes);
}

int readMovie(const char* path) {
    //! [open]
    auto* file = new Ferro::CFileStream(path, Ferro::CFileStream::kRead);
    Ferro::RStream source(file); // owns the file
    if (!file->isOpen()) {
        std::fprintf(stderr, "%s cannot be opened\n", path);
        return 1;
    }
    QT::QTCMStream stream(&source);
    const std::unique_ptr<QT::QTMovie> movie(QT::QTMovie::createNewQTMovieFromStream(&stream, QT::kMOV));
    if (!movie) {
        std::fprintf(stderr, "%s is no movie\n", path);
        return 1;
    }
    for (QT::QTTrack* track : movie->getTracks()) {
        readTrack(*track);
    }
    //! [open]
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "read_frames MOVIE\n");
        return 2;
    }
    try {
        return readMovie(argv[1]);
    } catch (const std::exception& error) { // damaged beyond reading
        std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
        return 1;
    }
}
