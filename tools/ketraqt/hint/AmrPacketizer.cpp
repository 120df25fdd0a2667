#include "AmrPacketizer.h"

#include "../ToolError.h"

namespace Ketra::Tool {

namespace {

constexpr unsigned char kNoModeRequest = 0xF0;
constexpr unsigned char kMoreFollow = 0x80;
constexpr unsigned char kTypeAndQuality = 0x7C;

/// Bytes of speech by frame type. Types without a number here are reserved.
constexpr int kReserved = -1;
constexpr int kNarrow[16] = {12, 13, 15, 17, 19, 20, 26, 31, 5, 6, 5, 5, kReserved, kReserved, kReserved, 0};
constexpr int kWide[16] = {17, 23, 32,        36,        40,        46,        50, 58,
                           60, 5,  kReserved, kReserved, kReserved, kReserved, 0,  0};

} // namespace

AmrPacketizer::AmrPacketizer(StreamFormat format, std::size_t largestPayload, bool wideBand)
    : Packetizer(std::move(format), largestPayload), wideBand_(wideBand) {}

std::size_t AmrPacketizer::speechSize(unsigned char header) const {
    const int(&sizes)[16] = wideBand_ ? kWide : kNarrow;
    const int size = sizes[header >> 3 & 15];
    if (size == kReserved) throw ToolError(kMalformed, "an AMR frame is of a reserved type");
    return static_cast<std::size_t>(size);
}

bool AmrPacketizer::speaks(ByteView frame) const {
    const unsigned int modes = wideBand_ ? 9 : 8; // the types behind them are comfort noise, or nothing
    return (frame[0] >> 3 & 15U) < modes;
}

std::vector<ByteView> AmrPacketizer::framesOf(ByteView sample) const {
    std::vector<ByteView> frames;
    for (std::size_t at = 0; at < sample.size;) {
        const std::size_t size = 1 + speechSize(sample[at]);
        if (size > sample.size - at) throw ToolError(kMalformed, "an AMR frame is cut off");
        frames.push_back(sample.part(at, size));
        at += size;
    }
    return frames;
}

ByteBlock AmrPacketizer::payloadOf(const ByteView* frames, std::size_t count) const {
    ByteBlock bytes{kNoModeRequest};
    for (std::size_t i = 0; i < count; ++i) {
        const unsigned int more = i + 1 < count ? kMoreFollow : 0;
        bytes.push_back(static_cast<unsigned char>((frames[i][0] & kTypeAndQuality) | more));
    }
    for (std::size_t i = 0; i < count; ++i) {
        bytes.insert(bytes.end(), frames[i].begin() + 1, frames[i].end());
    }
    return bytes;
}

/// The frames of a sample share its duration. A sample that is too large for one packet becomes several.
void AmrPacketizer::add(const MediaSample& sample) {
    const std::vector<ByteView> frames = framesOf(sample.bytes);
    const auto tick = [&](std::size_t frame) {
        return sample.duration * static_cast<std::int64_t>(frame) / static_cast<std::int64_t>(frames.size());
    };
    for (std::size_t first = 0; first < frames.size();) {
        std::size_t end = first;
        std::size_t size = 1;
        while (end < frames.size() && (end == first || size + frames[end].size <= largest())) {
            size += frames[end].size;
            ++end;
        }
        PacketGroup group = groupOf(sample);
        group.decode += tick(first);
        group.presentation += tick(first);
        group.duration = tick(end) - tick(first);
        // Comfort noise is a part of the silence.
        group.payloads.push_back({payloadOf(&frames[first], end - first), silent_ && speaks(frames[first])});
        silent_ = !speaks(frames[end - 1]);
        put(std::move(group));
        first = end;
    }
}

} // namespace Ketra::Tool
