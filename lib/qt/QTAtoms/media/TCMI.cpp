#include <qt/QTAtoms/media/TCMI.h>
#include <qt/wire/Body.h>
#include <qt/wire/Leaf.h>

#include <algorithm>

namespace Ketra::QT {

namespace {

constexpr unsigned int kSize = 65;
constexpr unsigned int kHeader = 8;
constexpr unsigned int kMediaInfo = 24; // the "gmin" atom in front
constexpr unsigned int kLongestName = 255;

/// Stands before the fields: passes a "gmin" and enters "tmcd" and "tcmi", as far as they are there.
void enter(wire::Reader& in) {
    while (in.left() >= kHeader) {
        const unsigned int type = wire::load32(in.cursor() + 4);
        if (type == fourCC("gmin")) {
            in.skip(std::max(wire::load32(in.cursor()), kHeader));
        } else if (type == fourCC("tmcd") || type == fourCC("tcmi")) {
            in.skip(kHeader);
        } else {
            return;
        }
    }
}

} // namespace

TCMI::TCMI() : QTAtom(kSize, fourCC("tcmi")) {}

TCMI::TCMI(QTAtom* header) : QTAtom(header) {}

TCMI::~TCMI() = default;

template <class Self, class Io>
void TCMI::layout(Self& a, Io& io) {
    unsigned int nameLength = static_cast<unsigned int>(a.fontName_.size());
    if constexpr (Io::kReads) {
        enter(io);
    } else {
        io.u32(kMediaInfo);
        io.u32(fourCC("gmin"));
        io.u32(0);                                                             // version, flags
        for (const unsigned int word : {0x0040U, 0x8000U, 0x8000U, 0x8000U}) { // dither copy, grey
            io.u16(word);
        }
        io.skip(4); // balance, reserved
        io.u32(nameLength + 41);
        io.u32(fourCC("tmcd"));
        io.u32(nameLength + 33);
        io.u32(fourCC("tcmi"));
    }
    io.skip(4); // version, flags
    io.u16(a.textFont_);
    io.u16(a.textFace_);
    io.u16(a.textSize_);
    io.skip(2);
    for (auto& component : a.textColor_) {
        io.u16(component);
    }
    for (auto& component : a.backgroundColor_) {
        io.u16(component);
    }
    io.u8(nameLength);
    if constexpr (Io::kReads) a.fontName_.resize(std::min<std::size_t>(nameLength, io.left()));
    io.bytes(a.fontName_.data(), a.fontName_.size());
}

std::uint64_t TCMI::updateSize() { return size_ = kSize + fontName_.size(); }

int TCMI::parse() {
    const int result = wire::parseLeaf(*this);
    if (result == 0) type_ = fourCC("tcmi");
    return result;
}

QTFrame* TCMI::serialize() { return wire::writeBody(*this); }

int TCMI::setTextColor(unsigned short r, unsigned short g, unsigned short b) {
    textColor_[0] = r;
    textColor_[1] = g;
    textColor_[2] = b;
    return 0;
}

int TCMI::getTextColor(unsigned short& r, unsigned short& g, unsigned short& b) const {
    r = textColor_[0];
    g = textColor_[1];
    b = textColor_[2];
    return 0;
}

int TCMI::setBackgroundColor(unsigned short r, unsigned short g, unsigned short b) {
    backgroundColor_[0] = r;
    backgroundColor_[1] = g;
    backgroundColor_[2] = b;
    return 0;
}

int TCMI::getBackgroundColor(unsigned short& r, unsigned short& g, unsigned short& b) const {
    r = backgroundColor_[0];
    g = backgroundColor_[1];
    b = backgroundColor_[2];
    return 0;
}

int TCMI::setFontName(unsigned int length, unsigned char* bytes) {
    if (length && !bytes) return -1;
    fontName_.assign(bytes, bytes + std::min(length, kLongestName));
    return 0;
}

int TCMI::getFontName(unsigned int& length, unsigned char*& bytes) const {
    length = static_cast<unsigned int>(fontName_.size());
    bytes = fontName_.empty() ? nullptr : fontName_.data();
    return 0;
}

} // namespace Ketra::QT
