#include <qt/QTAtoms/file/PNOT.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

PNOT::PNOT() = default;

PNOT::PNOT(unsigned int modificationDate, unsigned short versionNumber, unsigned int atomType,
           unsigned short index)
    : modificationDate_(modificationDate), versionNumber_(versionNumber), atomType_(atomType), index_(index) {
}

PNOT::PNOT(QTAtom* header) : QTAtom(header) {}

PNOT::~PNOT() = default;

template <class Self, class Io>
void PNOT::layout(Self& a, Io& io) {
    io.u32(a.modificationDate_);
    io.u16(a.versionNumber_);
    io.u32(a.atomType_);
    io.u16(a.index_);
}

int PNOT::parse() { return wire::parseLeaf(*this); }

QTFrame* PNOT::serialize() { return nullptr; }

} // namespace Ketra::QT
