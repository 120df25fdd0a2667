#include <qt/QTAtoms/track/TY.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

__TY::__TY() : QTAtom(12, fourCC("  ty")) {}

__TY::__TY(QTAtom* header) : QTAtom(header) {}

__TY::~__TY() = default;

template <class Self, class Io>
void __TY::layout(Self& a, Io& io) {
    io.u32(a.inputType_);
}

std::uint64_t __TY::updateSize() { return size_ = wire::leafBytes(*this); }

int __TY::parse() { return wire::parseLeaf(*this); }

QTFrame* __TY::serialize() { return wire::writeLeaf(*this); }

} // namespace Ketra::QT
