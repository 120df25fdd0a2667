#include <qt/QTAtoms/media/HMHD.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

HMHD::HMHD() : QTAtom(28, fourCC("hmhd")) {}

HMHD::HMHD(QTAtom* header) : QTAtom(header) {}

HMHD::~HMHD() = default;

template <class Self, class Io>
void HMHD::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    io.u16(a.maxPDUSize_);
    io.u16(a.avgPDUSize_);
    io.u32(a.maxBitRate_);
    io.u32(a.avgBitRate_);
    io.u32(a.slidingAvgBitRate_);
}

int HMHD::parse() { return wire::parseLeaf(*this); }

QTFrame* HMHD::serialize() { return wire::writeLeaf(*this); }

} // namespace Ketra::QT
