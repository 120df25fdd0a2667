// The track's entry points to its cursor.
#include <base/CException.h>
#include <qt/QTAtoms.h>
#include <qt/QTAtoms/detail/ChunkRecords.h>
#include <qt/QTAtoms/detail/EditRecords.h>
#include <qt/QTAtoms/detail/SampleRecords.h>
#include <qt/QTChunk.h>
#include <qt/QTTrack/QTTrack.h>
#include <qt/wire/Access.h>
#include <qt/wire/Numbers.h>

namespace Ketra::QT {

namespace {

constexpr int kEmptyEdit = -1;

/// Where the first edit starts in the media, in seconds; an empty edit starts nowhere.
double firstEditStart(const QTTrack& track) {
    const QTAtom* mdia = wire::child<QTAtom>(track.getTrak(), fourCC("mdia"));
    const MDHD* mdhd = wire::child<MDHD>(mdia, fourCC("mdhd"));
    const QTAtom* edts = wire::child<QTAtom>(track.getTrak(), fourCC("edts"));
    const ELST* elst = wire::child<ELST>(edts, fourCC("elst"));
    if (!mdhd || !elst || wire::Access::table(*elst).held() == 0) return 0;
    const int mediaTime = static_cast<int>(wire::Access::table(*elst).at(0).mediaTime);
    if (mediaTime == kEmptyEdit) return 0;
    return wire::toSeconds(static_cast<unsigned int>(mediaTime), mdhd->getTimeScale());
}

} // namespace

QTChunk* QTTrack::getChunk() {
    // A track that was read gets its cursor when somebody asks; a track being written begins its chunks.
    if (!chunk_ && readsSamples_) {
        try {
            chunk_ = std::make_unique<QTChunk>(this);
        } catch (const CException&) {
            return nullptr; // no tables to read samples from
        }
    }
    return chunk_.get();
}

int QTTrack::initWithTime(float t) {
    QTChunk* chunk = getChunk();
    if (!chunk || chunk->seekTime(static_cast<double>(t) + firstEditStart(*this)) != 0) return -1;
    return chunk->place(chunk->getPreviousKeyframe());
}

int QTTrack::initWithSample(unsigned int n) {
    QTChunk* chunk = getChunk();
    if (!chunk) return -1;
    if (n == 1) {
        if (const double start = firstEditStart(*this); start > 0) {
            if (chunk->seekTime(start) != 0) return -1;
            return chunk->place(chunk->getPreviousKeyframe());
        }
    }
    return chunk->initWithSample(n);
}

} // namespace Ketra::QT
