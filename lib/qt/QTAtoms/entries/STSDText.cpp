#include <qt/QTAtoms/entries/STSDText.h>
#include <qt/wire/Body.h>

#include <algorithm>

namespace Ketra::QT {

namespace {
constexpr unsigned int kSize = 43;
constexpr unsigned int kLongestName = 255; // the length byte
} // namespace

STSDText::STSDText() : QTAtom(kSize, 0) {}

STSDText::STSDText(QTAtom* header) : QTAtom(header) {}

STSDText::~STSDText() = default;

template <class Self, class Io>
void STSDText::layout(Self& a, Io& io) {
    io.u32(a.displayFlags_);
    io.u32(a.textJustification_);
    for (auto& component : a.background_) {
        io.u16(component);
    }
    io.u16(a.top_);
    io.u16(a.left_);
    io.u16(a.bottom_);
    io.u16(a.right_);
    io.u64(a.reserved_);
    io.u16(a.fontNumber_);
    io.u16(a.fontFace_);
    io.u16((a.reserved3_ & 0xFFFF) | ((a.reserved2_ & 0xFF) << 8));
    for (auto& component : a.foreground_) {
        io.u16(component);
    }
    io.u8(a.name_.size());
    io.bytes(a.name_.data(), a.name_.size());
}

std::uint64_t STSDText::updateSize() { return size_ = kSize + name_.size(); }

int STSDText::parse() { return 0; }

QTFrame* STSDText::serialize() {
    updateSize();
    return wire::writeBody(*this);
}

int STSDText::setTextName(unsigned int length, unsigned char* bytes) {
    if (length && !bytes) return -1;
    name_ = std::vector<unsigned char>(bytes, bytes + std::min(length, kLongestName));
    return 0;
}

} // namespace Ketra::QT
