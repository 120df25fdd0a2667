// What the bytes of a track tell without being read into classes.
#pragma once

#include "FileParts.h"

namespace Ketra::Tool {

/// 0 without a track header.
unsigned int trackIDOf(const ByteBlock& trak);

bool isHintTrack(const ByteBlock& trak);

/// Where the chunks of the track begin in the file.
std::vector<std::uint64_t> chunkOffsetsOf(const ByteBlock& trak);

} // namespace Ketra::Tool
