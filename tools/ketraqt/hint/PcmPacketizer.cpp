#include "PcmPacketizer.h"

#include "../ToolError.h"

#include <algorithm>

namespace Ketra::Tool {

namespace {

constexpr std::size_t kBytes = 2; // of one channel

} // namespace

PcmPacketizer::PcmPacketizer(StreamFormat format, std::size_t largestPayload, bool littleEndian)
    : Packetizer(std::move(format), largestPayload), littleEndian_(littleEndian) {}

/// Every packet is a hint sample of its own: each has its own timestamp. The sample's time is shared by
/// length, since a description may state another rate than the one the track is timed by.
void PcmPacketizer::add(const MediaSample& sample) {
    const std::size_t frame = kBytes * format().channels;
    const std::size_t room = largest() / frame * frame;
    if (room == 0) throw ToolError(kNotAllowed, "packets are too small for one sample of each channel");
    const std::size_t usable = sample.bytes.size / frame * frame;
    const auto tick = [&](std::size_t position) {
        return sample.duration * static_cast<std::int64_t>(position) / static_cast<std::int64_t>(usable);
    };
    for (std::size_t at = 0; at < usable; at += room) {
        const std::size_t size = std::min(room, usable - at);
        PacketGroup group = groupOf(sample);
        group.decode += tick(at);
        group.presentation += tick(at);
        group.duration = tick(at + size) - tick(at);
        ByteBlock bytes(sample.bytes.data + at, sample.bytes.data + at + size);
        for (std::size_t i = 0; littleEndian_ && i < bytes.size(); i += kBytes) {
            std::swap(bytes[i], bytes[i + 1]);
        }
        group.payloads.push_back({std::move(bytes), false});
        put(std::move(group));
    }
}

} // namespace Ketra::Tool
