// AAC in RTP, high bit rate mode: several frames in a packet, or a frame in several packets.
#pragma once

#include "Packetizer.h"

namespace Ketra::Tool {

class AacPacketizer : public Packetizer {
public:
    using Packetizer::Packetizer;
    void add(const MediaSample& sample) override;
    void finish() override;

private:
    void addFragments(const MediaSample& sample);

    PacketGroup waiting_; ///< its one payload holds frames without their headers
    std::vector<std::size_t> sizes_;
};

} // namespace Ketra::Tool
