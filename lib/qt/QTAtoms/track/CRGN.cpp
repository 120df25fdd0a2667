#include <qt/QTAtoms/track/CRGN.h>
#include <qt/wire/Block.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

CRGN::CRGN() : QTAtom(18, fourCC("crgn")), region_(std::make_unique<wire::Block>()) {}

CRGN::CRGN(QTAtom* header) : QTAtom(header), region_(std::make_unique<wire::Block>()) {}

CRGN::CRGN(const CRGN& other)
    : QTAtom(other), regionSize_(other.regionSize_), box_(other.box_),
      region_(std::make_unique<wire::Block>(*other.region_)) {}

CRGN& CRGN::operator=(const CRGN& other) {
    QTAtom::operator=(other);
    regionSize_ = other.regionSize_;
    box_ = other.box_;
    *region_ = *other.region_;
    return *this;
}

CRGN::~CRGN() = default;

template <class Self, class Io>
void CRGN::layout(Self& a, Io& io) {
    io.u16(a.regionSize_);
    io.u64(a.box_);
    io.rest(*a.region_);
}

std::uint64_t CRGN::updateSize() { return size_ = wire::leafBytes(*this); }

int CRGN::parse() { return wire::parseLeaf(*this); }

QTFrame* CRGN::serialize() { return wire::writeLeaf(*this); }

unsigned char* CRGN::getClippingRegionData() const { return region_->data(); }

unsigned int CRGN::getClippingRegionDataSize() const { return static_cast<unsigned int>(region_->size()); }

int CRGN::setClippingRegionData(unsigned int size, unsigned char* data) {
    return region_->adopt(data, size), 0;
}

} // namespace Ketra::QT
