// AMR and AMR-WB in RTP, octet-aligned: a table of contents, then the speech of its frames.
#pragma once

#include "Packetizer.h"

namespace Ketra::Tool {

/// A packet holds the frames of one sample: how many go together is the choice of who made the movie, and
/// some receivers take no more than one.
class AmrPacketizer : public Packetizer {
public:
    AmrPacketizer(StreamFormat format, std::size_t largestPayload, bool wideBand);
    void add(const MediaSample& sample) override;

private:
    std::size_t speechSize(unsigned char header) const;
    bool speaks(ByteView frame) const;
    std::vector<ByteView> framesOf(ByteView sample) const;
    ByteBlock payloadOf(const ByteView* frames, std::size_t count) const;

    bool wideBand_;
    bool silent_ = true; ///< the next packet with speech begins it
};

} // namespace Ketra::Tool
