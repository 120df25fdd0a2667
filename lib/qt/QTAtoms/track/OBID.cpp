#include <qt/QTAtoms/track/OBID.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

OBID::OBID() : QTAtom(12, fourCC("obid")) {}

OBID::OBID(QTAtom* header) : QTAtom(header) {}

OBID::~OBID() = default;

template <class Self, class Io>
void OBID::layout(Self& a, Io& io) {
    io.u32(a.objectID_);
}

std::uint64_t OBID::updateSize() { return size_ = wire::leafBytes(*this); }

int OBID::parse() { return wire::parseLeaf(*this); }

QTFrame* OBID::serialize() { return wire::writeLeaf(*this); }

} // namespace Ketra::QT
