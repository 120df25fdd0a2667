#include <qt/QTAtoms/media/GMIN.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

GMIN::GMIN() : QTAtom(24, fourCC("gmin")) {}

GMIN::GMIN(QTAtom* header) : QTAtom(header) {}

GMIN::~GMIN() = default;

template <class Self, class Io>
void GMIN::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    io.u16(a.graphicsMode_);
    io.template as<wire::odd::OneColor>(a.opColor_);
    io.u16(a.balance_);
    io.u16(a.reserved_);
}

int GMIN::parse() { return wire::parseLeaf(*this); }

QTFrame* GMIN::serialize() { return wire::writeLeaf(*this); }

} // namespace Ketra::QT
