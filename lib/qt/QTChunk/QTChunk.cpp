#include <qt/QTAtoms.h>
#include <qt/QTAtoms/detail/ChunkRecords.h>
#include <qt/QTAtoms/detail/EditRecords.h>
#include <qt/QTAtoms/detail/SampleRecords.h>
#include <qt/QTChunk.h>
#include <qt/QTChunk/detail/NavigatorIndex.h>
#include <qt/QTTrack/QTTrack.h>
#include <qt/wire/Access.h>
#include <qt/wire/Numbers.h>
#include <qt/wire/Throw.h>

#include <algorithm>
#include <cstdio>

namespace Ketra::QT {

using wire::Access;

namespace {

constexpr unsigned int kEmptyEdit = 0xFFFFFFFF;

} // namespace

QTChunk::QTChunk(const QTChunk&) = default;
QTChunk& QTChunk::operator=(const QTChunk&) = default;
QTChunk::~QTChunk() = default;

QTChunk::QTChunk(QTTrack* track) : track_(track), index_(std::make_shared<wire::NavigatorIndex>()) {
    if (!track || reset() != 0) {
        QT_THROW(wire::area::kChunk, "Ketra::QT::QTChunk::QTChunk", "Error resetting QTChunk.");
    }
}

int QTChunk::getSampleAtoms() {
    const QTAtom* trak = track_->getTrak();
    const QTAtom* mdia = wire::child<QTAtom>(trak, fourCC("mdia"));
    const QTAtom* minf = wire::child<QTAtom>(mdia, fourCC("minf"));
    const QTAtom* stbl = wire::child<QTAtom>(minf, fourCC("stbl"));
    stsd_ = wire::child<STSD>(stbl, fourCC("stsd"));
    stss_ = wire::child<STSS>(stbl, fourCC("stss"));
    stps_ = wire::child<STPS>(stbl, fourCC("stps"));
    sdtp_ = wire::child<SDTP>(stbl, fourCC("sdtp"));
    stts_ = wire::child<STTS>(stbl, fourCC("stts"));
    stsc_ = wire::child<STSC>(stbl, fourCC("stsc"));
    stsz_ = wire::child<STSZ>(stbl, fourCC("stsz"));
    stco_ = wire::child<STCO>(stbl, fourCC("stco"));
    ctts_ = wire::child<CTTS>(stbl, fourCC("ctts"));
    cslg_ = wire::child<CSLG>(stbl, fourCC("cslg"));
    const MDHD* mdhd = wire::child<MDHD>(mdia, fourCC("mdhd"));
    timeScale_ = mdhd ? mdhd->getTimeScale() : 0;
    mediaDuration_ = mdhd ? mdhd->getDuration() : 0;
    // A table without entries says nothing, so it counts as absent; a new track has all of them.
    writtenSync_ = stss_;
    writtenPartialSync_ = stps_;
    if (stss_ && Access::table(*stss_).held() == 0) stss_ = nullptr;
    if (stps_ && Access::table(*stps_).held() == 0) stps_ = nullptr;
    if (ctts_ && Access::table(*ctts_).held() == 0) ctts_ = nullptr;
    return 0;
}

void QTChunk::readEditList() {
    const QTAtom* edts = wire::child<QTAtom>(track_->getTrak(), fourCC("edts"));
    const ELST* elst = wire::child<ELST>(edts, fourCC("elst"));
    if (!elst) return;
    const auto& edits = Access::table(*elst);
    if (edits.held() == 0) return;
    const unsigned int movieScale = track_->getMovieTimeScale();
    const auto first = edits.at(0);
    const auto mediaTime = static_cast<unsigned int>(first.mediaTime);
    mediaStart_ = wire::toSeconds(mediaTime, timeScale_);
    if (mediaTime == kEmptyEdit) {
        emptyEditStart_ = mediaStart_;
        const unsigned int second = edits.held() > 1 ? edits.at(1).duration : first.duration;
        duration_ = wire::toSeconds(second - first.duration, movieScale);
        return;
    }
    double units = 0;
    for (std::uint64_t i = 0; i < edits.held(); ++i) {
        units += edits.at(i).duration;
    }
    duration_ = wire::toSeconds(units, movieScale);
}

void QTChunk::resetKeyframes() {
    previousKeyframe_ = 0;
    nextKeyframe_ = 0;
    hasNextKeyframe_ = false;
    isKeyframe_ = stss_ == nullptr; // without a sync table every sample can be decoded on its own
    if (!stss_) return;
    const auto& sync = Access::table(*stss_);
    previousKeyframe_ = sync.at(0);
    if (sync.held() < 2) return;
    nextKeyframe_ = sync.at(1);
    hasNextKeyframe_ = true;
}

int QTChunk::reset() {
    mediaStart_ = 0;
    duration_ = 0;
    emptyEditStart_ = 0;
    getSampleAtoms();
    readEditList();
    if (duration_ == 0) duration_ = wire::toSeconds(static_cast<double>(mediaDuration_), timeScale_);
    resetKeyframes();
    syncPosition_ = 0;
    timeEntry_ = 0;
    lastCoveredSample_ = 0;
    entryDuration_ = 0;
    sampleInChunk_ = 0;
    chunkNumber_ = 0;
    samplesPerChunk_ = 0;
    chunkFirstSample_ = 0;
    sampleOffset_ = 0;
    sampleSize_ = 0;
    currentSample_ = 0;
    currentTicks_ = 0;
    timeKnown_ = false;
    setSampleTicks(0);
    // Far enough inside the duration whole ticks tell, without a division.
    const double limit = (duration_ + mediaStart_) * timeScale_;
    constexpr double kExact = 1125899906842624.0; // 2^50: ticks below it have exact doubles
    safeTicks_ = limit > 2 ? static_cast<std::uint64_t>(std::min(limit, kExact)) - 2 : 0;
    if (!stsz_ || !stco_) return -1;
    sampleCount_ = stsz_->getNumberOfEntries();
    constantSize_ = stsz_->getSampleSize();
    chunkCount_ = stco_->getNumberOfEntries();
    // The settings of a description follow from the file's own tables every time.
    descriptionID_ = 0;
    dataFormat_ = 0;
    samplesPerFrame_ = 1;
    reportedSamples_ = 1;
    sizeFactor_ = 1;
    buffering_ = false;
    setSampleDescriptionID(1);
    moreFrames_ = true;
    return 0;
}

double QTChunk::seconds(std::uint64_t ticks) const {
    return wire::toSeconds(static_cast<double>(ticks), timeScale_);
}

bool QTChunk::ticksWithinDuration(std::uint64_t ticks) const {
    return ticks <= safeTicks_ || withinDuration(seconds(ticks));
}

void QTChunk::setSampleTicks(std::uint64_t ticks) {
    sampleTicks_ = ticks;
    sampleSeconds_ = seconds(ticks);
}

double QTChunk::getCurrentTime() const { return timeKnown_ ? seconds(currentTicks_) : -1.0; }

double QTChunk::getChunkStartTime() const { return hasFrames_ ? firstDecodeTime_ : -1.0; }

int QTChunk::rangeCheck(unsigned int n) {
    return n >= 1 && n <= sampleCount_ && withinDuration(getCurrentTime()) ? 0 : -1;
}

int QTChunk::rangeCheck(int n) { return n < 0 ? -1 : rangeCheck(static_cast<unsigned int>(n)); }

int QTChunk::rangeCheck(double t) { return withinDuration(t) ? 0 : -1; }

void QTChunk::printTables() {
    std::printf("time scale %u, duration %f s, media start %f s\n", timeScale_, duration_, mediaStart_);
    std::printf("samples %u, chunks %u, constant size %u, samples a frame %u, size factor %u\n", sampleCount_,
                chunkCount_, constantSize_, samplesPerFrame_, sizeFactor_);
    for (std::uint64_t i = 0; stts_ && i < Access::table(*stts_).held(); ++i) {
        const wire::Run run = Access::table(*stts_).at(i);
        std::printf("stts %llu: %u x %u\n", static_cast<unsigned long long>(i), run.count, run.value);
    }
    for (std::uint64_t i = 0; ctts_ && i < Access::table(*ctts_).held(); ++i) {
        const wire::Run run = Access::table(*ctts_).at(i);
        std::printf("ctts %llu: %u x %d\n", static_cast<unsigned long long>(i), run.count,
                    static_cast<int>(run.value));
    }
    for (std::uint64_t i = 0; stss_ && i < Access::table(*stss_).held(); ++i) {
        std::printf("stss %llu: %u\n", static_cast<unsigned long long>(i), Access::table(*stss_).at(i));
    }
    for (std::uint64_t i = 0; stco_ && i < Access::table(*stco_).held(); ++i) {
        std::printf("stco %llu: %llu\n", static_cast<unsigned long long>(i),
                    static_cast<unsigned long long>(Access::table(*stco_).at(i)));
    }
}

} // namespace Ketra::QT
