// A video track: its picture properties as its sample description tells them, and how they are written.
#pragma once

#include <qt/QTTrack/QTTrack.h>

#include <memory>
#include <vector>

namespace Ketra::QT {

class ESDS;

namespace wire {
class ExtensionList;
}

/// Reading takes the picture from the first sample description. Writing builds the description, its extension
/// atoms and the header values from the fields of this class.
///
/// Samples are written as they are handed in. H.264 and H.265 samples must therefore be access units of NAL
/// units with big-endian length prefixes (of getH264SizeSize() bytes, 4 when unset), without start codes and
/// with the parameter sets only in the configuration.
class KETRA_QT_API QTVideoTrack : public QTTrack {
public:
    QTVideoTrack();
    explicit QTVideoTrack(QTAtom* trak); ///< over a parsed "trak"; throws CException without its headers
    QTVideoTrack(const QTVideoTrack& other);
    QTVideoTrack& operator=(const QTVideoTrack& other);
    ~QTVideoTrack() override;

    int prepareForWriting() override;
    unsigned int getType() override;         ///< "vide"
    unsigned short getSwitchSize() override; ///< low 16 bits of display width x display height
    int parseStsd(QTAtom* stsd) override;

    unsigned int getWidth() const { return width_; } ///< coded picture, pixels
    int setWidth(unsigned int v) { return width_ = v, 0; }
    unsigned int getHeight() const { return height_; }
    int setHeight(unsigned int v) { return height_ = v, 0; }
    unsigned int getDisplayWidth() const { return displayWidth_; } ///< after clean aperture and pixel aspect
    int setDisplayWidth(unsigned int v) { return displayWidth_ = v, 0; }
    unsigned int getDisplayHeight() const { return displayHeight_; }
    int setDisplayHeight(unsigned int v) { return displayHeight_ = v, 0; }
    unsigned int getDisplayAspectRatioW() const { return aspectW_; } ///< reduced, as 16 of 16:9
    unsigned int getDisplayAspectRatioH() const { return aspectH_; }
    int setDisplayAspectRatio(unsigned int w, unsigned int h) { return aspectW_ = w, aspectH_ = h, 0; }
    float getDisplayFactor() const { return displayFactor_; } ///< from coded to display size when writing
    int setDisplayFactor(float v) { return displayFactor_ = v, 0; }

    unsigned short getVersion() const { return version_; }
    int setVersion(unsigned short v) { return version_ = v, 0; }
    unsigned short getRevisionLevel() const { return revisionLevel_; }
    int setRevisionLevel(unsigned short v) { return revisionLevel_ = v, 0; }
    unsigned int getVendor() const { return vendor_; } ///< four-character code
    int setVendor(unsigned int v) { return vendor_ = v, 0; }
    unsigned int getTemporalQuality() const { return temporalQuality_; }
    int setTemporalQuality(unsigned int v) { return temporalQuality_ = v, 0; }
    unsigned int getSpatialQuality() const { return spatialQuality_; }
    int setSpatialQuality(unsigned int v) { return spatialQuality_ = v, 0; }
    unsigned int getHorizontalResoultion() const { return horizontalResolution_; } ///< pixels per inch
    int setHorizontalResolution(unsigned int v) { return horizontalResolution_ = v, 0; }
    unsigned int getVerticalResolution() const { return verticalResolution_; }
    int setVerticalResolution(unsigned int v) { return verticalResolution_ = v, 0; }
    unsigned short getFrameCount() const { return frameCount_; } ///< frames a sample
    int setFrameCount(unsigned short v) { return frameCount_ = v, 0; }
    unsigned short getDepth() const { return depth_; } ///< bits a pixel
    int setDepth(unsigned short v) { return depth_ = v, 0; }
    unsigned short getColorTableID() const { return colorTableID_; } ///< 65535 = none
    int setColorTableID(unsigned short v) { return colorTableID_ = v, 0; }

    unsigned char getFields() const { return fields_; } ///< 1 progressive, 2 interlaced
    int setFields(unsigned char v) { return fields_ = v, 0; }
    unsigned char getFieldOrder() const { return fieldOrder_; } ///< 0; 1, 6, 9 or 14 of interlaced pictures
    int setFieldOrder(unsigned char v) { return fieldOrder_ = v, 0; }
    /// Codes of the "nclc" colour description; 2 = unspecified, which is what a new track has.
    int getColorDescription(unsigned short& primaries, unsigned short& transfer,
                            unsigned short& matrix) const;
    int setColorDescription(unsigned short primaries, unsigned short transfer, unsigned short matrix);
    int get_clap_width() const { return clapWidth_; } ///< clean aperture to be written, pixels
    int set_clap_width(int v) { return clapWidth_ = v, 0; }
    int get_clap_height() const { return clapHeight_; }
    int set_clap_height(int v) { return clapHeight_ = v, 0; }

