// Decoder configuration descriptor: what kind of decoder a stream needs.
#pragma once

#include <qt/QTAtoms/systems/MP4ObjectData.h>

namespace Ketra::QT {

/// Tag 4: object type indication (8), a byte of stream type (6 bits), up stream (1) and a reserved bit,
/// buffer size (24), maximum and average bit rate (32), then the decoder specific information (tag 5).
class KETRA_QT_API DecoderConfigDescriptor : public MP4ObjectData {
public:
    DecoderConfigDescriptor();
    DecoderConfigDescriptor(unsigned int size, unsigned char tag);
    ~DecoderConfigDescriptor() override;

    int getInfo(unsigned char** cursor) override;
    QTFrame* serialize() override;
    unsigned int updateSize() override; ///< 13 and what is nested; a new one holds 16

    /// What is coded and how: 0x20 MPEG-4 video, 0x40 AAC, 0x60 to 0x65 MPEG-2 video, 0x69 and 0x6B MPEG
    /// audio.
    unsigned char getObjectTypeIndication() const { return objectTypeIndication_; }
    int setObjectTypeIndication(unsigned char v) { return objectTypeIndication_ = v, 0; }
    unsigned char getStreamType() const { return streamType_; } ///< 4 video, 5 audio
    int setStreamType(unsigned char v) { return streamType_ = v, 0; }
    unsigned char getUpStream() const { return upStream_; }
    int setUpStream(unsigned char v) { return upStream_ = v, 0; }
    unsigned char getReserved() const { return reserved_; } ///< as read; always written as 1
    int setReserved(unsigned char v) { return reserved_ = v, 0; }
    unsigned int getBufferSizeDB() const { return bufferSizeDB_; } ///< bytes; 24 bits are written
    int setBufferSizeDB(unsigned int v) { return bufferSizeDB_ = v, 0; }
    unsigned int getMaxBitRate() const { return maxBitRate_; } ///< bits a second
    int setMaxBitRate(unsigned int v) { return maxBitRate_ = v, 0; }
    unsigned int getAvgBitRate() const { return avgBitRate_; }
    int setAvgBitRate(unsigned int v) { return avgBitRate_ = v, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned char objectTypeIndication_ = 0;
    unsigned char streamType_ = 0;
    unsigned char upStream_ = 0;
    unsigned char reserved_ = 0;
    unsigned int bufferSizeDB_ = 0;
    unsigned int maxBitRate_ = 0;
    unsigned int avgBitRate_ = 0;
};

} // namespace Ketra::QT
