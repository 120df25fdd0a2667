#include <qt/QTAtoms/samples/STSH.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

STSH::STSH() : QTAtom(8, fourCC("stsh")) {}

STSH::STSH(QTAtom* header) : QTAtom(header) {}

STSH::~STSH() = default;

template <class Self, class Io>
void STSH::layout(Self&, Io&) {}

QTFrame* STSH::serialize() { return wire::writeLeaf(*this); }

} // namespace Ketra::QT
