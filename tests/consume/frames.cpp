// Prints the frames of a movie's first video track.
#include <base/CException.h>
#include <base/CFileStream.h>
#include <qt/QTCMStream.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>

#include <cstdio>
#include <memory>

using namespace Ketra;

int main(int argc, char** argv) try {
    if (argc != 2) return 2;
    Ferro::RStream file(new Ferro::CFileStream(argv[1], Ferro::CFileStream::kRead));
    QT::QTCMStream stream(&file); // has to outlive the movie, which borrows it

    const std::unique_ptr<QT::QTMovie> movie(QT::QTMovie::createNewQTMovieFromStream(&stream, QT::kMOV));
    if (!movie) return std::fputs("no movie\n", stderr), 4;
    QT::QTTrack* track = movie->getTrackOfType(QT::fourCC("vide"));
    if (!track || track->initWithSample(1) != 0) return std::fputs("no video\n", stderr), 4;

    while (const auto frame = std::unique_ptr<QT::QTFrame>(track->getChunk()->getNextFrame())) {
        std::printf("%9.6f s  %7u bytes%s\n", frame->getTime(), frame->getDataLength(),
                    frame->getIsKeyFrame() ? "  key frame" : "");
    }
    return 0;
} catch (const CException& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 4;
}
