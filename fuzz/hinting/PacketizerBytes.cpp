#include "ToolError.h"
#include "hint/AacPacketizer.h"
#include "hint/AmrPacketizer.h"
#include "hint/NalPacketizer.h"
#include "hint/PcmPacketizer.h"
#include "hint/VisualPacketizer.h"
#include "hinting/HintHarness.h"

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace hinting {

using namespace Ketra::Tool;

namespace {

constexpr std::size_t kChoice = 3; // bytes: format, size of packets
constexpr std::size_t kSmallest = 88;

std::unique_ptr<Packetizer> choose(unsigned int which, std::size_t largest) {
    StreamFormat format{true, "X", 90000, 2, {}};
    switch (which % 8) {
    case 0:
        return std::make_unique<NalPacketizer>(format, largest, NalKind::kH264, 1U);
    case 1:
        return std::make_unique<NalPacketizer>(format, largest, NalKind::kH264, 4U);
    case 2:
        return std::make_unique<NalPacketizer>(format, largest, NalKind::kH265, 2U);
    case 3:
        return std::make_unique<VisualPacketizer>(format, largest);
    case 4:
        return std::make_unique<AacPacketizer>(format, largest);
    case 5:
        return std::make_unique<AmrPacketizer>(format, largest, false);
    case 6:
        return std::make_unique<AmrPacketizer>(format, largest, true);
    default:
        return std::make_unique<PcmPacketizer>(format, largest, true);
    }
}

/// Formats that send nothing but the bytes of the samples.
bool sendsAsItIs(unsigned int which) { return which % 8 == 3; }

} // namespace

void exercisePacketizer(const unsigned char* bytes, std::size_t size) {
    if (size < kChoice) return;
    const std::size_t largest = kSmallest + (static_cast<std::size_t>(bytes[1]) << 3);
    const auto packetizer = choose(bytes[0], largest);
    MediaSample sample;
    sample.duration = bytes[2];
    std::size_t sent = 0;
    std::size_t given = 0;
    const auto collect = [&] {
        for (const PacketGroup& group : packetizer->take()) {
            if (group.payloads.empty()) std::abort();
            for (const Payload& payload : group.payloads) {
                if (payload.bytes.empty() || payload.bytes.size() > largest) std::abort();
                sent += payload.bytes.size();
            }
        }
    };
    try {
        for (std::size_t at = kChoice; size - at >= 2;) {
            const std::size_t stated = static_cast<std::size_t>(bytes[at]) << 8 | bytes[at + 1];
            at += 2;
            const std::size_t length = std::min(stated, size - at);
            sample.bytes = {bytes + at, length};
            packetizer->add(sample);
            given += length;
            collect();
            sample.decode += sample.duration;
            sample.presentation = sample.decode + static_cast<std::int64_t>(stated & 7);
            at += length;
        }
    } catch (const ToolError&) {
        return;
    }
    packetizer->finish();
    collect();
    if (sendsAsItIs(bytes[0]) && sent != given) std::abort();
}

} // namespace hinting
