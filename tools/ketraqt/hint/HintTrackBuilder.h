// Builds the hint track of one media track, sample by sample.
#pragma once

#include "../FrameWalk.h"
#include "Packetizer.h"

#include <qt/QTMovie.h>
#include <qt/QTTrack.h>

#include <functional>
#include <optional>

namespace Ketra::Tool {

/// Saves the chunk of the track, wherever in the file it goes.
using ChunkSink = std::function<void(QT::QTTrack&)>;

struct HintLimits {
    std::size_t largestPayload = 0; ///< bytes of an RTP packet behind its header
    std::uint64_t mediaBytes = 0;   ///< of all samples of a track
};

/// Samples may share bytes, but a small file whose samples all lie on one another could ask for any amount.
std::uint64_t mostMediaBytes(QT::QTStream& stream);

class HintTrackBuilder {
public:
    /// Begins the hint track in `movie`. Throws ToolError for a medium that cannot be hinted.
    HintTrackBuilder(QT::QTTrack& media, QT::QTMovie& movie, HintLimits limits);

    /// Hints the next sample; false at the end. A full chunk is given to the sink.
    bool step(const ChunkSink& sink);
    /// The last chunk goes to the sink, and the headers are settled.
    void finish(const ChunkSink& sink);

    double time() const { return time_; } ///< seconds: how far the hints have come
    QT::QTHintTrack& track() { return *track_; }

private:
    void describe();
    void readEdits();
    MediaSample sampleOf(const QT::QTFrame& frame) const;
    void takeGroups(const ChunkSink& sink);
    void write(const PacketGroup& group, std::int64_t duration, const ChunkSink& sink);

    QT::QTTrack& media_;
    std::unique_ptr<Packetizer> packetizer_;
    FrameWalk walk_;
    QT::QTHintTrack* track_;
    std::optional<PacketGroup> waiting_; // its duration is known when the next one comes
    std::int64_t shift_ = 0;             // RTP ticks from media time to movie time, by the edits
    std::uint64_t mediaBytesLeft_;
    double time_ = 0;
    std::int64_t ticks_ = 0; // of all hint samples
};

} // namespace Ketra::Tool
