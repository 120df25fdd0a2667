// Goes to a time of a movie: to the key frame at which decoding must start, then on to the frame that is
// shown.
//
//     seek movie.mov SECONDS
#include <base/CFileStream.h>
#include <qt/QTCMStream.h>
#include <qt/QTChunk.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>

using namespace Ketra;
using QT::fourCC;

namespace {

void print(const char* what, const QT::QTFrame& frame) {
    std::printf("%s: %.3f s, %u bytes%s\n", what, frame.getTime(), frame.getDataLength(),
                frame.getIsKeyFrame() ? ", key" : "");
}

/// The frame that is shown at the time, of all those that a decoder is fed with to get there.
int showFrame(QT::QTTrack& track, float seconds) {
    //! [time]
    if (track.initWithTime(seconds) != 0) return 1; // behind the end
    QT::QTChunk& cursor = *track.getChunk();        // stands at the key frame at or before the time
    std::printf("decode from sample %u on, %.3f s\n", cursor.getCurrentSampleNumber(),
                cursor.getCurrentTime());
    while (const std::unique_ptr<QT::QTFrame> frame{cursor.getNextFrame()}) {
        // feed the decoder with frame->getData(), frame->getDataLength() bytes
        if (frame->getTime() + frame->getDuration() > seconds) {
            print("shown", *frame);
            return 0;
        }
    }
    //! [time]
    return 1;
}

/// The key frames around a sample, which numbers count from 1.
void showNeighbours(QT::QTTrack& track, unsigned int sample) {
    //! [sample]
    if (track.initWithSample(sample) != 0) return;
    QT::QTChunk& cursor = *track.getChunk();
    const unsigned int previous = cursor.getPreviousKeyframe(); // 0: there is none
    const unsigned int next = cursor.getNextKeyframe();
    if (const std::unique_ptr<QT::QTFrame> frame{cursor.getFrame()}) print("sample", *frame); // stays there
    std::printf("key frames around it: %u and %u; its bytes start at %llu of the file\n", previous, next,
                static_cast<unsigned long long>(cursor.getSampleOffset()));
    //! [sample]
}

int seekIn(const char* path, float seconds) {
    Ferro::RStream source(new Ferro::CFileStream(path, Ferro::CFileStream::kRead));
    QT::QTCMStream stream(&source);
    const std::unique_ptr<QT::QTMovie> movie(QT::QTMovie::createNewQTMovieFromStream(&stream, QT::kMOV));
    QT::QTTrack* video = movie ? movie->getTrackOfType(fourCC("vide")) : nullptr;
    if (!video) {
        std::fprintf(stderr, "%s has no video\n", path);
        return 1;
    }
    showNeighbours(*video, 2);
    return showFrame(*video, seconds);
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fprintf(stderr, "seek MOVIE SECONDS\n");
        return 2;
    }
    try {
        return seekIn(argv[1], std::strtof(argv[2], nullptr));
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
        return 1;
    }
}
