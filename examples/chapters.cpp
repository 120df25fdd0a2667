// Lists the chapters of a movie, and the timecode that it starts with.
//
//     chapters movie.mov
#include <base/CFileStream.h>
#include <qt/QTAtoms.h>
#include <qt/QTCMStream.h>
#include <qt/QTChunk.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <memory>
#include <string>

using namespace Ketra;
using QT::fourCC;

namespace {

//! [find]
/// The track of the titles: a text track that another track refers to as its chapters. Null without chapters.
QT::QTTrack* chapterTrack(const QT::QTMovie& movie) {
    for (const QT::QTTrack* track : movie.getTracks()) {
        for (QT::QTAtom* references : track->getTrak()->getChildren()) {
            if (references->getType() != fourCC("tref")) continue;
            const auto* chapters = dynamic_cast<QT::CHAP*>(references->getAtomOfType(fourCC("chap")));
            if (chapters) return movie.getTrackID(chapters->getTrackID());
        }
    }
    return nullptr;
}
//! [find]

//! [list]
/// A title is one sample: a 16-bit length, then so many bytes of text.
std::string titleOf(const QT::QTFrame& sample) {
    if (sample.getDataLength() < 2) return {};
    unsigned char* cursor = sample.getData();
    const unsigned int stated = QT::QTTrack::getUInt16(&cursor);
    const unsigned int length = std::min(stated, sample.getDataLength() - 2); // a file may say anything
    return {cursor, cursor + length};
}

void listChapters(QT::QTTrack& titles) {
    if (titles.initWithSample(1) != 0) return;
    while (const std::unique_ptr<QT::QTFrame> sample{titles.getChunk()->getNextFrame()}) {
        std::printf("%8.3f s  %s\n", sample->getTime(), titleOf(*sample).c_str());
    }
}
//! [list]

//! [timecode]
/// The sample of a timecode track counts frames; its description says how many there are in a second.
void printTimecode(QT::QTTimeCodeTrack& track) {
    if (track.initWithSample(1) != 0) return;
    const std::unique_ptr<QT::QTFrame> sample(track.getChunk()->getNextFrame());
    if (!sample || sample->getDataLength() < 4) return;
    unsigned char* cursor = sample->getData();
    const unsigned int frame = QT::QTTrack::getUInt32(&cursor);
    const unsigned int rate = std::max(1U, track.getNumberOfFrames());
    const unsigned int seconds = frame / rate;
    // A drop-frame count (getDropFrameFlag()) leaves out two numbers a minute, but not every tenth minute;
    // `ketraqt timecode` shows how it is counted back.
    std::printf("starts at %02u:%02u:%02u:%02u, %u frames a second%s\n", seconds / 3600, seconds / 60 % 60,
                seconds % 60, frame % rate, rate, track.getDropFrameFlag() ? ", drop frame" : "");
}
//! [timecode]

int listMovie(const char* path) {
    Ferro::RStream source(new Ferro::CFileStream(path, Ferro::CFileStream::kRead));
    QT::QTCMStream stream(&source);
    const std::unique_ptr<QT::QTMovie> movie(QT::QTMovie::createNewQTMovieFromStream(&stream, QT::kMOV));
    if (!movie) {
        std::fprintf(stderr, "%s is no movie\n", path);
        return 1;
    }
    if (QT::QTTrack* titles = chapterTrack(*movie)) listChapters(*titles);
    for (QT::QTTrack* track : movie->getTracks()) {
        if (auto* timecode = dynamic_cast<QT::QTTimeCodeTrack*>(track)) printTimecode(*timecode);
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "chapters MOVIE\n");
        return 2;
    }
    try {
        return listMovie(argv[1]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s: %s\n", argv[1], error.what());
        return 1;
    }
}
