#include <qt/QTAtoms/entries/STSDHint.h>
#include <qt/wire/Body.h>

namespace Ketra::QT {

namespace {
constexpr unsigned int kSize = 8;
} // namespace

STSDHint::STSDHint() : QTAtom(kSize, 0) {}

STSDHint::STSDHint(QTAtom* header) : QTAtom(header) {}

STSDHint::~STSDHint() = default;

template <class Self, class Io>
void STSDHint::layout(Self& a, Io& io) {
    io.u16(a.hintTrackVersion_);
    io.u16(a.lastCompatibleVersion_);
    io.u32(a.maxPacketSize_);
}

std::uint64_t STSDHint::updateSize() { return size_ = kSize; }

int STSDHint::parse() { return 0; }

QTFrame* STSDHint::serialize() { return wire::writeBody(*this); }

} // namespace Ketra::QT
