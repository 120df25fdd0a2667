// Timecode: the time of day, or the counter, that a movie was recorded with.
#pragma once

#include <qt/QTTrack/QTTrack.h>

#include <vector>

namespace Ketra::QT {

/// Holds the timecode sample description's fields and how the timecode is drawn. Setters return 0.
///
/// Clearing one of the four flags toggles it: clearing a flag that is not set sets it.
class KETRA_QT_API QTTimeCodeTrack : public QTTrack {
public:
    QTTimeCodeTrack();
    /// Reads the track's header and description. Throws CException without "tkhd" or "mdia", and when the
    /// description table's count is wrong.
    explicit QTTimeCodeTrack(QTAtom* trak);
    QTTimeCodeTrack(const QTTimeCodeTrack& other);
    QTTimeCodeTrack& operator=(const QTTimeCodeTrack& other);
    ~QTTimeCodeTrack() override;

    int prepareForWriting() override;     ///< sets the font name to "Geneva"
    unsigned int getType() override;      ///< "tmcd"
    int parseStsd(QTAtom* stsd) override; ///< the last description wins; -1 for another atom

    int setTimeCodeSize(unsigned short width, unsigned short height); ///< of its display, in pixels
    unsigned short getTimeCodeWidth() const { return width_; }
    unsigned short getTimeCodeHeight() const { return height_; }
    unsigned int getTimeScale() const { return timeScale_; } ///< units a second
    int setTimeScale(unsigned int v) { return timeScale_ = v, 0; }
    unsigned int getFrameDuration() const { return timeCodeFrameDuration_; } ///< in these units
    int setFrameDuration(unsigned int v) { return timeCodeFrameDuration_ = v, 0; }
    unsigned int getNumberOfFrames() const { return numberOfFrames_; } ///< a second; 8 bits in a file
    int setNumberOfFrames(unsigned int v) { return numberOfFrames_ = v, 0; }
    unsigned short getTextFont() const { return textFont_; } ///< 0 = the system font
    int setTextFont(unsigned short v) { return textFont_ = v, 0; }
    unsigned short getTextFace() const { return textFace_; } ///< bold 1, italic 2, underline 4, ...
    int setTextFace(unsigned short v) { return textFace_ = v, 0; }
    unsigned short getTextSize() const { return textSize_; } ///< points
    int setTextSize(unsigned short v) { return textSize_ = v, 0; }
    int setTextColor(unsigned short r, unsigned short g, unsigned short b);
    int getTextColor(unsigned short& r, unsigned short& g, unsigned short& b) const;
    int setBackgroundColor(unsigned short r, unsigned short g, unsigned short b);
    int getBackgroundColor(unsigned short& r, unsigned short& g, unsigned short& b) const;
    bool getTimeCodeTrackVisible() const { return visible_; } ///< stored only
    int setTimeCodeTrackVisible(bool v) { return visible_ = v, 0; }

    /// The tape or reel that the timecode belongs to. Copies; -1 for null with a length.
    int setSourceReference(unsigned int length, unsigned char* bytes);
    int getSourceReference(unsigned int& length, unsigned char*& bytes) const; ///< borrowed, or 0 and null
    int setFontName(unsigned int length, unsigned char* bytes);         ///< copies; -1 for null with a length
    int getFontName(unsigned int& length, unsigned char*& bytes) const; ///< borrowed, or 0 and null

    // Each getter returns 0 or 1.
    unsigned char getDropFrameFlag() const { return flag(1); }
    int setDropFrameFlag(unsigned char v) { return changeFlag(1, v); }
    unsigned char get24HourMaxFlag() const { return flag(2); }
    int set24HourMaxFlag(unsigned char v) { return changeFlag(2, v); }
    unsigned char getNegativeTimesOKFlag() const { return flag(4); }
    int setNegativeTimesOKFlag(unsigned char v) { return changeFlag(4, v); }
    unsigned char getCounterFlag() const { return flag(8); }
    int setCounterFlag(unsigned char v) { return changeFlag(8, v); }

    /// The start timecode, read from the first chunk's first four bytes, least significant first. From the
    /// most significant byte on: whole hours, a sixtieth of the hours twice, and the remainder of the value
    /// by the time scale, each modulo 256. 0 when it cannot be read; anything else is read once only.
    unsigned int getTimeCode(QTStream* stream);

private:
    unsigned char flag(unsigned int bit) const { return flags_ & bit ? 1 : 0; }
    int changeFlag(unsigned int bit, unsigned char on) {
        return flags_ = on ? flags_ | bit : flags_ ^ bit, 0;
    }

    unsigned short width_ = 100;
    unsigned short height_ = 50;
    unsigned int flags_ = 2;
    unsigned int reserved_ = 0;
    unsigned int timeScale_ = 0;
    unsigned int timeCodeFrameDuration_ = 100;
    unsigned int numberOfFrames_ = 25;
    mutable std::vector<unsigned char> sourceReference_; // ends in a zero that does not count
    unsigned short textFont_ = 0;
    unsigned short textFace_ = 0;
    unsigned short textSize_ = 12;
    unsigned short textColor_[3] = {0, 0xFFFF, 0};
    unsigned short backgroundColor_[3] = {0, 0, 0};
    mutable std::vector<unsigned char> fontName_; // likewise
    unsigned int timeCode_ = 0;                   // 0: not read yet
    bool visible_ = false;
};

} // namespace Ketra::QT
