#include "FrameWalk.h"

#include "Atoms.h"

#include <base/CException.h>
#include <qt/QTAtoms/samples/STSZ.h>

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace Ketra::Tool {

using QT::fourCC;

Ticks ticksOf(const QT::QTFrame& frame, unsigned int scale) {
    const auto ticks = [scale](double seconds) {
        const double value = seconds * scale;
        return std::abs(value) < 0x1p62 ? std::llround(value) : 0;
    };
    return {ticks(frame.getDecodeTime()), ticks(frame.getTime()), ticks(frame.getDuration())};
}

FrameWalk::FrameWalk(QT::QTTrack& track) : track_(track), chunk_(track.getChunk()) {
    if (!chunk_) throw TrackError(track.getID(), fmt::format("track {} has no sample tables", track.getID()));
    const auto* sizes =
        atomAt<QT::STSZ>(track.getTrak(), {fourCC("mdia"), fourCC("minf"), fourCC("stbl"), fourCC("stsz")});
    stored_ = sizes ? sizes->getNumberOfEntries() : 0;
    constantSize_ = sizes && sizes->getSampleSize() != 0;
    atEnd_ = stored_ == 0;
    // The cursor itself: positioning through the track would skip what the edit list leaves out.
    if (atEnd_) return;
    try {
        chunk_->initWithSample(1);
    } catch (const CException& error) {
        throw TrackError(track.getID(), fmt::format("track {}: {}", track.getID(), error.what()));
    }
}

void FrameWalk::startAtSample(unsigned int number) {
    if (number < 1 || chunk_->findChunkNumber(number) == 0) {
        throw ToolError(kUsage, fmt::format("track {} has no sample {}", track_.getID(), number));
    }
    chunk_->initWithSample(number);
}

void FrameWalk::startAtTime(double seconds) {
    unsigned int sample = 0;
    const double found = atEnd_ ? -1 : chunk_->findClosestTime(std::max(0.0, seconds), &sample);
    // The very end of the last sample would be the sample behind it.
    if (found < 0 || chunk_->findChunkNumber(sample) == 0) {
        throw ToolError(kUsage, fmt::format("track {} has no sample at {} s", track_.getID(), seconds));
    }
    chunk_->initWithSample(sample);
    if (const unsigned int key = chunk_->getPreviousKeyframe(); key && key < sample)
        chunk_->initWithSample(key);
}

std::unique_ptr<QT::QTFrame> FrameWalk::next(FramePlace& place) {
    if (atEnd_) return nullptr;
    place = {chunk_->getCurrentSampleNumber(), chunk_->getChunkNumber(), chunk_->getSampleOffset(),
             chunk_->getSampleSize(), 0};
    std::unique_ptr<QT::QTFrame> frame = frameAt(place);
    atEnd_ = !frame;
    if (!frame) return nullptr;
    const unsigned int got = frame->getDataLength();
    if (const unsigned int steps = stepsOf(*frame, place); steps > 1) {
        // The rest of a chunk: with one size for all samples it is known how much that should be.
        place.size = constantSize_ ? std::max(got, place.size * steps) : got;
    }
    place.missing = place.size > got ? place.size - got : 0;
    return frame;
}

std::unique_ptr<QT::QTFrame> FrameWalk::frameAt(const FramePlace& place) {
    try {
        return std::unique_ptr<QT::QTFrame>(chunk_->getNextFrame());
    } catch (const CException& error) {
        throw TrackError(track_.getID(),
                         fmt::format("track {}, sample {} ({} bytes at {}): {}", track_.getID(), place.sample,
                                     place.size, place.offset, error.what()));
    }
}

/// How many samples the cursor moved on by for a frame. At the end it does not say, but a frame of more than
/// one sample does.
unsigned int FrameWalk::stepsOf(const QT::QTFrame& frame, const FramePlace& place) const {
    const unsigned int now = chunk_->getCurrentSampleNumber();
    if (now > place.sample) return now - place.sample;
    return frame.getDataLength() > place.size ? frame.getSamplesInFrame() : 1;
}

} // namespace Ketra::Tool
