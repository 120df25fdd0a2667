// Timecode media information of a QuickTime movie: how the timecode is drawn.
#pragma once

#include <qt/QTAtom.h>

#include <vector>

namespace Ketra::QT {

/// Everything that "gmhd" holds in a timecode track, written as one piece without a header around it:
///
/// 0 a "gmin" atom of 24 bytes (graphics mode 0x0040, colour 0x8000 three times), 24 a "tmcd" atom that holds
/// 32 a "tcmi" atom: 40 version, 41 flags, 44 text font, 46 text face, 48 text size, 50 zeros (16 each), 52
/// text colour, 58 background colour (3 x 16), 64 font name length (8), 65 the font name.
///
/// Reading takes the payload of "gmhd", of "tmcd" or of "tcmi", whichever header it was made from.
class KETRA_QT_API TCMI : public QTAtom {
public:
    TCMI();
    explicit TCMI(QTAtom* header);
    TCMI(const TCMI&) = default;
    TCMI& operator=(const TCMI&) = default;
    ~TCMI() override;

    std::uint64_t updateSize() override; ///< 65 and the font name
    int parse() override;                ///< the type becomes "tcmi"
    QTFrame* serialize() override;

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
    /// Copies at most 255 bytes; -1 for null with a length.
    int setFontName(unsigned int length, unsigned char* bytes);
    int getFontName(unsigned int& length, unsigned char*& bytes) const; ///< borrowed, or 0 and null

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned short textFont_ = 0;
    unsigned short textFace_ = 0;
    unsigned short textSize_ = 12;
    unsigned short textColor_[3] = {0, 0, 0};
    unsigned short backgroundColor_[3] = {0, 0, 0};
    mutable std::vector<unsigned char> fontName_;
};

} // namespace Ketra::QT
