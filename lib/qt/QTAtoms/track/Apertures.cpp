#include <qt/QTAtoms/track/Apertures.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

ApertureAtom::ApertureAtom(unsigned int type) : QTAtom(20, type) {}

ApertureAtom::ApertureAtom(QTAtom* header) : QTAtom(header) {}

ApertureAtom::~ApertureAtom() = default;

template <class Self, class Io>
void ApertureAtom::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    io.template as<wire::odd::WholePixels>(a.width_);
    io.template as<wire::odd::WholePixels>(a.height_);
}

std::uint64_t ApertureAtom::updateSize() { return size_ = wire::leafBytes(*this); }

int ApertureAtom::parse() { return wire::parseLeaf(*this); }

QTFrame* ApertureAtom::serialize() { return wire::writeLeaf(*this); }

CLEF::CLEF() : ApertureAtom(fourCC("clef")) {}
CLEF::CLEF(QTAtom* header) : ApertureAtom(header) {}
CLEF::~CLEF() = default;

PROF::PROF() : ApertureAtom(fourCC("prof")) {}
PROF::PROF(QTAtom* header) : ApertureAtom(header) {}
PROF::~PROF() = default;

ENOF::ENOF() : ApertureAtom(fourCC("enof")) {}
ENOF::ENOF(QTAtom* header) : ApertureAtom(header) {}
ENOF::~ENOF() = default;

} // namespace Ketra::QT
