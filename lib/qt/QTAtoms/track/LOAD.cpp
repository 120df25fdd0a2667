#include <qt/QTAtoms/track/LOAD.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

LOAD::LOAD() : QTAtom(24, fourCC("load")) {}

LOAD::LOAD(QTAtom* header) : QTAtom(header) {}

LOAD::~LOAD() = default;

template <class Self, class Io>
void LOAD::layout(Self& a, Io& io) {
    io.u32(a.startTime_);
    io.u32(a.duration_);
    io.u32(a.flags_);
    io.u32(a.hints_);
}

std::uint64_t LOAD::updateSize() { return size_ = wire::leafBytes(*this); }

int LOAD::parse() { return wire::parseLeaf(*this); }

QTFrame* LOAD::serialize() { return wire::writeLeaf(*this); }

} // namespace Ketra::QT
