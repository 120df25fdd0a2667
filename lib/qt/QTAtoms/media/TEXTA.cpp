#include <qt/QTAtoms/media/TEXTA.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

TEXTA::TEXTA() : QTAtom(44, fourCC("text")) {}

TEXTA::TEXTA(QTAtom* header) : QTAtom(header) {}

TEXTA::~TEXTA() = default;

template <class Self, class Io>
void TEXTA::layout(Self&, Io& io) {
    if constexpr (Io::kReads) {
        io.skip(wire::odd::TextMatrix::width);
    } else {
        io.template as<wire::odd::TextMatrix>(0u);
    }
}

std::uint64_t TEXTA::updateSize() { return size_ = wire::leafBytes(*this); }

int TEXTA::parse() { return wire::parseLeaf(*this); }

QTFrame* TEXTA::serialize() {
    updateSize();
    return wire::writeLeaf(*this, fourCC("text"));
}

} // namespace Ketra::QT
