#include "AmrPacketizer.h"

#include "../ToolError.h"

#include <algorithm>
#include <iterator>

namespace Ketra::Tool {

namespace {

constexpr unsigned char kNoModeRequest = 0xF0;
constexpr unsigned char kMoreFollow = 0x80;
constexpr unsigned char kTypeAndQuality = 0x7C;
constexpr std::size_t kMostFrames = 10; // of 20 ms

/// Bytes of speech by frame type. Types without a number here are reserved.
constexpr int kReserved = -1;
constexpr int kNarrow[16] = {12, 13, 15, 17, 19, 20, 26, 31, 5, 6, 5, 5, kReserved, kReserved, kReserved, 0};
constexpr int kWide[16] = {17, 23, 32,        36,        40,        46,        50, 58,
                           60, 5,  kReserved, kReserved, kReserved, kReserved, 0,  0};

} // namespace

AmrPacketizer::AmrPacketizer(StreamFormat format, std::size_t largestPayload, bool wideBand)
    : Packetizer(std::move(format), largestPayload), wideBand_(wideBand) {}

std::size_t AmrPacketizer::speechSize(unsigned char header) const {
    const int size = (wideBand_ ? kWide : kNarrow)[header >> 3 & 15];
    if (size == kReserved) throw ToolError(kMalformed, "an AMR frame is of a reserved type");
    return static_cast<std::size_t>(size);
}

/// A sample holds one or more frames, each with its own header byte, and shares its duration among them.
void AmrPacketizer::add(const MediaSample& sample) {
    std::vector<ByteView> frames;
    for (std::size_t at = 0; at < sample.bytes.size;) {
        const std::size_t size = 1 + speechSize(sample.bytes[at]);
        if (size > sample.bytes.size - at) throw ToolError(kMalformed, "an AMR frame is cut off");
        frames.push_back(sample.bytes.part(at, size));
        at += size;
    }
    const auto count = static_cast<std::int64_t>(frames.size());
    for (std::int64_t i = 0; i < count; ++i) {
        const std::int64_t from = sample.duration * i / count;
        const std::int64_t to = sample.duration * (i + 1) / count;
        addFrame(frames[static_cast<std::size_t>(i)],
                 {{}, sample.decode + from, sample.presentation + from, to - from, true});
    }
}

void AmrPacketizer::addFrame(ByteView frame, const MediaSample& timing) {
    if (!contents_.empty()) {
        const bool follows = waiting_.presentation + waiting_.duration == timing.presentation;
        const bool fits = 1 + contents_.size() + speech_.size() + frame.size <= largest();
        if (!follows || !fits || contents_.size() == kMostFrames) finish();
    }
    if (contents_.empty()) {
        waiting_ = groupOf(timing);
        waiting_.duration = 0;
    }
    waiting_.duration += timing.duration;
    contents_.push_back(frame[0] & kTypeAndQuality);
    speech_.insert(speech_.end(), frame.begin() + 1, frame.end());
}

void AmrPacketizer::finish() {
    if (contents_.empty()) return;
    for (std::size_t i = 0; i + 1 < contents_.size(); ++i) {
        contents_[i] |= kMoreFollow;
    }
    const bool speaks = !speech_.empty();
    ByteBlock bytes{kNoModeRequest};
    bytes.insert(bytes.end(), contents_.begin(), contents_.end());
    bytes.insert(bytes.end(), speech_.begin(), speech_.end());
    waiting_.payloads.push_back({std::move(bytes), speaks && silent_});
    silent_ = !speaks;
    contents_.clear();
    speech_.clear();
    put(std::move(waiting_));
}

} // namespace Ketra::Tool
