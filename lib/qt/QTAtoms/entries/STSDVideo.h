// The video form of a sample description.
#pragma once

#include <qt/QTAtom.h>

namespace Ketra::QT {

/// The 70 bytes behind the entry header: 0 version, 2 revision (16), 4 vendor, 8 temporal quality, 12 spatial
/// quality (32), 16 width, 18 height (16), 20 horizontal, 24 vertical resolution (16.16), 28 data size (32,
/// always 0), 32 frame count (16), 34 compressor name (a length byte and the name, 32 bytes in all), 66
/// depth, 68 colour table ID (16).
///
/// serialize() returns these bytes without an atom header; parse() does nothing.
class KETRA_QT_API STSDVideo : public QTAtom {
public:
    STSDVideo();
    explicit STSDVideo(QTAtom* header);
    STSDVideo(const STSDVideo&) = default;
    STSDVideo& operator=(const STSDVideo&) = default;
    ~STSDVideo() override;

    std::uint64_t updateSize() override; ///< 70
    int parse() override;                ///< 0
    QTFrame* serialize() override;

    unsigned short getVersion() const { return version_; }
    int setVersion(unsigned short v) { return version_ = v, 0; }
    unsigned short getRevisionLevel() const { return revisionLevel_; }
    int setRevisionLevel(unsigned short v) { return revisionLevel_ = v, 0; }
    unsigned int getVendor() const { return vendor_; } ///< four-character code
    int setVendor(unsigned int v) { return vendor_ = v, 0; }
    unsigned int getTemporalQuality() const { return temporalQuality_; } ///< 0 to 1023
    int setTemporalQuality(unsigned int v) { return temporalQuality_ = v, 0; }
    unsigned int getSpatialQuality() const { return spatialQuality_; } ///< 0 to 1024
    int setSpatialQuality(unsigned int v) { return spatialQuality_ = v, 0; }
    unsigned short getWidth() const { return width_; } ///< pixels
    int setWidth(unsigned short v) { return width_ = v, 0; }
    unsigned short getHeight() const { return height_; }
    int setHeight(unsigned short v) { return height_ = v, 0; }
    float getHorizontalResolution() const { return horizontalResolution_; } ///< pixels per inch
    int setHorizontalResolution(float v) { return horizontalResolution_ = v, 0; }
    float getVerticalResolution() const { return verticalResolution_; }
    int setVerticalResolution(float v) { return verticalResolution_ = v, 0; }
    unsigned short getFrameCount() const { return frameCount_; } ///< frames a sample
    int setFrameCount(unsigned short v) { return frameCount_ = v, 0; }
    unsigned short getDepth() const { return depth_; } ///< bits per pixel; 32 = with alpha, above that grey
    int setDepth(unsigned short v) { return depth_ = v, 0; }
    unsigned short getColorTableID() const { return colorTableID_; } ///< 65535 = none
    int setColorTableID(unsigned short v) { return colorTableID_ = v, 0; }

    /// Copies at most 32 bytes. A name of 32 fills the whole field, in place of the length byte too.
    int setCompressorName(unsigned int length, unsigned char* name);
    unsigned char* getCompressorName() const { return compressorName_; } ///< borrowed, ends with a zero byte
    unsigned int getCompressorNameLength() const { return compressorNameLength_; }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned short version_ = 0;
    unsigned short revisionLevel_ = 0;
    unsigned int vendor_ = 0;
    unsigned int temporalQuality_ = 0;
    unsigned int spatialQuality_ = 0;
    unsigned short width_ = 0;
    unsigned short height_ = 0;
    float horizontalResolution_ = 0;
    float verticalResolution_ = 0;
    unsigned short frameCount_ = 0;
    mutable unsigned char compressorName_[33] = {};
    unsigned int compressorNameLength_ = 0;
    unsigned short depth_ = 0;
    unsigned short colorTableID_ = 0;
};

} // namespace Ketra::QT
