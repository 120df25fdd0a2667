#include <qt/QTAtoms/track/CTAB.h>
#include <qt/wire/Block.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

CTAB::CTAB() : QTAtom(16, fourCC("ctab")), colors_(std::make_unique<wire::Block>()) {}

CTAB::CTAB(QTAtom* header) : QTAtom(header), colors_(std::make_unique<wire::Block>()) {}

CTAB::CTAB(const CTAB& other)
    : QTAtom(other), seed_(other.seed_), flags_(other.flags_), tableSize_(other.tableSize_),
      colors_(std::make_unique<wire::Block>(*other.colors_)) {}

CTAB& CTAB::operator=(const CTAB& other) {
    QTAtom::operator=(other);
    seed_ = other.seed_;
    flags_ = other.flags_;
    tableSize_ = other.tableSize_;
    *colors_ = *other.colors_;
    return *this;
}

CTAB::~CTAB() = default;

template <class Self, class Io>
void CTAB::layout(Self& a, Io& io) {
    io.u32(a.seed_);
    io.u16(a.flags_);
    io.u16(a.tableSize_);
    io.rest(*a.colors_);
}

std::uint64_t CTAB::updateSize() { return size_ = wire::leafBytes(*this); }

int CTAB::parse() { return wire::parseLeaf(*this); }

QTFrame* CTAB::serialize() { return wire::writeLeaf(*this); }

unsigned char* CTAB::getColorTableData() const { return colors_->data(); }

unsigned int CTAB::getColorTableDataSize() const { return static_cast<unsigned int>(colors_->size()); }

int CTAB::setColorTableData(unsigned int size, unsigned char* data) { return colors_->adopt(data, size), 0; }

} // namespace Ketra::QT
