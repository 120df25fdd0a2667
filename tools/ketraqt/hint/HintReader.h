// Reads hint samples back into the packets that they stand for.
#pragma once

#include "../FrameWalk.h"
#include "Packetizer.h"

#include <qt/QTMovie.h>
#include <qt/QTTrack.h>

namespace Ketra::Tool {

struct HintedPacket {
    unsigned int sample = 0; ///< hint sample, from 1
    double time = 0;         ///< seconds: decode time of the hint sample, edits not applied
    int transmission = 0;    ///< from there to the sending, in units of the hint track
    int offset = 0;          ///< from there to the RTP timestamp, likewise
    unsigned int sequence = 0;
    unsigned int payloadType = 0;
    bool marker = false;
    bool padding = false;
    bool extension = false;
    bool repeated = false;     ///< sent before
    bool disposable = false;   ///< a server may leave it out
    std::uint64_t missing = 0; ///< bytes of the payload that could not be found
    ByteBlock payload;
};

/// Walks a hint track. Payloads are gathered from wherever their constructors point.
class HintReader {
public:
    HintReader(QT::QTMovie& movie, QT::QTTrack& hints);

    /// The packets of the next hint sample; false at the end. What is cut off is left out.
    bool next(std::vector<HintedPacket>& packets);
    unsigned int mediaTrackID() const { return media_ ? media_->getID() : 0; } ///< 0 without one

private:
    void readPacket(ByteView sample, std::size_t& at, HintedPacket& packet);
    void construct(ByteView sample, const unsigned char* constructor, HintedPacket& packet);
    void takeSample(QT::QTTrack* track, unsigned int number, unsigned int offset, unsigned int count,
                    HintedPacket& packet);

    QT::QTStream* stream_;
    QT::QTTrack& hints_;
    QT::QTTrack* media_ = nullptr;
    FrameWalk walk_;
    std::unique_ptr<QT::QTChunk> places_; // a cursor of its own: looking samples up must not move the walk
    std::unique_ptr<QT::QTChunk> mediaPlaces_;
    unsigned int current_ = 0;
};

} // namespace Ketra::Tool
