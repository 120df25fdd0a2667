#include <qt/QTAtoms/entries/GAMA.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

GAMA::GAMA() : QTAtom(12, fourCC("gama")) {}

GAMA::GAMA(QTAtom* header) : QTAtom(header) {}

GAMA::~GAMA() = default;

template <class Self, class Io>
void GAMA::layout(Self& a, Io& io) {
    io.bytes(a.file_, sizeof a.file_);
    if constexpr (Io::kReads) a.gamma_ = wire::odd::Gamma::read(a.file_);
}

std::uint64_t GAMA::updateSize() { return size_ = wire::leafBytes(*this); }

int GAMA::parse() { return wire::parseLeaf(*this); }

QTFrame* GAMA::serialize() { return wire::writeLeaf(*this); }

int GAMA::setGamma(float gamma) {
    gamma_ = gamma;
    wire::odd::Gamma::write(file_, gamma);
    return 0;
}

} // namespace Ketra::QT
