#include <qt/QTAtoms/user/TSEL.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

TSEL::TSEL() : QTAtom(16, fourCC("tsel")) {}

TSEL::TSEL(QTAtom* header) : QTAtom(header) {}

TSEL::~TSEL() = default;

template <class Self, class Io>
void TSEL::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    io.u32(a.switchGroup_);
    if constexpr (Io::kReads) a.attributes_.resize(static_cast<std::size_t>(io.left() / 4));
    for (auto& attribute : a.attributes_) {
        io.u32(attribute);
    }
}

std::uint64_t TSEL::updateSize() { return size_ = wire::leafBytes(*this); }

int TSEL::parse() { return wire::parseLeaf(*this); }

QTFrame* TSEL::serialize() {
    updateSize();
    return wire::writeLeaf(*this);
}

int TSEL::addAttribute(unsigned int attribute) {
    attributes_.push_back(attribute);
    return 0;
}

} // namespace Ketra::QT
