#include <qt/QTAtoms/entries/STSDTimeCode.h>
#include <qt/wire/Body.h>
#include <qt/wire/Leaf.h>

#include <algorithm>

namespace Ketra::QT {

namespace {

constexpr unsigned int kSize = 20;
constexpr unsigned int kSizeBeforeName = 18;
constexpr unsigned int kLongestName = 0xFFFF; // the length field

/// The user-data atom that carries the source reference.
struct NameAtom {
    static constexpr unsigned int kFixed = 12;

    template <class Text, class Io>
    static void layout(Text& text, Io& io) {
        auto size = static_cast<unsigned int>(kFixed + text.size());
        unsigned int type = fourCC("name");
        auto length = static_cast<unsigned short>(text.size());
        io.u32(size);
        io.u32(type);
        io.u16(length);
        io.skip(2); // language
        if constexpr (Io::kReads) {
            text.resize(type == fourCC("name") ? std::min<std::uint64_t>(length, io.left()) : 0);
        }
        io.bytes(text.data(), text.size());
    }
};

} // namespace

STSDTimeCode::STSDTimeCode() : QTAtom(kSize, 0) {}

STSDTimeCode::STSDTimeCode(QTAtom* header) : QTAtom(header) {}

STSDTimeCode::~STSDTimeCode() = default;

template <class Self, class Io>
void STSDTimeCode::layout(Self& a, Io& io) {
    io.u32(a.reserved_);
    io.u32(a.flags_);
    io.u32(a.timeScale_);
    io.u32(a.frameDuration_);
    io.u8(a.numberOfFrames_);
    bool named = !a.sourceReference_.empty();
    if constexpr (Io::kReads) named = io.left() > NameAtom::kFixed;
    if (named) {
        io.skip(1);
        NameAtom::layout(a.sourceReference_, io);
    } else {
        io.skip(3);
    }
}

std::uint64_t STSDTimeCode::updateSize() {
    const std::uint64_t length = sourceReference_.size();
    return size_ = length ? kSizeBeforeName + NameAtom::kFixed + length : kSize;
}

int STSDTimeCode::parse() { return wire::parseLeaf(*this); }

QTFrame* STSDTimeCode::serialize() {
    updateSize();
    return wire::writeBody(*this);
}

int STSDTimeCode::setSourceReference(unsigned int length, unsigned char* bytes) {
    if (length && !bytes) return -1;
    sourceReference_ = std::vector<unsigned char>(bytes, bytes + std::min(length, kLongestName));
    return 0;
}

int STSDTimeCode::getSourceReference(unsigned int& length, unsigned char*& bytes) const {
    length = static_cast<unsigned int>(sourceReference_.size());
    bytes = length ? sourceReference_.data() : nullptr;
    return 0;
}

} // namespace Ketra::QT
