// MPEG-4 visual in RTP: the stream cut where it must be.
#pragma once

#include "Packetizer.h"

namespace Ketra::Tool {

/// A sample is one picture. It is cut at the last resynchronisation marker that a packet has room for, or
/// where the packet is full; the marker stands on its last packet.
class VisualPacketizer : public Packetizer {
public:
    using Packetizer::Packetizer;
    void add(const MediaSample& sample) override;
};

} // namespace Ketra::Tool
