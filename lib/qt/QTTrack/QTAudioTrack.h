// A sound track: its format as its sample descriptions tell it, and how it is written.
#pragma once

#include <qt/QTTrack/QTTrack.h>

#include <memory>

namespace Ketra::QT {

class ESDS;

namespace wire {
class ExtensionList;
}

/// Reading goes through all sample descriptions, so that the last one's values stand. Writing builds the
/// description, its extension atoms and the header values from the fields of this class; data format,
/// channels and bits per sample must be set before the first sample is added.
class KETRA_QT_API QTAudioTrack : public QTTrack {
public:
    QTAudioTrack();
    explicit QTAudioTrack(QTAtom* trak); ///< over a parsed "trak"; throws CException without its headers
    QTAudioTrack(const QTAudioTrack& other);
    QTAudioTrack& operator=(const QTAudioTrack& other);
    ~QTAudioTrack() override;

    int prepareForWriting() override;
    unsigned int getType() override; ///< "audi"
    int parseStsd(QTAtom* stsd) override;

    unsigned short getVersion() const { return version_; } ///< of the sound description: 0, 1 or 2
    int setVersion(unsigned short v) { return version_ = v, 0; }
    unsigned short getRevisionLevel() const { return revisionLevel_; }
    int setRevisionLevel(unsigned short v) { return revisionLevel_ = v, 0; }
    unsigned int getVendor() const { return vendor_; } ///< four-character code
    int setVendor(unsigned int v) { return vendor_ = v, 0; }
    unsigned int getChannels() const { return channels_; }
    int setChannels(unsigned int v) { return channels_ = v, 0; }
    unsigned short getSampleSize() const { return sampleSize_; } ///< bits
    int setBitsPerSample(unsigned short v) { return sampleSize_ = v, 0; }
    short getCompressionID() const { return compressionID_; } ///< -2: variable rate
    int setCompressionID(short v) { return compressionID_ = v, 0; }
    double getSampleRate() const { return sampleRate_; } ///< hertz
    int setSampleRate(double v);                         ///< also the media time scale while that is 0
    unsigned int getBytesPerPacket() const { return bytesPerPacket_; }
    int setBytesPerPacket(unsigned int v) { return bytesPerPacket_ = v, 0; }
    unsigned int getBytesPerFrame() const { return bytesPerFrame_; }
    int setBytesPerFrame(unsigned int v) { return bytesPerFrame_ = v, 0; }
    unsigned int getBytesPerSample() const; ///< of one channel; by the sample size while it is not set
    int setBytesPerSample(unsigned int v) { return bytesPerSample_ = v, 0; }
    unsigned int getEndian() const { return endian_; } ///< "big " or "lit "
    int setEndian(unsigned int v) { return endian_ = v, 0; }
    unsigned int getAMRMode() const { return amrMode_; } ///< mode set of AMR; 0 = all modes
    int setAMRMode(unsigned int v) { return amrMode_ = v, 0; }
    unsigned int getQcelpMode() const { return qcelpMode_; }
    int setQcelpMode(unsigned int v) { return qcelpMode_ = v, 0; }

    bool getStsdContainsExtensions() const { return extended_; } ///< as read
    ESDS* getESDS() const { return esds_.get(); }                ///< as read, borrowed, or null

private:
    class KETRA_QT_LOCAL DescriptionReader;
    class KETRA_QT_LOCAL DescriptionWriter;

    void writeConstantSize(unsigned int bytesPerSample);

    unsigned short version_ = 0;
    unsigned short revisionLevel_ = 0;
    unsigned int vendor_ = 0;
    unsigned int channels_ = 0;
    unsigned short sampleSize_ = 0;
    short compressionID_ = 0;
    double sampleRate_ = 0;
    unsigned int bytesPerPacket_ = 0;
    unsigned int bytesPerFrame_ = 0;
    unsigned int bytesPerSample_ = 0;
    unsigned int endian_ = 0;
    unsigned int amrMode_ = 0;
    unsigned int qcelpMode_ = 0;
    bool extended_ = false;
    std::shared_ptr<ESDS> esds_;
    std::shared_ptr<wire::ExtensionList> extensions_; // those written into the description
};

} // namespace Ketra::QT
