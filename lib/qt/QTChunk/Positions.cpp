// Where a sample is: its time, its chunk, its bytes, its key frames.
#include <qt/QTAtoms.h>
#include <qt/QTAtoms/detail/ChunkRecords.h>
#include <qt/QTAtoms/detail/DecodeIndex.h>
#include <qt/QTAtoms/detail/EditRecords.h>
#include <qt/QTAtoms/detail/SampleRecords.h>
#include <qt/QTChunk.h>
#include <qt/QTChunk/detail/NavigatorIndex.h>
#include <qt/wire/Access.h>
#include <qt/wire/Numbers.h>
#include <qt/wire/Throw.h>

#include <algorithm>

namespace Ketra::QT {

using wire::Access;

bool QTChunk::enterTimeEntry(std::uint64_t entry) {
    timeEntry_ = entry;
    if (!stts_ || entry >= Access::table(*stts_).held()) {
        entryDuration_ = 0;
        return false;
    }
    entryDuration_ = Access::table(*stts_).at(entry).value;
    return true;
}

/// The decode time of sample n in ticks, and the entry that covers it; leaves the cursor at that entry.
bool QTChunk::ticksOf(unsigned int n, std::uint64_t& ticks, std::uint64_t& entry) {
    if (!stts_ || n == 0) return false;
    const std::uint64_t stored = static_cast<std::uint64_t>(samplesPerFrame_) * (n - 1);
    wire::TimePoint at;
    if (!index_->frameTimes.locateSample(Access::table(*stts_), samplesPerFrame_, stored, at)) return false;
    const wire::Run run = Access::table(*stts_).at(at.entry);
    const std::uint64_t firstFrame = (at.samples + samplesPerFrame_ - 1) / samplesPerFrame_;
    ticks = at.ticks + (n - 1 - firstFrame) * (static_cast<std::uint64_t>(run.value) * samplesPerFrame_);
    entry = at.entry;
    lastCoveredSample_ = at.samples + run.count;
    return true;
}

double QTChunk::findTime(unsigned int n) {
    std::uint64_t ticks = 0;
    std::uint64_t entry = 0;
    if (!ticksOf(n, ticks, entry)) return -1.0;
    enterTimeEntry(entry);
    return seconds(ticks);
}

unsigned int QTChunk::findChunkNumber(unsigned int n) {
    if (!stsc_ || !stco_ || n == 0) return 0;
    auto& chunks = Access::table(*stsc_);
    const std::uint64_t limit =
        std::min({static_cast<std::uint64_t>(chunkCount_), chunks.held(), Access::table(*stco_).held()});
    const std::uint64_t last =
        static_cast<std::uint64_t>(samplesPerFrame_) * n; // the frame's last stored sample
    const auto holds = [last](const wire::ChunkRun& chunk) {
        return chunk.totalBefore < last && last <= chunk.end();
    };
    std::uint64_t found = 0;
    if (chunks.packed() && !chunks.store().wrapped()) {
        found = chunks.store().firstEndingAt(last);
        if (found >= limit || !holds(chunks.at(found))) return 0;
    } else {
        while (found < limit && !holds(chunks.at(found))) {
            ++found;
        }
    }
    if (found >= limit) return 0;
    const auto chunk = chunks.at(found);
    if (setSampleDescriptionID(chunk.descriptionID) != 0) return 0;
    chunks.cursor = static_cast<unsigned int>(found);
    chunkNumber_ = static_cast<unsigned int>(found) + 1;
    samplesPerChunk_ = chunk.samplesPerChunk;
    chunkFirstSample_ = chunk.totalBefore;
    return chunkNumber_;
}

std::uint64_t QTChunk::sizeOf(std::uint64_t n) const {
    if (constantSize_) return static_cast<std::uint64_t>(constantSize_) * sizeFactor_;
    if (!stsz_ || n == 0) return 0;
    const auto& sizes = Access::table(*stsz_);
    const std::uint64_t held = sizes.held();
    return held ? static_cast<std::uint64_t>(sizes.at(std::min(n - 1, held - 1))) * sizeFactor_ : 0;
}

/// The bytes of `count` frames from index `first` (from 0).
std::uint64_t QTChunk::bytesOf(std::uint64_t first, std::uint64_t count) {
    if (constantSize_) return count * (static_cast<std::uint64_t>(constantSize_) * sizeFactor_);
    return stsz_ ? index_->sizes.sum(Access::table(*stsz_), first, count) * sizeFactor_ : 0;
}

std::uint64_t QTChunk::findSampleOffset(unsigned int n) {
    if (!stco_ || n == 0 || chunkNumber_ == 0 || chunkNumber_ > Access::table(*stco_).held()) return 0;
    std::uint64_t offset = Access::table(*stco_).at(chunkNumber_ - 1);
    const std::uint64_t first = chunkFirstSample_ + samplesPerFrame_;
    const std::uint64_t wanted = static_cast<std::uint64_t>(samplesPerFrame_) * n;
    sampleInChunk_ = 1;
    if (first >= wanted) return offset;
    const std::uint64_t steps = (wanted - first + samplesPerFrame_ - 1) / samplesPerFrame_;
    offset += bytesOf((first - 1) / samplesPerFrame_, steps);
    sampleInChunk_ = static_cast<unsigned int>(steps + 1);
    return offset;
}

unsigned int QTChunk::findSampleSize(unsigned int n) { return static_cast<unsigned int>(sizeOf(n)); }

bool QTChunk::closestTicks(double t, unsigned int& sample, std::uint64_t& ticks) {
    if (!stts_ || !withinDuration(t)) return false;
    const std::uint64_t x =
        static_cast<std::uint64_t>(std::max<std::int64_t>(0, wire::toInteger(t * timeScale_)));
    wire::TimePoint at;
    auto& times = samplesPerFrame_ == 1 ? index_->frameTimes : index_->plainTimes;
    if (!times.locateTicks(Access::table(*stts_), x, at)) return false;
    const std::uint64_t duration = Access::table(*stts_).at(at.entry).value;
    const std::uint64_t whole = duration ? (x - at.ticks) / duration : 0;
    const std::uint64_t found = at.samples + whole / samplesPerFrame_ * samplesPerFrame_;
    const std::uint64_t number = found / samplesPerFrame_ + 1;
    sample = static_cast<unsigned int>(std::min<std::uint64_t>(number, 0xFFFFFFFF));
    ticks = at.ticks + whole * duration;
    enterTimeEntry(at.entry);
    return true;
}

double QTChunk::findClosestTime(double t, unsigned int* sample) {
    unsigned int found = 0;
    std::uint64_t ticks = 0;
    if (!closestTicks(t, found, ticks)) return -1.0;
    if (sample) *sample = found;
    return seconds(ticks);
}

/// With nothing but partial sync samples to go by: the entry two places before the first one behind the
/// current sample.
std::uint64_t QTChunk::partialKeyframe() const {
    const auto& partial = Access::table(*stps_);
    const std::uint64_t after = index_->partialSync.firstAfter(partial, currentSample_);
    return partial.at(after > 2 ? after - 2 : 0);
}

int QTChunk::setPreviousKeyframe() {
    if (!stss_ && !stps_) {
        previousKeyframe_ = currentSample_;
        const bool last = static_cast<std::uint64_t>(samplesPerFrame_) * currentSample_ == sampleCount_;
        nextKeyframe_ = last ? 0 : currentSample_ + 1;
    } else if (!stss_) {
        previousKeyframe_ = static_cast<unsigned int>(partialKeyframe());
        isKeyframe_ = false;
        hasNextKeyframe_ = false;
    } else {
        const auto& sync = Access::table(*stss_);
        const std::uint64_t held = sync.held();
        const std::uint64_t at = index_->sync.firstAtOrAfter(sync, currentSample_);
        isKeyframe_ = at < held && sync.at(at) == currentSample_;
        const bool none = at == 0 && !isKeyframe_; // the first sync sample lies ahead
        if (isKeyframe_) {
            previousKeyframe_ = currentSample_;
        } else {
            previousKeyframe_ = none ? 1 : sync.at(at - 1);
        }
        syncPosition_ = index_->sync.firstAfter(sync, currentSample_, at);
        if (held == 1 && currentSample_ > 100 && stps_) {
            const auto& partial = Access::table(*stps_);
            if (index_->partialSync.firstAtOrAfter(partial, currentSample_) < partial.held()) {
                previousKeyframe_ = static_cast<unsigned int>(partialKeyframe());
            }
            syncPosition_ = 2;
        }
        hasNextKeyframe_ = !none && syncPosition_ < held;
        nextKeyframe_ = hasNextKeyframe_ ? sync.at(syncPosition_) : 0;
        if (none) nextKeyframe_ = 1;
    }
    // The composition cursor would go to the key frame here; every positioning moves it on to its own sample.
    return 0;
}

/// Has on its way what locate() will look at, which takes as long as finding the key frame does.
KETRA_QT_INLINED static void expectLocating(const STSC& stsc, const STCO& stco, const STSZ& stsz,
                                            unsigned int n) {
    const auto& chunks = Access::table(stsc);
    if (!chunks.packed() || chunks.store().wrapped()) return;
    Access::table(stco).expect(chunks.store().firstEndingAt(n), 1);
    constexpr unsigned int kNear = 32; // samples: about a chunk's
    const unsigned int behind = std::max(n, kNear);
    Access::table(stsz).expect(behind - kNear, kNear);
}

/// Chunk, offset and size of the current sample.
bool QTChunk::locate(unsigned int n) {
    if (findChunkNumber(n) == 0) return false;
    sampleOffset_ = findSampleOffset(n);
    sampleSize_ = sizeOf(n);
    return sampleSize_ != 0;
}

void QTChunk::setTableIterators() {
    Access::table(*stsc_).cursor = chunkNumber_ - 1;
    Access::table(*stsz_).cursor = currentSample_ - 1;
    if (stss_) Access::table(*stss_).cursor = static_cast<unsigned int>(syncPosition_);
    Access::table(*stts_).cursor = static_cast<unsigned int>(timeEntry_);
    Access::table(*stco_).cursor = chunkNumber_;
    if (ctts_) Access::seekDecodeOffset(*ctts_, currentSample_ - 1);
    setSampleTicks(entryDuration_ * samplesPerFrame_);
}

/// Nothing is current: frames are null until the next positioning, which starts afresh.
void QTChunk::leavePosition() {
    timeKnown_ = false;
    chunkNumber_ = 0;
}

/// Makes sample n current; the tables and settings are those of the last reset().
int QTChunk::place(unsigned int n) {
    const auto placed = [this, n] {
        if (rangeCheck(n) != 0) return false;
        currentSample_ = n;
        setPreviousKeyframe();
        std::uint64_t entry = 0;
        if (!ticksOf(n, currentTicks_, entry)) return false;
        enterTimeEntry(entry);
        timeKnown_ = true;
        return ticksWithinDuration(currentTicks_) && locate(n);
    };
    if (!placed()) {
        leavePosition();
        return -1;
    }
    setTableIterators();
    return 0;
}

int QTChunk::positionAt(unsigned int n) {
    if (rangeCheck(n) != 0) return -1; // nothing was begun, so the position stays
    if (reset() == 0) return place(n);
    leavePosition();
    return -1;
}

int QTChunk::initWithSample(unsigned int n) {
    if (positionAt(n) == 0) return 0;
    QT_THROW(wire::area::kChunk, "Ketra::QT::QTChunk::initWithSample",
             CString::createWithFormat("Couldn't init with sample nr. %d", static_cast<int>(n)));
}

int QTChunk::positionAtTime(double t) {
    if (reset() != 0) return -1;
    unsigned int sample = 0;
    std::uint64_t ticks = 0;
    if (!closestTicks(t, sample, ticks)) return -1;
    currentTicks_ = ticks;
    timeKnown_ = true;
    if (rangeCheck(sample) != 0) return -1;
    currentSample_ = sample;
    if (stsc_) expectLocating(*stsc_, *stco_, *stsz_, sample);
    setPreviousKeyframe();
    // Whoever asks for a time mostly goes on to its key frame.
    if (ctts_ && previousKeyframe_) Access::expectDecodeOffset(*ctts_, previousKeyframe_ - 1);
    // The time found may lie on the border of two entries; the sample's own entry is the one that goes on.
    std::uint64_t ownTicks = 0;
    std::uint64_t entry = 0;
    if (!ticksOf(sample, ownTicks, entry)) return -1;
    enterTimeEntry(entry);
    return locate(sample) && sampleOffset_ != 0 ? 0 : -1;
}

/// Makes the sample at that time current but for the tables' own cursors, which whoever goes on to its key
/// frame need not move twice.
int QTChunk::seekTime(double t) {
    constexpr double kFirstMoment = 0.01; // anything earlier means the beginning
    if (!(t >= kFirstMoment)) t = 0;
    if (!withinDuration(t)) return -1; // nothing was begun, so the position stays
    int result = positionAtTime(t);
    if (result != 0 && t > 0) result = positionAtTime(0);
    if (result != 0) leavePosition();
    return result;
}

int QTChunk::initWithTime(float t) {
    if (seekTime(static_cast<double>(t)) != 0) return -1;
    setTableIterators();
    return 0;
}

} // namespace Ketra::QT
