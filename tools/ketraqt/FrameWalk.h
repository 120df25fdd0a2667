// All frames of a track in order, with the place of each in the file.
#pragma once

#include "ToolError.h"

#include <qt/QTChunk.h>
#include <qt/QTFrame.h>
#include <qt/QTTrack.h>

#include <cstdint>
#include <memory>
#include <string>

namespace Ketra::Tool {

/// What is wrong with the samples of a track; a message adds the place of the damage.
class TrackError : public ToolError {
public:
    TrackError(unsigned int track, const std::string& text) : ToolError(kMalformed, text), track_(track) {}
    unsigned int track() const { return track_; } ///< its ID

private:
    unsigned int track_;
};

struct FramePlace {
    unsigned int sample = 0; ///< number, from 1
    unsigned int chunk = 0;  ///< number, from 1
    std::uint64_t offset = 0;
    unsigned int size = 0;    ///< bytes, by the tables
    unsigned int missing = 0; ///< how many of them the file does not have
};

/// A frame's times in ticks of the media time scale. A time in seconds is ticks / scale, rounded once, so
/// that rounding its product with the scale gives the ticks back.
struct Ticks {
    std::int64_t decode;
    std::int64_t presentation;
    std::int64_t duration;
};
Ticks ticksOf(const QT::QTFrame& frame, unsigned int scale);

/// Goes by the sample tables alone: no edit list is applied.
class FrameWalk {
public:
    /// At the first sample. Throws TrackError when the tables cannot be followed.
    explicit FrameWalk(QT::QTTrack& track);

    void startAtSample(unsigned int number); ///< throws ToolError beyond the last one
    /// The key frame at or before the sample that is decoded at that time. Throws ToolError beyond the end.
    void startAtTime(double seconds);

    /// The frame at the position, which then moves on; null at the end. Throws TrackError for a damaged one.
    std::unique_ptr<QT::QTFrame> next(FramePlace& place);

    unsigned int storedSamples() const { return stored_; }

private:
    std::unique_ptr<QT::QTFrame> frameAt(const FramePlace& place);
    unsigned int stepsOf(const QT::QTFrame& frame, const FramePlace& place) const;

    QT::QTTrack& track_;
    QT::QTChunk* chunk_;
    unsigned int stored_ = 0;
    bool constantSize_ = false;
    bool atEnd_ = false;
};

} // namespace Ketra::Tool
