// H.264 and H.265 in RTP: NAL units as they are, or in fragments.
#pragma once

#include "Packetizer.h"

namespace Ketra::Tool {

enum class NalKind { kH264, kH265 };

/// Samples are NAL units with their lengths in front; every unit becomes one packet, or several when it is
/// too large for one. The marker stands on the last packet of a sample.
class NalPacketizer : public Packetizer {
public:
    /// lengthSize: bytes of a unit's length in the sample, 1 to 4.
    NalPacketizer(StreamFormat format, std::size_t largestPayload, NalKind kind, unsigned int lengthSize);

    void add(const MediaSample& sample) override;

private:
    void addUnit(ByteView unit, std::vector<Payload>& payloads) const;
    ByteBlock fragmentHeader(ByteView unit, bool first, bool last) const;

    NalKind kind_;
    unsigned int lengthSize_;
};

} // namespace Ketra::Tool
