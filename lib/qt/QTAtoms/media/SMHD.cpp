#include <qt/QTAtoms/media/SMHD.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

SMHD::SMHD() : QTAtom(16, fourCC("smhd")) {}

SMHD::SMHD(QTAtom* header) : QTAtom(header) {}

SMHD::~SMHD() = default;

template <class Self, class Io>
void SMHD::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    io.u16(a.balance_);
    io.u16(a.reserved_);
}

int SMHD::parse() { return wire::parseLeaf(*this); }

QTFrame* SMHD::serialize() { return wire::writeLeaf(*this); }

} // namespace Ketra::QT
