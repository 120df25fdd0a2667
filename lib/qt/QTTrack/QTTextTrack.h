// Timed text and chapter titles.
#pragma once

#include <qt/QTTrack/QTTrack.h>

#include <vector>

namespace Ketra::QT {

/// Holds the fields of the text sample description: filled from it when a movie is read, copied into it by
/// prepareForWriting(). Lengths are pixels. Setters return 0.
///
/// A chapter track is a text track, disabled, whose texts are the titles; a media track names it with a
/// "chap" reference (addTrackReference).
class KETRA_QT_API QTTextTrack : public QTTrack {
public:
    QTTextTrack();
    /// Reads the track's header, description and chapter mark. Throws CException without "tkhd" or "mdia",
    /// and when the description table's count is wrong.
    explicit QTTextTrack(QTAtom* trak);
    QTTextTrack(const QTTextTrack& other);
    QTTextTrack& operator=(const QTTextTrack& other);
    ~QTTextTrack() override;

    /// A chapter track gets the description of chapter titles, a name and marks in its user data, and its
    /// enabled bit toggled.
    int prepareForWriting() override;
    unsigned int getType() override;      ///< "text"
    int parseStsd(QTAtom* stsd) override; ///< the last description wins; -1 for another atom

    unsigned int getDisplayFlags() const { return displayFlags_; }
    int setDisplayFlags(unsigned int v) { return displayFlags_ = v, 0; }
    unsigned int getTextJustification() const { return textJustification_; } ///< 0 left, 1 centre, -1 right
    int setTextJustification(unsigned int v) { return textJustification_ = v, 0; }
    unsigned short getBackgroundColorR() const { return background_[0]; }
    int setBackgroundColorR(unsigned short v) { return background_[0] = v, 0; }
    unsigned short getBackgroundColorG() const { return background_[1]; }
    int setBackgroundColorG(unsigned short v) { return background_[1] = v, 0; }
    unsigned short getBackgroundColorB() const { return background_[2]; }
    int setBackgroundColorB(unsigned short v) { return background_[2] = v, 0; }
    /// Read from the four words of a file's text box in the order top, bottom, left, right; files have top,
    /// left, bottom, right, which is how they are written.
    unsigned short getDefaultTextBoxTop() const { return boxTop_; }
    int setDefaultTextBoxTop(unsigned short v) { return boxTop_ = v, 0; }
    unsigned short getDefaultTextBoxBottom() const { return boxBottom_; }
    int setDefaultTextBoxBottom(unsigned short v) { return boxBottom_ = v, 0; }
    unsigned short getDefaultTextBoxLeft() const { return boxLeft_; }
    int setDefaultTextBoxLeft(unsigned short v) { return boxLeft_ = v, 0; }
    unsigned short getDefaultTextBoxRight() const { return boxRight_; }
    int setDefaultTextBoxRight(unsigned short v) { return boxRight_ = v, 0; }
    std::uint64_t getReserved() const { return reserved_; }
    int setReserved(std::uint64_t v) { return reserved_ = v, 0; }
    unsigned short getFontNumber() const { return fontNumber_; }
    int setFontNumber(unsigned short v) { return fontNumber_ = v, 0; }
    unsigned short getFontFace() const { return fontFace_; } ///< bold 1, italic 2, underline 4, ...
    int setFontFace(unsigned short v) { return fontFace_ = v, 0; }
    unsigned int getReserved2() const { return reserved2_; } ///< 8 bits in a file
    int setReserved2(unsigned int v) { return reserved2_ = v, 0; }
    unsigned int getReserved3() const { return reserved3_; } ///< 16 bits in a file
    int setReserved3(unsigned int v) { return reserved3_ = v, 0; }
    unsigned short getForegroundColorR() const { return foreground_[0]; }
    int setForegroundColorR(unsigned short v) { return foreground_[0] = v, 0; }
    unsigned short getForegroundColorG() const { return foreground_[1]; }
    int setForegroundColorG(unsigned short v) { return foreground_[1] = v, 0; }
    unsigned short getForegroundColorB() const { return foreground_[2]; }
    int setForegroundColorB(unsigned short v) { return foreground_[2] = v, 0; }
    unsigned int getWidth() const { return width_; } ///< of the text box and of the track
    int setWidth(unsigned int v) { return width_ = v, 0; }
    unsigned int getHeight() const { return height_; }
    int setHeight(unsigned int v) { return height_ = v, 0; }

    unsigned char* getTextName() const { return name_.empty() ? nullptr : name_.data(); } ///< borrowed
    unsigned int getTextNameLength() const { return static_cast<unsigned int>(name_.size()); }
    int setTextName(unsigned int length, unsigned char* bytes); ///< copies; -1 for null with a length

    bool isChapterTrack() const { return isChapterTrack_; }
    int isChapterTrack(bool v) { return isChapterTrack_ = v, 0; }

private:
    unsigned int displayFlags_ = 0;
    unsigned int textJustification_ = 1;
    unsigned short background_[3] = {0, 0, 0};
    unsigned short boxTop_ = 0;
    unsigned short boxBottom_ = 0;
    unsigned short boxLeft_ = 0;
    unsigned short boxRight_ = 0;
    std::uint64_t reserved_ = 0;
    unsigned short fontNumber_ = 0;
    unsigned short fontFace_ = 0;
    unsigned int reserved2_ = 0;
    unsigned int reserved3_ = 12;
    unsigned short foreground_[3] = {0xFFFF, 0xFFFF, 0xFFFF};
    mutable std::vector<unsigned char> name_;
    unsigned int width_ = 0;
    unsigned int height_ = 0;
    bool isChapterTrack_ = false;
};

} // namespace Ketra::QT
