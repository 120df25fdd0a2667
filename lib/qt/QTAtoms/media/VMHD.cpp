#include <qt/QTAtoms/media/VMHD.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

VMHD::VMHD() : QTAtom(20, fourCC("vmhd")) {}

VMHD::VMHD(QTAtom* header) : QTAtom(header) {}

VMHD::~VMHD() = default;

template <class Self, class Io>
void VMHD::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    io.u16(a.graphicsMode_);
    io.template as<wire::odd::OneColor>(a.opColor_);
}

int VMHD::parse() { return wire::parseLeaf(*this); }

QTFrame* VMHD::serialize() { return wire::writeLeaf(*this); }

} // namespace Ketra::QT
