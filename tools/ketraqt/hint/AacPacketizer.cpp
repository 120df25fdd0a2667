#include "AacPacketizer.h"

#include "../ToolError.h"

#include <algorithm>

namespace Ketra::Tool {

namespace {

constexpr std::size_t kSizeBits = 13;
constexpr std::size_t kIndexBits = 3;
constexpr std::size_t kLargestFrame = (std::size_t{1} << kSizeBits) - 1;
constexpr std::size_t kLengthField = 2; // how many bits of headers there are
constexpr std::size_t kHeader = 2;      // size and index of one frame
constexpr std::size_t kMostFrames = 8;  // of 1024 samples: a fifth of a second that can be lost at once

void put16(ByteBlock& out, std::size_t value) {
    out.push_back(static_cast<unsigned char>(value >> 8));
    out.push_back(static_cast<unsigned char>(value));
}

ByteBlock headers(const std::vector<std::size_t>& sizes) {
    ByteBlock out;
    put16(out, sizes.size() * (kSizeBits + kIndexBits));
    for (const std::size_t size : sizes) {
        put16(out, size << kIndexBits); // frames follow one another: all index differences are zero
    }
    return out;
}

} // namespace

void AacPacketizer::add(const MediaSample& sample) {
    if (sample.bytes.size == 0) return;
    if (sample.bytes.size > kLargestFrame) throw ToolError(kMalformed, "an AAC frame is too large");
    if (kLengthField + kHeader + sample.bytes.size > largest()) {
        finish();
        addFragments(sample);
        return;
    }
    if (!sizes_.empty()) {
        const std::size_t held = waiting_.payloads.front().bytes.size() + sample.bytes.size;
        const bool follows = waiting_.presentation + waiting_.duration == sample.presentation;
        if (!follows || sizes_.size() == kMostFrames ||
            kLengthField + kHeader * (sizes_.size() + 1) + held > largest()) {
            finish();
        }
    }
    if (sizes_.empty()) {
        waiting_ = groupOf(sample);
        waiting_.duration = 0;
        waiting_.payloads.push_back({{}, true});
    }
    waiting_.duration += sample.duration;
    ByteBlock& bytes = waiting_.payloads.front().bytes;
    bytes.insert(bytes.end(), sample.bytes.begin(), sample.bytes.end());
    sizes_.push_back(sample.bytes.size);
}

void AacPacketizer::finish() {
    if (sizes_.empty()) return;
    ByteBlock& bytes = waiting_.payloads.front().bytes;
    const ByteBlock front = headers(std::exchange(sizes_, {}));
    bytes.insert(bytes.begin(), front.begin(), front.end());
    put(std::move(waiting_));
}

/// Every fragment states the size of the whole frame; the marker stands on the last one.
void AacPacketizer::addFragments(const MediaSample& sample) {
    PacketGroup group = groupOf(sample);
    const std::size_t room = largest() - kLengthField - kHeader;
    for (std::size_t at = 0; at < sample.bytes.size; at += room) {
        const ByteView piece = sample.bytes.part(at, std::min(room, sample.bytes.size - at));
        ByteBlock bytes = headers({sample.bytes.size});
        bytes.insert(bytes.end(), piece.begin(), piece.end());
        group.payloads.push_back({std::move(bytes), at + piece.size == sample.bytes.size});
    }
    put(std::move(group));
}

} // namespace Ketra::Tool
