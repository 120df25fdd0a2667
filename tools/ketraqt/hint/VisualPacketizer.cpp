#include "VisualPacketizer.h"

#include <algorithm>

namespace Ketra::Tool {

namespace {

/// Where the last start code in the packet begins, if it begins behind the packet's first byte: headers
/// should not be torn apart.
std::size_t cutBefore(ByteView bytes, std::size_t from, std::size_t full) {
    for (std::size_t at = full; at > from + 1; --at) {
        if (at + 3 <= bytes.size && bytes[at] == 0 && bytes[at + 1] == 0 && bytes[at + 2] == 1) return at;
    }
    return full;
}

} // namespace

void VisualPacketizer::add(const MediaSample& sample) {
    PacketGroup group = groupOf(sample);
    const ByteView bytes = sample.bytes;
    for (std::size_t at = 0; at < bytes.size;) {
        const bool last = bytes.size - at <= largest();
        const std::size_t end = last ? bytes.size : cutBefore(bytes, at, at + largest());
        group.payloads.push_back({ByteBlock(bytes.data + at, bytes.data + end), last});
        at = end;
    }
    if (!group.payloads.empty()) put(std::move(group));
}

} // namespace Ketra::Tool
