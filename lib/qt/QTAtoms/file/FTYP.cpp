#include <qt/QTAtoms/file/FTYP.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

namespace {

constexpr unsigned int kFixed = 16;
constexpr unsigned int kBrand = 4;

} // namespace

FTYP::FTYP() : QTAtom(kFixed, fourCC("ftyp")) {}

FTYP::FTYP(QTAtom* header) : QTAtom(header) {}

FTYP::~FTYP() = default;

template <class Self, class Io>
void FTYP::layout(Self& a, Io& io) {
    io.u32(a.majorBrand_);
    io.u32(a.minorVersion_);
    if constexpr (Io::kReads) {
        while (io.left() >= kBrand) {
            unsigned int brand = 0;
            io.u32(brand);
            a.addCompatibleBrand(brand);
        }
    } else {
        for (const unsigned int brand : a.brands_) {
            io.u32(brand);
        }
    }
}

std::uint64_t FTYP::updateSize() {
    return size_ = kFixed + kBrand * static_cast<std::uint64_t>(brands_.size());
}

int FTYP::parse() { return wire::parseLeaf(*this); }

QTFrame* FTYP::serialize() {
    updateSize();
    return wire::writeLeaf(*this, fourCC("ftyp"));
}

unsigned int FTYP::getCompatibleBrand(unsigned int index) const {
    return index < brands_.size() ? brands_[index] : 0;
}

int FTYP::addCompatibleBrand(unsigned int brand) {
    brands_.push_back(brand);
    size_ += kBrand;
    return 0;
}

int FTYP::setCompatibleBrands(const std::vector<unsigned int>& brands) {
    brands_ = brands;
    updateSize();
    return 0;
}

} // namespace Ketra::QT
