#include "HintReader.h"

#include "../Atoms.h"
#include "FileParts.h"
#include "PacketBytes.h"

#include <base/CException.h>
#include <qt/QTAtoms/track/TREF.h>
#include <qt/QTAtoms/track/TrackReferences.h>

#include <algorithm>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

constexpr std::size_t kEntry = 12;
constexpr std::size_t kConstructor = 16;
constexpr unsigned int kRepeated = 1;
constexpr unsigned int kDisposable = 2;

enum Constructor : unsigned int { kNothing, kImmediate, kSampleData, kDescriptionData };

unsigned int load16(const unsigned char* at) { return static_cast<unsigned int>(at[0]) << 8 | at[1]; }

/// The offset of the timestamp, out of extra data; 0 without one.
int timestampOffset(ByteView extra) {
    constexpr std::size_t kHeader = 8;
    for (std::size_t at = 0; extra.size - at >= kHeader;) {
        const std::size_t size = load32(extra.data + at);
        if (size < kHeader || size > extra.size - at) break;
        if (load32(extra.data + at + 4) == fourCC("rtpo") && size >= kHeader + 4) {
            return static_cast<int>(load32(extra.data + at + kHeader));
        }
        at += std::min((size + 3) / 4 * 4, extra.size - at); // entries begin at multiples of four
    }
    return 0;
}

/// One after the other fits.
bool take(ByteView sample, std::size_t& at, std::size_t count, const unsigned char*& found) {
    if (sample.size - at < count) return false;
    found = sample.data + at;
    at += count;
    return true;
}

} // namespace

HintReader::HintReader(QT::QTMovie& movie, QT::QTTrack& hints)
    : stream_(movie.getStream()), hints_(hints), walk_(hints),
      places_(std::make_unique<QT::QTChunk>(&hints)) {
    const auto* reference = atomAt<QT::HINT>(hints.getTrak(), {fourCC("tref"), fourCC("hint")});
    media_ = reference ? movie.getTrackID(reference->getTrackID()) : nullptr;
    if (media_) mediaPlaces_ = std::make_unique<QT::QTChunk>(media_);
}

bool HintReader::next(std::vector<HintedPacket>& packets) {
    packets.clear();
    FramePlace place;
    const auto frame = walk_.next(place);
    if (!frame) return false;
    current_ = place.sample;
    const ByteView sample{frame->getData(), frame->getData() ? frame->getDataLength() : 0U};
    std::size_t at = 0;
    const unsigned char* head = nullptr;
    if (!take(sample, at, 4, head)) return true;
    for (unsigned int left = load16(head); left > 0; --left) {
        const std::size_t before = at;
        HintedPacket packet;
        packet.sample = place.sample;
        packet.time = frame->getDecodeTime();
        readPacket(sample, at, packet);
        if (at == before) break;
        packets.push_back(std::move(packet));
    }
    return true;
}

/// Leaves `at` where it is when the entry is cut off.
void HintReader::readPacket(ByteView sample, std::size_t& at, HintedPacket& packet) {
    std::size_t cursor = at;
    const unsigned char* entry = nullptr;
    if (!take(sample, cursor, kEntry, entry)) return;
    packet.transmission = static_cast<int>(load32(entry));
    const unsigned int bits = load16(entry + 4);
    packet.padding = bits >> 13 & 1;
    packet.extension = bits >> 12 & 1;
    packet.marker = bits >> 7 & 1;
    packet.payloadType = bits & 0x7F;
    packet.sequence = load16(entry + 6);
    const unsigned int flags = load16(entry + 8);
    packet.repeated = flags & kRepeated;
    packet.disposable = flags & kDisposable;
    if (flags & kExtraData) {
        const unsigned char* length = nullptr;
        if (!take(sample, cursor, 4, length)) return;
        const unsigned char* extra = nullptr;
        const std::size_t size = std::max<std::size_t>(4, load32(length)) - 4;
        if (!take(sample, cursor, size, extra)) return;
        packet.offset = timestampOffset({extra, size});
    }
    const std::size_t constructors = load16(entry + 10);
    const unsigned char* first = nullptr;
    if (!take(sample, cursor, constructors * kConstructor, first)) return;
    at = cursor;
    for (std::size_t i = 0; i < constructors; ++i) {
        construct(sample, first + i * kConstructor, packet);
    }
}

void HintReader::construct(ByteView sample, const unsigned char* constructor, HintedPacket& packet) {
    constexpr unsigned int kMostImmediate = 14;
    constexpr unsigned int kSelf = 0xFF;
    if (constructor[0] == kImmediate) {
        const unsigned int count = std::min<unsigned int>(constructor[1], kMostImmediate);
        packet.payload.insert(packet.payload.end(), constructor + 2, constructor + 2 + count);
        return;
    }
    if (constructor[0] == kNothing) return;
    const unsigned int count = load16(constructor + 2);
    if (constructor[0] != kSampleData) {
        packet.missing += count;
        return;
    }
    const unsigned int number = load32(constructor + 4);
    const std::size_t offset = load32(constructor + 8);
    if (constructor[1] == kSelf && number == current_) {
        const std::size_t from = std::min(offset, sample.size);
        const std::size_t fits = std::min<std::size_t>(count, sample.size - from);
        packet.payload.insert(packet.payload.end(), sample.data + from, sample.data + from + fits);
        packet.missing += count - fits;
        return;
    }
    takeSample(constructor[1] == kSelf ? &hints_
               : constructor[1] == 0   ? media_
                                       : nullptr,
               number, static_cast<unsigned int>(offset), count, packet);
}

/// Out of another sample, by the tables of its track.
void HintReader::takeSample(QT::QTTrack* track, unsigned int number, unsigned int offset, unsigned int count,
                            HintedPacket& packet) {
    QT::QTChunk* places = track == &hints_ ? places_.get() : mediaPlaces_.get();
    std::uint64_t fits = 0;
    if (track && places && number && places->findChunkNumber(number) != 0) { // offsets are those in it
        try {
            const std::uint64_t begin = places->findSampleOffset(number);
            const std::uint64_t size = places->findSampleSize(number);
            if (begin && offset < size) fits = std::min<std::uint64_t>(count, size - offset);
            const std::size_t held = packet.payload.size();
            packet.payload.resize(held + fits);
            if (fits) readAt(*stream_, begin + offset, packet.payload.data() + held, fits);
        } catch (const std::exception&) {
            packet.payload.resize(packet.payload.size() - fits);
            fits = 0;
        }
    }
    packet.missing += count - fits;
}

} // namespace Ketra::Tool
