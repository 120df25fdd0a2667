#include "NalPacketizer.h"

#include "../ToolError.h"

#include <algorithm>

namespace Ketra::Tool {

namespace {

constexpr unsigned int kFragmentH264 = 28;
constexpr unsigned int kFragmentH265 = 49;
constexpr unsigned int kFirstFragment = 0x80;
constexpr unsigned int kLastFragment = 0x40;

std::size_t headerSize(NalKind kind) { return kind == NalKind::kH264 ? 1 : 2; }

/// Takes the unit at `at` and moves on behind it.
ByteView takeUnit(ByteView sample, std::size_t& at, unsigned int lengthSize) {
    if (sample.size - at < lengthSize) throw ToolError(kMalformed, "a NAL unit's length is cut off");
    std::size_t length = 0;
    for (unsigned int i = 0; i < lengthSize; ++i) {
        length = length << 8 | sample[at++];
    }
    if (sample.size - at < length) throw ToolError(kMalformed, "a NAL unit is longer than its sample");
    const ByteView unit = sample.part(at, length);
    at += length;
    return unit;
}

} // namespace

NalPacketizer::NalPacketizer(StreamFormat format, std::size_t largestPayload, NalKind kind,
                             unsigned int lengthSize)
    : Packetizer(std::move(format), largestPayload), kind_(kind), lengthSize_(lengthSize) {}

void NalPacketizer::add(const MediaSample& sample) {
    PacketGroup group = groupOf(sample);
    for (std::size_t at = 0; at < sample.bytes.size;) {
        const ByteView unit = takeUnit(sample.bytes, at, lengthSize_);
        if (unit.size >= headerSize(kind_)) addUnit(unit, group.payloads); // less is filling
    }
    if (group.payloads.empty()) return;
    group.payloads.back().marker = true;
    put(std::move(group));
}

void NalPacketizer::addUnit(ByteView unit, std::vector<Payload>& payloads) const {
    if (unit.size <= largest()) {
        payloads.push_back({ByteBlock(unit.begin(), unit.end()), false});
        return;
    }
    // Fragments leave the unit's own header out: it follows from that of the fragment.
    const std::size_t room = largest() - headerSize(kind_) - 1;
    for (std::size_t at = headerSize(kind_); at < unit.size; at += room) {
        const ByteView piece = unit.part(at, std::min(room, unit.size - at));
        ByteBlock bytes = fragmentHeader(unit, at == headerSize(kind_), at + piece.size == unit.size);
        bytes.insert(bytes.end(), piece.begin(), piece.end());
        payloads.push_back({std::move(bytes), false});
    }
}

ByteBlock NalPacketizer::fragmentHeader(ByteView unit, bool first, bool last) const {
    const unsigned int flags = (first ? kFirstFragment : 0) | (last ? kLastFragment : 0);
    if (kind_ == NalKind::kH264) {
        return {static_cast<unsigned char>((unit[0] & 0xE0U) | kFragmentH264),
                static_cast<unsigned char>(flags | (unit[0] & 0x1FU))};
    }
    return {static_cast<unsigned char>((unit[0] & 0x81U) | kFragmentH265 << 1), unit[1],
            static_cast<unsigned char>(flags | (unit[0] >> 1 & 0x3FU))};
}

} // namespace Ketra::Tool
