#include <qt/QTAtoms/track/KMAT.h>
#include <qt/wire/Block.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

KMAT::KMAT() : QTAtom(12, fourCC("kmat")), matte_(std::make_unique<wire::Block>()) {}

KMAT::KMAT(QTAtom* header) : QTAtom(header), matte_(std::make_unique<wire::Block>()) {}

KMAT::KMAT(const KMAT& other)
    : QTAtom(other), version_(other.version_), flags_(other.flags_),
      matte_(std::make_unique<wire::Block>(*other.matte_)) {}

KMAT& KMAT::operator=(const KMAT& other) {
    QTAtom::operator=(other);
    version_ = other.version_;
    flags_ = other.flags_;
    *matte_ = *other.matte_;
    return *this;
}

KMAT::~KMAT() = default;

template <class Self, class Io>
void KMAT::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    io.rest(*a.matte_);
}

std::uint64_t KMAT::updateSize() { return size_ = wire::leafBytes(*this); }

int KMAT::parse() { return wire::parseLeaf(*this); }

QTFrame* KMAT::serialize() { return wire::writeLeaf(*this); }

unsigned char* KMAT::getMatteData() const { return matte_->data(); }

unsigned int KMAT::getMatteDataSize() const { return static_cast<unsigned int>(matte_->size()); }

int KMAT::setMatteData(unsigned int size, unsigned char* data) { return matte_->adopt(data, size), 0; }

} // namespace Ketra::QT
