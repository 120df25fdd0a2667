#include <qt/QTSample.h>
#include <qt/wire/Access.h>
#include <qt/wire/Block.h>
#include <qt/wire/Bytes.h>
#include <qt/wire/Growth.h>

#include <algorithm>
#include <limits>

namespace Ketra::QT {

namespace {

constexpr std::uint64_t kSampleHeader = 4;
constexpr std::uint64_t kEntry = 28;
constexpr unsigned int kHasTLV = 4;

/// Writes front to back and stops at the end of the block: packets that disagree about their TLV data may
/// need more room than the first one promised.
class Cursor {
public:
    Cursor(unsigned char* block, std::uint64_t length) : at_(block), left_(length) {}

    template <class Codec>
    void put(std::uint64_t value) {
        unsigned char field[Codec::width];
        Codec::write(field, value);
        bytes(field, Codec::width);
    }
    void bytes(const unsigned char* from, std::uint64_t count) {
        const std::uint64_t fits = std::min(count, left_);
        if (from) std::copy_n(from, fits, at_);
        at_ += fits;
        left_ -= fits;
    }

private:
    unsigned char* at_;
    std::uint64_t left_;
};

unsigned int headerBits(const QTRTPPacket& packet) {
    return (static_cast<unsigned int>(packet.getPadding()) << 13) |
           (static_cast<unsigned int>(packet.getExtension()) << 12) |
           (static_cast<unsigned int>(packet.getMarker()) << 7) | packet.getPayloadType();
}

void putEntry(Cursor& out, const QTRTPPacket& packet, std::uint64_t payloadsAt) {
    out.put<wire::U32>(static_cast<std::uint32_t>(packet.getRelativeTransmissionTime()));
    out.put<wire::U16>(headerBits(packet));
    out.put<wire::U16>(packet.getRTPSequenceNumber());
    out.put<wire::U16>(packet.getFlags());
    out.put<wire::U16>(packet.getEntryCount());
    if ((packet.getFlags() & kHasTLV) && packet.getTLVData()) {
        out.bytes(packet.getTLVData(), packet.getTLVSize());
    }
    out.put<wire::U8>(packet.getDataSource());
    out.put<wire::U8>(packet.getTrackReference());
    out.put<wire::U16>(packet.getSize());
    out.put<wire::U32>(packet.getSampleNumber());
    out.put<wire::U32>(packet.getOffset() + payloadsAt);
    out.put<wire::U16>(packet.getBytesPerCompressionBlock());
    out.put<wire::U16>(packet.getSamplesPerCompressionBlock());
}

/// Exactly getSize() bytes: a shorter block is completed with the zeros that are there already.
void putPayload(Cursor& out, const QTRTPPacket& packet) {
    const std::uint64_t held = std::min<std::uint64_t>(packet.getSize(), wire::Access::dataLength(packet));
    out.bytes(packet.getData(), held);
    out.bytes(nullptr, packet.getSize() - held);
}

} // namespace

QTSample::QTSample(unsigned int sampleNumber) : sampleNumber_(sampleNumber) {}

QTSample::~QTSample() = default;

int QTSample::addRTPPacket(QTRTPPacket* packet) {
    if (!packet) return -1;
    wire::makeRoomForOne(packets_);
    if (packets_.empty()) playTime_ = packet->getPlayTime();
    packet->setSampleNumber(sampleNumber_);
    packet->setOffset(dataSize_);
    dataSize_ += packet->getSize();
    duration_ += packet->getDuration();
    packets_.emplace_back(packet);
    return 0;
}

QTFrame* QTSample::makeQTFrame() {
    const std::uint64_t tlvSize = packets_.empty() ? 0 : packets_.front()->getTLVSize();
    const std::uint64_t payloadsAt = kSampleHeader + packets_.size() * (kEntry + tlvSize);
    const std::uint64_t length = payloadsAt + dataSize_;
    if (length > std::numeric_limits<unsigned int>::max()) return nullptr;
    wire::MallocPtr block = wire::allocate(length);
    if (!block) return nullptr;
    Cursor out(block.get(), length);
    out.put<wire::U16>(packets_.size());
    out.put<wire::U16>(0);
    for (const auto& packet : packets_) {
        putEntry(out, *packet, payloadsAt);
    }
    for (const auto& packet : packets_) {
        putPayload(out, *packet);
    }
    QTFrame* frame = wire::makeFrame(static_cast<unsigned int>(length), std::move(block));
    if (frame) {
        frame->setTime(playTime_);
        frame->setDuration(duration_);
    }
    return frame;
}

int QTSample::putUInt8(unsigned char** cursor, unsigned char v) {
    wire::U8::write(*cursor, v);
    return *cursor += 1, 0;
}

int QTSample::putUInt16(unsigned char** cursor, unsigned short v) {
    wire::store16(*cursor, v);
    return *cursor += 2, 0;
}

int QTSample::putUInt32(unsigned char** cursor, unsigned int v) {
    wire::store32(*cursor, v);
    return *cursor += 4, 0;
}

int QTSample::putSInt32(unsigned char** cursor, int v) {
    return putUInt32(cursor, static_cast<unsigned int>(v));
}

} // namespace Ketra::QT
