#include <qt/QTRTPPacket.h>
#include <qt/wire/Block.h>

namespace Ketra::QT {

QTRTPPacket::QTRTPPacket() : data_(std::make_unique<wire::Block>()), tlv_(std::make_unique<wire::Block>()) {}

QTRTPPacket::QTRTPPacket(int relativeTransmissionTime, double playTime, double duration,
                         unsigned char padding, unsigned char extension, unsigned char marker,
                         unsigned short payloadType, unsigned short sequenceNumber, unsigned short flags,
                         unsigned short entryCount, unsigned char dataSource, unsigned char trackReference,
                         unsigned short size, unsigned char* data, unsigned int sampleNumber,
                         unsigned int offset, unsigned short bytesPerCompressionBlock,
                         unsigned short samplesPerCompressionBlock, unsigned int tlvSize,
                         unsigned char* tlvData)
    : QTRTPPacket() {
    relativeTransmissionTime_ = relativeTransmissionTime;
    playTime_ = playTime;
    duration_ = duration;
    padding_ = padding;
    extension_ = extension;
    marker_ = marker;
    payloadType_ = payloadType;
    sequenceNumber_ = sequenceNumber;
    flags_ = flags;
    entryCount_ = entryCount;
    dataSource_ = dataSource;
    trackReference_ = trackReference;
    size_ = size;
    sampleNumber_ = sampleNumber;
    offset_ = offset;
    bytesPerBlock_ = bytesPerCompressionBlock;
    samplesPerBlock_ = samplesPerCompressionBlock;
    tlvSize_ = tlvSize;
    data_->adopt(data, size);
    tlv_->adopt(tlvData, tlvSize);
}

QTRTPPacket::~QTRTPPacket() = default;

int QTRTPPacket::setSize(unsigned short v) {
    size_ = v;
    if (data_->size() == 0) data_->adopt(data_->data(), v);
    return 0;
}

unsigned char* QTRTPPacket::getData() const { return data_->data(); }

int QTRTPPacket::setData(unsigned short size, unsigned char* bytes) {
    if (size == 0 || !bytes) return -1;
    size_ = size;
    if (bytes != data_->data()) data_->adopt(bytes, size);
    return 0;
}

int QTRTPPacket::setData(unsigned char* bytes) {
    if (!bytes) return -1;
    if (bytes != data_->data()) data_->adopt(bytes, size_);
    return 0;
}

unsigned char* QTRTPPacket::getTLVData() const { return tlv_->data(); }

int QTRTPPacket::setTLVData(unsigned int size, unsigned char* bytes) {
    if (bytes && bytes == tlv_->data()) return 0;
    tlvSize_ = size;
    tlv_->adopt(bytes, size);
    return 0;
}

} // namespace Ketra::QT
