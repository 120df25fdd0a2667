#include <qt/QTAtoms/detail/Descriptions.h>
#include <qt/QTAtoms/entries/DAMR.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

namespace {
constexpr unsigned int kSize = 17;
} // namespace

DAMR::DAMR() : QTAtom(kSize, fourCC("damr")) {}

DAMR::DAMR(QTAtom* header) : QTAtom(header) {}

DAMR::~DAMR() = default;

template <class Self, class Io>
void DAMR::layout(Self& a, Io& io) {
    io.u32(a.vendor_);
    io.u8(a.decoderVersion_);
    io.u16(a.modeSet_);
    io.u8(a.modeChangePeriod_);
    io.u8(a.framesPerSample_);
}

int DAMR::parse() { return wire::parseLeaf(*this); }

QTFrame* DAMR::serialize() { return wire::writeLeaf(*this); }

namespace wire {

void readBody(DAMR& atom, Reader& in) { Access::layout(atom, in); }

} // namespace wire

} // namespace Ketra::QT
