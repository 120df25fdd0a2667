// The sound form of a sample description.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// The bytes behind the entry header: 0 version, 2 revision (16), 4 vendor (32), 8 channels, 10 sample size,
/// 12 compression ID, 14 packet size (16), 16 sample rate (16.16).
///
/// Version 1 goes on with 20 samples per packet, 24 bytes per packet, 28 bytes per frame, 32 bytes per sample
/// (32). Version 2 and above hold constants at 8 to 19 and go on with 20 the length of the whole entry up to
/// the extensions (32), 24 sample rate (IEEE double), 32 channels, 36 0x7F000000, 40 bits per channel, 44
/// format flags, 48 bytes per packet, 52 frames per packet (32); the last four are 0 unless the
/// format-specific flags are negative.
///
/// serialize() returns these bytes without an atom header, as long as the size set with setSize() and at
/// least as the version needs (20, 36 or 56); parse() does nothing.
class KETRA_QT_API STSDAudio : public QTAtom {
public:
    STSDAudio();
    explicit STSDAudio(QTAtom* header);
    STSDAudio(const STSDAudio&) = default;
    STSDAudio& operator=(const STSDAudio&) = default;
    ~STSDAudio() override;

    std::uint64_t updateSize() override; ///< what setSize() said; 36 when new
    int parse() override;                ///< 0
    QTFrame* serialize() override;

    int setSize(unsigned int size) { return size_ = size, 0; } ///< bytes of this description

    unsigned short getVersion() const { return version_; }
    int setVersion(unsigned short v) { return version_ = v, 0; }
    unsigned short getRevisionLevel() const { return revisionLevel_; }
    int setRevisionLevel(unsigned short v) { return revisionLevel_ = v, 0; }
    unsigned int getVendor() const { return vendor_; } ///< four-character code
    int setVendor(unsigned int v) { return vendor_ = v, 0; }
    unsigned int getChannels() const { return channels_; } ///< versions 0 and 1 write the low 16 bits
    int setChannels(unsigned int v) { return channels_ = v, 0; }
    unsigned short getSampleSize() const { return sampleSize_; } ///< bits
    int setSampleSize(unsigned short v) { return sampleSize_ = v, 0; }
    unsigned short getCompressionID() const { return compressionID_; } ///< -2 as 0xFFFE: variable rate
    int setCompressionID(unsigned short v) { return compressionID_ = v, 0; }
    unsigned short getPacketSize() const { return packetSize_; }
    int setPacketSize(unsigned short v) { return packetSize_ = v, 0; }
    float getSampleRate() const { return static_cast<float>(sampleRate_); } ///< hertz
    int setSampleRate(double v) { return sampleRate_ = v, 0; }              ///< version 2 writes it in full

    unsigned int getSamplesPerPacket() const { return samplesPerPacket_; } ///< of one channel
    int setSamplesPerPacket(unsigned int v) { return samplesPerPacket_ = v, 0; }
    unsigned int getBytesPerPacket() const { return bytesPerPacket_; } ///< of one channel
    int setBytesPerPacket(unsigned int v) { return bytesPerPacket_ = v, 0; }
    unsigned int getBytesPerFrame() const { return bytesPerFrame_; } ///< a packet of all channels
    int setBytesPerFrame(unsigned int v) { return bytesPerFrame_ = v, 0; }
    unsigned int getBytesPerSample() const { return bytesPerSample_; } ///< one uncompressed sample
    int setBytesPerSample(unsigned int v) { return bytesPerSample_ = v, 0; }
    /// Negative: a format whose low byte says 1 float, 2 big-endian, 4 signed, 8 packed (linear PCM).
    int getFormatSpecificFlags() const { return formatSpecificFlags_; }
    int setFormatSpecificFlags(int v) { return formatSpecificFlags_ = v, 0; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned short version_ = 0;
    unsigned short revisionLevel_ = 0;
    unsigned int vendor_ = 0;
    unsigned int channels_ = 0;
    unsigned short sampleSize_ = 0;
    unsigned short compressionID_ = 0;
    unsigned short packetSize_ = 0;
    double sampleRate_ = 0;
    unsigned int samplesPerPacket_ = 0;
    unsigned int bytesPerPacket_ = 0;
    unsigned int bytesPerFrame_ = 0;
    unsigned int bytesPerSample_ = 0;
    int formatSpecificFlags_ = 0;
};

} // namespace Ketra::QT
