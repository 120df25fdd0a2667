#include <qt/QTAtoms/user/NSAV.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

NSAV::NSAV() : QTAtom(12, fourCC("nsav")) {}

NSAV::NSAV(QTAtom* header) : QTAtom(header) {}

NSAV::~NSAV() = default;

template <class Self, class Io>
void NSAV::layout(Self& a, Io& io) {
    io.u32(a.allowTranscoding_);
}

std::uint64_t NSAV::updateSize() { return size_ = wire::leafBytes(*this); }

int NSAV::parse() { return wire::parseLeaf(*this); }

QTFrame* NSAV::serialize() { return wire::writeLeaf(*this); }

} // namespace Ketra::QT
