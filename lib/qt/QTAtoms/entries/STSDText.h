// The text form of a sample description.
#pragma once

#include <qt/QTAtom.h>

#include <vector>

namespace Ketra::QT {

/// The 43 bytes behind the entry header, and the name: 0 display flags, 4 justification (32), 8 background
/// colour (3 x 16), 14 text box top, left, bottom, right (16), 22 reserved (64), 30 font number, 32 font
/// face, 34 reserved (16), 36 foreground colour (3 x 16), 42 name length (8), 43 name.
///
/// serialize() returns these bytes without an atom header; parse() does nothing.
class KETRA_QT_API STSDText : public QTAtom {
public:
    STSDText();
    explicit STSDText(QTAtom* header);
    STSDText(const STSDText&) = default;
    STSDText& operator=(const STSDText&) = default;
    ~STSDText() override;

    std::uint64_t updateSize() override; ///< 43 and the name
    int parse() override;                ///< 0
    QTFrame* serialize() override;

    unsigned int getDisplayFlags() const { return displayFlags_; }
    int setDisplayFlags(unsigned int v) { return displayFlags_ = v, 0; }
    unsigned int getTextJustification() const { return textJustification_; } ///< 1 = centred
    int setTextJustification(unsigned int v) { return textJustification_ = v, 0; }
    unsigned short getBackgroundColorR() const { return background_[0]; }
    int setBackgroundColorR(unsigned short v) { return background_[0] = v, 0; }
    unsigned short getBackgroundColorG() const { return background_[1]; }
    int setBackgroundColorG(unsigned short v) { return background_[1] = v, 0; }
    unsigned short getBackgroundColorB() const { return background_[2]; }
    int setBackgroundColorB(unsigned short v) { return background_[2] = v, 0; }
    unsigned short getDefaultTextBoxTop() const { return top_; } ///< pixels
    int setDefaultTextBoxTop(unsigned short v) { return top_ = v, 0; }
    unsigned short getDefaultTextBoxLeft() const { return left_; }
    int setDefaultTextBoxLeft(unsigned short v) { return left_ = v, 0; }
    unsigned short getDefaultTextBoxBottom() const { return bottom_; }
    int setDefaultTextBoxBottom(unsigned short v) { return bottom_ = v, 0; }
    unsigned short getDefaultTextBoxRight() const { return right_; }
    int setDefaultTextBoxRight(unsigned short v) { return right_ = v, 0; }
    std::uint64_t getReserved() const { return reserved_; }
    int setReserved(std::uint64_t v) { return reserved_ = v, 0; }
    unsigned short getFontNumber() const { return fontNumber_; }
    int setFontNumber(unsigned short v) { return fontNumber_ = v, 0; }
    unsigned short getFontFace() const { return fontFace_; }
    int setFontFace(unsigned short v) { return fontFace_ = v, 0; }
    unsigned int getReserved2() const { return reserved2_; } ///< its low 8 bits share the 16 reserved ones
    int setReserved2(unsigned int v) { return reserved2_ = v, 0; }
    unsigned int getReserved3() const { return reserved3_; } ///< its low 16 bits are written
    int setReserved3(unsigned int v) { return reserved3_ = v, 0; }
    unsigned short getForegroundColorR() const { return foreground_[0]; }
    int setForegroundColorR(unsigned short v) { return foreground_[0] = v, 0; }
    unsigned short getForegroundColorG() const { return foreground_[1]; }
    int setForegroundColorG(unsigned short v) { return foreground_[1] = v, 0; }
    unsigned short getForegroundColorB() const { return foreground_[2]; }
    int setForegroundColorB(unsigned short v) { return foreground_[2] = v, 0; }

    /// Copies at most 255 bytes; -1 for null with a length.
    int setTextName(unsigned int length, unsigned char* bytes);
    unsigned char* getTextName() const { return name_.empty() ? nullptr : name_.data(); } ///< borrowed
    unsigned int getTextNameLength() const { return static_cast<unsigned int>(name_.size()); }

private:
    friend struct wire::Access;
    template <class Self, class Io>
    static void layout(Self& a, Io& io);

    unsigned int displayFlags_ = 0;
    unsigned int textJustification_ = 1;
    unsigned short background_[3] = {0, 0, 0};
    unsigned short top_ = 0;
    unsigned short left_ = 0;
    unsigned short bottom_ = 0;
    unsigned short right_ = 0;
    std::uint64_t reserved_ = 0;
    unsigned short fontNumber_ = 0;
    unsigned short fontFace_ = 0;
    unsigned int reserved2_ = 0;
    unsigned int reserved3_ = 0;
    unsigned short foreground_[3] = {0xFFFF, 0xFFFF, 0xFFFF};
    mutable std::vector<unsigned char> name_;
};

} // namespace Ketra::QT
