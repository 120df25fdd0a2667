#include <qt/QTAtoms/media/NMHD.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

NMHD::NMHD() : QTAtom(12, fourCC("nmhd")) {}

NMHD::NMHD(QTAtom* header) : QTAtom(header) {}

NMHD::~NMHD() = default;

template <class Self, class Io>
void NMHD::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
}

int NMHD::parse() { return wire::parseLeaf(*this); }

QTFrame* NMHD::serialize() { return wire::writeLeaf(*this); }

} // namespace Ketra::QT
