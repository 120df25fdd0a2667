// One RTP packet of a hint sample, as the application describes it.
#pragma once

#include <qt/QTTypes.h>

#include <memory>

namespace Ketra::QT {

/// RTP header fields, the one packet-data constructor that follows them, and the payload. Owns its payload
/// and TLV blocks (malloc). Setters return 0.
class KETRA_QT_API QTRTPPacket {
public:
    QTRTPPacket(); ///< payload type 96, one entry of type 2 (sample data) in the hint track itself
    /// Times in seconds; adopts `data` (size bytes) and `tlvData` (tlvSize bytes).
    QTRTPPacket(int relativeTransmissionTime, double playTime, double duration, unsigned char padding,
                unsigned char extension, unsigned char marker, unsigned short payloadType,
                unsigned short sequenceNumber, unsigned short flags, unsigned short entryCount,
                unsigned char dataSource, unsigned char trackReference, unsigned short size,
                unsigned char* data, unsigned int sampleNumber, unsigned int offset,
                unsigned short bytesPerCompressionBlock, unsigned short samplesPerCompressionBlock,
                unsigned int tlvSize, unsigned char* tlvData);
    QTRTPPacket(const QTRTPPacket&) = delete;
    QTRTPPacket& operator=(const QTRTPPacket&) = delete;
    ~QTRTPPacket();

    int getRelativeTransmissionTime() const { return relativeTransmissionTime_; } ///< media time scale
    int setRelativeTransmissionTime(int v) { return relativeTransmissionTime_ = v, 0; }
    double getPlayTime() const { return playTime_; } ///< seconds
    int setPlayTime(double v) { return playTime_ = v, 0; }
    double getDuration() const { return duration_; } ///< seconds
    int setDuration(double v) { return duration_ = v, 0; }
    unsigned char getPadding() const { return padding_; } ///< the P bit
    int setPadding(unsigned char v) { return padding_ = v, 0; }
    unsigned char getExtension() const { return extension_; } ///< the X bit
    int setExtension(unsigned char v) { return extension_ = v, 0; }
    unsigned char getMarker() const { return marker_; } ///< the M bit
    int setMarker(unsigned char v) { return marker_ = v, 0; }
    /// 0 to 127; more runs into the marker bit.
    unsigned short getPayloadType() const { return payloadType_; }
    int setPayloadType(unsigned short v) { return payloadType_ = v, 0; }
    unsigned short getRTPSequenceNumber() const { return sequenceNumber_; }
    int setRTPSequenceNumber(unsigned short v) { return sequenceNumber_ = v, 0; }
    unsigned short getFlags() const { return flags_; } ///< 4 = TLV data present
    int setFlags(unsigned short v) { return flags_ = v, 0; }
    unsigned short getEntryCount() const { return entryCount_; } ///< as written; one entry always follows
    int setEntryCount(unsigned short v) { return entryCount_ = v, 0; }
    unsigned char getDataSource() const { return dataSource_; } ///< constructor type; 2 = sample data
    int setDataSource(unsigned char v) { return dataSource_ = v, 0; }
    unsigned char getTrackReference() const { return trackReference_; } ///< 0xFF = the hint track itself
    int setTrackReference(unsigned char v) { return trackReference_ = v, 0; }
    unsigned short getSize() const { return size_; } ///< payload length in bytes
    int setSize(unsigned short v);                   ///< a payload given before any size has this one
    unsigned int getSampleNumber() const {
        return sampleNumber_;
    } ///< set by the sample that takes the packet
    int setSampleNumber(unsigned int v) { return sampleNumber_ = v, 0; }
    unsigned int getOffset() const { return offset_; } ///< of the payload among those of its sample; likewise
    int setOffset(unsigned int v) { return offset_ = v, 0; }
    unsigned short getBytesPerCompressionBlock() const { return bytesPerBlock_; }
    int setBytesPerCompressionBlock(unsigned short v) { return bytesPerBlock_ = v, 0; }
    unsigned short getSamplesPerCompressionBlock() const { return samplesPerBlock_; }
    int setSamplesPerCompressionBlock(unsigned short v) { return samplesPerBlock_ = v, 0; }

    unsigned char* getData() const; ///< borrowed, or null
    /// Adopts the payload. -1, nothing taken, for null or a size of 0.
    int setData(unsigned short size, unsigned char* bytes);
    /// Adopts a payload of getSize() bytes. -1, nothing taken, for null.
    int setData(unsigned char* bytes);

    unsigned char* getTLVData() const; ///< borrowed, or null
    unsigned int getTLVSize() const { return tlvSize_; }
    /// Adopts the extra data, which begins with its own 32-bit total length. Set it on every packet of a
    /// sample or on none, in one size.
    int setTLVData(unsigned int size, unsigned char* bytes);

private:
    friend struct wire::Access;

    int relativeTransmissionTime_ = 0;
    double playTime_ = 0;
    double duration_ = 0;
    unsigned char padding_ = 0;
    unsigned char extension_ = 0;
    unsigned char marker_ = 0;
    unsigned short payloadType_ = 96;
    unsigned short sequenceNumber_ = 0;
    unsigned short flags_ = 0;
    unsigned short entryCount_ = 1;
    unsigned char dataSource_ = 2;
    unsigned char trackReference_ = 0xFF;
    unsigned short size_ = 0;
    unsigned int sampleNumber_ = 0;
    unsigned int offset_ = 0;
    unsigned short bytesPerBlock_ = 0;
    unsigned short samplesPerBlock_ = 0;
    unsigned int tlvSize_ = 0;
    std::unique_ptr<wire::Block> data_; // knows its own length, whatever setSize says
    std::unique_ptr<wire::Block> tlv_;
};

} // namespace Ketra::QT
