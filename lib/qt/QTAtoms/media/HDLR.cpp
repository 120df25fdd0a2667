#include <qt/QTAtoms/media/HDLR.h>
#include <qt/wire/Leaf.h>

#include <algorithm>

namespace Ketra::QT {

namespace {

constexpr unsigned int kNewSize = 33; // the fixed fields and an empty name
constexpr std::uint64_t kFixed = 32;

} // namespace

HDLR::HDLR() : HDLR(0U) {}

HDLR::HDLR(unsigned int mediaType)
    : QTAtom(kNewSize, fourCC("hdlr")),
      componentSubType_(mediaType == fourCC("audi") ? fourCC("soun") : mediaType) {}

HDLR::HDLR(QTAtom* header) : QTAtom(header) {}

HDLR::~HDLR() = default;

template <class Self, class Io>
void HDLR::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    io.u32(a.componentType_);
    io.u32(a.componentSubType_);
    io.u32(a.componentManufacturer_);
    io.u32(a.componentFlags_);
    io.u32(a.componentFlagsMask_);
    if constexpr (Io::kReads) {
        a.name_.resize(static_cast<std::size_t>(io.left()));
        io.bytes(a.name_.data(), a.name_.size());
        a.pascal_ = false;
    } else {
        if (a.pascal_) io.u8(a.name_.size()); // counts the zero byte behind the text, too
        io.bytes(a.name_.data(), a.name_.size());
    }
}

std::uint64_t HDLR::updateSize() { return size_ = std::max(size_, wire::leafBytes(*this)); }

int HDLR::parse() { return wire::parseLeaf(*this); }

QTFrame* HDLR::serialize() { return wire::writeLeaf(*this); }

int HDLR::setComponentName(const char* name, unsigned int length, bool pascal) {
    if (!name && length) return -1;
    const std::uint64_t before = name_.size();
    std::vector<unsigned char> text(length + std::size_t{1}, 0);
    if (length) std::copy_n(reinterpret_cast<const unsigned char*>(name), length, text.begin());
    name_ = std::move(text);
    pascal_ = pascal;
    const std::uint64_t grown = size_ + length + (pascal ? 1 : 0);
    size_ = std::max(kFixed, grown > before ? grown - before : 0);
    return 0;
}

unsigned char* HDLR::getComponentName() const {
    return name_.empty() ? nullptr : const_cast<unsigned char*>(name_.data());
}

} // namespace Ketra::QT
