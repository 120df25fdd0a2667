// Handing out frames and moving on.
#include <qt/QTAtoms.h>
#include <qt/QTAtoms/detail/ChunkRecords.h>
#include <qt/QTAtoms/detail/EditRecords.h>
#include <qt/QTAtoms/detail/SampleRecords.h>
#include <qt/QTChunk.h>
#include <qt/QTChunk/detail/NavigatorIndex.h>
#include <qt/QTStream.h>
#include <qt/wire/Access.h>
#include <qt/wire/Block.h>
#include <qt/wire/Numbers.h>
#include <qt/wire/Throw.h>

#include <algorithm>
#include <limits>
#include <new>

namespace Ketra::QT {

using wire::Access;

/// The bytes at a place of the data stream. A size that no frame, or no stream of this length, can hold is
/// refused; a stream that ends early gives what it has.
unsigned char* QTChunk::readBytes(const char* function, std::uint64_t offset, std::uint64_t size,
                                  unsigned int* got) {
    *got = 0;
    bool impossible = size > std::numeric_limits<unsigned int>::max();
    if (size > knownLength_) { // asked again only when it matters
        const std::int64_t length = stream_ ? stream_->size() : 0;
        knownLength_ = length > 0 ? static_cast<std::uint64_t>(length) : 0;
        impossible = impossible || (length > 0 && size > knownLength_);
    }
    wire::MallocPtr block = impossible ? nullptr : wire::allocateRaw(size);
    if (!block) QT_THROW(wire::area::kChunk, function, "Unable to alloc data");
    const auto position = static_cast<std::int64_t>(offset);
    if (!stream_ || position < 0 || stream_->lseek(position, 0) != position) return nullptr;
    std::uint64_t done = 0;
    while (done < size) {
        const std::int64_t more = stream_->read(block.get() + done, static_cast<std::int64_t>(size - done));
        if (more <= 0) break;
        done += std::min(static_cast<std::uint64_t>(more), size - done);
    }
    *got = static_cast<unsigned int>(done);
    return done ? block.release() : nullptr;
}

QTFrame* QTChunk::readFrame(const char* function, bool consumeOffset) {
    if (chunkNumber_ == 0) return nullptr;
    unsigned int length = 0;
    wire::MallocPtr bytes(readBytes(function, sampleOffset_, sampleSize_, &length));
    const double decode = seconds(currentTicks_);
    double composition = decode;
    if (ctts_) {
        const int offset = consumeOffset ? ctts_->getNextDecodeOffset() : Access::peekDecodeOffset(*ctts_);
        if (offset && timeScale_) composition += static_cast<double>(offset) / timeScale_;
    }
    auto* frame = new QTFrame(length, bytes.get(), composition, sampleSeconds_, isKeyframe_, reportedSamples_,
                              decode + sampleSeconds_, decode, false);
    static_cast<void>(bytes.release());
    return frame;
}

QTFrame* QTChunk::getFrame() { return readFrame("Ketra::QT::QTChunk::getFrame", false); }

QTFrame* QTChunk::getNextFrame() {
    if (!moreFrames_ || chunkNumber_ == 0) return nullptr;
    if (buffering_) return bufferNextChunk();
    QTFrame* frame = readFrame("Ketra::QT::QTChunk::getFrame", true);
    moreFrames_ = updateSettings();
    return frame;
}

/// Moves on by one frame. At the end the cursor goes back to before the first sample, so that it can be
/// positioned again.
bool QTChunk::updateSettings() {
    if (advance()) return true;
    reset();
    return false;
}

bool QTChunk::advance() {
    ++currentSample_;
    ++sampleInChunk_;
    const std::uint64_t stored = static_cast<std::uint64_t>(samplesPerFrame_) * currentSample_;
    if (stored == 0 || stored > sampleCount_ || !ticksWithinDuration(currentTicks_)) return false;
    if (nextSampleTime() != 0) return false;
    const std::uint64_t previousSize = sampleSize_;
    if (static_cast<std::uint64_t>(samplesPerFrame_) * sampleInChunk_ > samplesPerChunk_ &&
        !enterNextChunk()) {
        return false;
    }
    if (sampleInChunk_ > 1) sampleOffset_ += previousSize;
    sampleSize_ = sizeOf(currentSample_);
    Access::table(*stsz_).cursor = currentSample_ - 1;
    if (!stss_) {
        previousKeyframe_ = currentSample_;
        nextKeyframe_ = stored == sampleCount_ ? 0 : currentSample_ + 1;
    } else if (hasNextKeyframe_) {
        nextKeyframe();
    } else {
        isKeyframe_ = false;
    }
    return true;
}

int QTChunk::nextSampleTime() {
    const std::uint64_t first = static_cast<std::uint64_t>(samplesPerFrame_) * (currentSample_ - 1);
    currentTicks_ += sampleTicks_;
    if (first >= lastCoveredSample_) {
        auto& times = Access::table(*stts_);
        do {
            if (timeEntry_ + 1 >= times.held()) {
                timeKnown_ = false;
                return -1;
            }
            ++timeEntry_;
            lastCoveredSample_ += times.at(timeEntry_).count;
        } while (first >= lastCoveredSample_);
        enterTimeEntry(timeEntry_);
        times.cursor = static_cast<unsigned int>(timeEntry_);
        setSampleTicks(entryDuration_ * samplesPerFrame_);
    }
    return ticksWithinDuration(currentTicks_) ? 0 : -1;
}

/// The next chunk that holds samples.
bool QTChunk::enterNextChunk() {
    auto& chunks = Access::table(*stsc_);
    const auto& offsets = Access::table(*stco_);
    const std::uint64_t limit = std::min(chunks.held(), offsets.held());
    std::uint64_t next = chunkNumber_; // the 0-based index of the chunk behind the current one
    while (next < limit && chunks.at(next).samplesPerChunk == 0) {
        ++next;
    }
    if (next >= limit) return false;
    const auto chunk = chunks.at(next);
    if (setSampleDescriptionID(chunk.descriptionID) != 0) return false;
    chunks.cursor = static_cast<unsigned int>(next);
    chunkNumber_ = static_cast<unsigned int>(next) + 1;
    samplesPerChunk_ = chunk.samplesPerChunk;
    chunkFirstSample_ = chunk.totalBefore;
    sampleInChunk_ = 1;
    sampleOffset_ = offsets.at(next);
    Access::table(*stco_).cursor = chunkNumber_;
    return true;
}

int QTChunk::nextKeyframe() {
    if (currentSample_ >= nextKeyframe_) {
        const auto& sync = Access::table(*stss_);
        previousKeyframe_ = nextKeyframe_;
        ++syncPosition_;
        hasNextKeyframe_ = syncPosition_ < sync.held();
        nextKeyframe_ = hasNextKeyframe_ ? sync.at(syncPosition_) : 0;
    }
    isKeyframe_ = currentSample_ == previousKeyframe_;
    return 0;
}

/// The last of the samples from..to that the tables still give a time within the duration for; `from` itself
/// is one. Times do not fall, so halving finds it.
unsigned int QTChunk::lastPlayable(unsigned int from, unsigned int to) {
    const auto playable = [this](unsigned int n) {
        std::uint64_t ticks = 0;
        std::uint64_t entry = 0;
        return static_cast<std::uint64_t>(samplesPerFrame_) * n <= sampleCount_ && ticksOf(n, ticks, entry) &&
               ticksWithinDuration(ticks);
    };
    if (playable(to)) return to;
    unsigned int low = from;
    unsigned int high = to;
    while (high - low > 1) {
        const unsigned int middle = low + (high - low) / 2;
        (playable(middle) ? low : high) = middle;
    }
    return low;
}

/// The rest of the current chunk as one frame.
QTFrame* QTChunk::bufferNextChunk() {
    const std::uint64_t inChunk = samplesPerChunk_ / samplesPerFrame_;
    const std::uint64_t consumed = sampleInChunk_ - 1;
    if (inChunk <= consumed) {
        moreFrames_ = false;
        return nullptr;
    }
    const std::uint64_t left = std::min<std::uint64_t>(inChunk - consumed, 0xFFFFFFFFU - currentSample_);
    const unsigned int last =
        lastPlayable(currentSample_, currentSample_ + static_cast<unsigned int>(left) - (left ? 1U : 0U));
    const unsigned int count = last - currentSample_ + 1;

    unsigned int length = 0;
    const std::uint64_t size = bytesOf(currentSample_ - 1, count);
    wire::MallocPtr bytes(readBytes("Ketra::QT::QTChunk::bufferNextChunk", sampleOffset_, size, &length));

    const std::uint64_t startTicks = currentTicks_;
    std::uint64_t lastTicks = 0;
    std::uint64_t entry = 0;
    ticksOf(last, lastTicks, entry); // leaves the cursor at the last sample's entry
    enterTimeEntry(entry);
    const std::uint64_t lastDuration = entryDuration_ * samplesPerFrame_;
    const std::uint64_t endTicks = lastTicks + lastDuration;
    const double start = seconds(startTicks);
    auto* frame = new QTFrame(length, bytes.get(), start, seconds(endTicks - startTicks), true, count,
                              seconds(endTicks), start, false);
    static_cast<void>(bytes.release());

    // Stand on the last sample of the frame and take one step from there.
    sampleOffset_ += bytesOf(currentSample_ - 1, count - 1);
    sampleSize_ = sizeOf(last);
    sampleInChunk_ += count - 1;
    currentSample_ = last;
    currentTicks_ = lastTicks;
    setSampleTicks(lastDuration);
    moreFrames_ = updateSettings();
    return frame;
}

} // namespace Ketra::QT
