// Which packetizer a media track gets.
#pragma once

#include "Packetizer.h"

#include <qt/QTTrack.h>

namespace Ketra::Tool {

/// largestPayload: bytes of an RTP packet behind its header. Throws ToolError for a track that cannot be
/// hinted.
std::unique_ptr<Packetizer> makePacketizer(const QT::QTTrack& track, std::size_t largestPayload);

} // namespace Ketra::Tool
