// Plain 16-bit audio in RTP: most significant byte first, whole sample frames in every packet.
#pragma once

#include "Packetizer.h"

namespace Ketra::Tool {

class PcmPacketizer : public Packetizer {
public:
    PcmPacketizer(StreamFormat format, std::size_t largestPayload, bool littleEndian);
    void add(const MediaSample& sample) override;

private:
    bool littleEndian_;
};

} // namespace Ketra::Tool
