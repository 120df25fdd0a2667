#include <base/CFileStream.h>
#include <qt/QTCMStream.h>
#include <qt/QTChunk.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>

#include <cstdio>
#include <memory>

using namespace Ketra;

int main(int, char** argv) {
    Ferro::RStream source(new Ferro::CFileStream(argv[1], Ferro::CFileStream::kRead)); // owns the file
    QT::QTCMStream stream(&source);
    std::unique_ptr<QT::QTMovie> movie(QT::QTMovie::createNewQTMovieFromStream(&stream, QT::kMOV));
    QT::QTTrack* video = movie ? movie->getTrackOfType(QT::fourCC("vide")) : nullptr;
    if (!video || video->initWithTime(1.5F) != 0) return 1; // at the key frame at or before 1.5 s
    for (int i = 0; i < 5; ++i) {
        std::unique_ptr<QT::QTFrame> frame(video->getChunk()->getNextFrame());
        if (!frame) break; // the end of the track
        std::printf("at %.3f s: %u bytes%s\n", frame->getTime(), frame->getDataLength(),
                    frame->getIsKeyFrame() ? ", key frame" : "");
    }
}
