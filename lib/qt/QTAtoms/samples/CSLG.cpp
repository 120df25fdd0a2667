#include <qt/QTAtoms/samples/CSLG.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

CSLG::CSLG() : QTAtom(32, fourCC("cslg")) {}

CSLG::CSLG(QTAtom* header) : QTAtom(header) {}

CSLG::~CSLG() = default;

template <class Self, class Io>
void CSLG::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    io.u32(a.shift_);
    io.u32(a.leastDelta_);
    io.u32(a.greatestDelta_);
    io.u32(a.displayStartTime_);
    io.u32(a.displayEndTime_);
}

int CSLG::parse() { return wire::parseLeaf(*this); }

QTFrame* CSLG::serialize() { return wire::writeLeaf(*this); }

} // namespace Ketra::QT