    unsigned char getH263Level() const { return h263Level_; }
    int setH263Level(unsigned char v) { return h263Level_ = v, 0; }
    unsigned char getH263Profile() const { return h263Profile_; }
    int setH263Profile(unsigned char v) { return h263Profile_ = v, 0; }
    unsigned char getH264Profile() const { return h264Profile_; }
    int setH264Profile(unsigned char v) { return h264Profile_ = v, 0; }
    unsigned char getH264Level() const { return h264Level_; }
    int setH264Level(unsigned char v) { return h264Level_ = v, 0; }
    unsigned char getH264SizeSize() const { return h264SizeSize_; } ///< bytes of a NAL unit's length
    int setH264SizeSize(unsigned char v) { return h264SizeSize_ = v, 0; }
    /// Parameter sets, each behind a start code 00 00 00 01. Setters adopt, null clears; getters borrow.
    QTFrame* getH264SeqParSet() const { return h264SeqParSet_.get(); }
    int setH264SeqParSet(QTFrame* frame) { return h264SeqParSet_.set(frame); }
    QTFrame* getH264PictParSet() const { return h264PictParSet_.get(); }
    int setH264PictParSet(QTFrame* frame) { return h264PictParSet_.set(frame); }
    QTFrame* getH265DecoderSpecificInfo() const { return h265Info_.get(); } ///< a whole "hvcC" atom
    int setH265DecoderSpecificInfo(QTFrame* frame) { return h265Info_.set(frame); }
    unsigned char* getSVQ3Data() const { return svq3_.empty() ? nullptr : svq3_.data(); } ///< "SEQH" payload
    unsigned int getSVQ3DataLength() const { return static_cast<unsigned int>(svq3_.size()); }
    int setSVQ3Data(unsigned int length, unsigned char* data); ///< copies; -1 for null with a length
    unsigned int getDNxHDType() const { return dnxhdType_; }   ///< compression ID
    int setDNxHDType(unsigned int v) { return dnxhdType_ = v, 0; }

    bool getStsdContainsExtensions() const { return extended_; } ///< as read: more than the fixed fields
    ESDS* getESDS() const { return esds_.get(); }                ///< as read, borrowed, or null
    bool getUseQuickTimeExtensions() const { return useQuickTimeExtensions_; }
    /// Writes the colour description into "kMP4" movies, too.
    int setUseQuickTimeExtensions(bool v) { return useQuickTimeExtensions_ = v, 0; }

private:
    /// A frame that is duplicated with its owner.
    class OwnFrame {
    public:
        OwnFrame() = default;
        OwnFrame(const OwnFrame& other) : frame_(other.frame_ ? new QTFrame(*other.frame_) : nullptr) {}
        OwnFrame(OwnFrame&&) = default;
        OwnFrame& operator=(const OwnFrame& other) {
            if (this != &other) *this = OwnFrame(other);
            return *this;
        }
        OwnFrame& operator=(OwnFrame&&) = default;
        ~OwnFrame() = default;
        QTFrame* get() const { return frame_.get(); }
        int set(QTFrame* frame) {
            if (frame != frame_.get()) frame_.reset(frame);
            return 0;
        }

    private:
        std::unique_ptr<QTFrame> frame_;
    };
    class KETRA_QT_LOCAL DescriptionReader;
    class KETRA_QT_LOCAL DescriptionWriter;

    void settleDisplaySize();
    void writeMediaHeader();
    void writeCompositionShift();
    void dropSyncTables();

    unsigned int width_ = 0;
    unsigned int height_ = 0;
    unsigned int displayWidth_ = 0;
    unsigned int displayHeight_ = 0;
    unsigned int aspectW_ = 0;
    unsigned int aspectH_ = 0;
    float displayFactor_ = 1.0F;
    unsigned short version_ = 0;
    unsigned short revisionLevel_ = 0;
    unsigned int vendor_ = 0;
    unsigned int temporalQuality_ = 0;
    unsigned int spatialQuality_ = 0;
    unsigned int horizontalResolution_ = 0;
    unsigned int verticalResolution_ = 0;
    unsigned short frameCount_ = 0;
    unsigned short depth_ = 0;
    unsigned short colorTableID_ = 0;
    unsigned char fields_ = 0;
    unsigned char fieldOrder_ = 0;
    unsigned short primaries_ = 2;
    unsigned short transfer_ = 2;
    unsigned short matrix_ = 2;
    int clapWidth_ = 0;
    int clapHeight_ = 0;
    unsigned char h263Level_ = 0;
    unsigned char h263Profile_ = 0;
    unsigned char h264Profile_ = 0;
    unsigned char h264Level_ = 0;
    unsigned char h264SizeSize_ = 0;
    OwnFrame h264SeqParSet_;
    OwnFrame h264PictParSet_;
    OwnFrame h265Info_;
    mutable std::vector<unsigned char> svq3_;
    unsigned int dnxhdType_ = 0;
    bool extended_ = false;
    std::shared_ptr<ESDS> esds_;
    bool useQuickTimeExtensions_ = false;
    std::shared_ptr<wire::ExtensionList> extensions_; // those written into the description
    std::vector<std::shared_ptr<QTAtom>> removed_;    // taken out of the sample table
};

} // namespace Ketra::QT
