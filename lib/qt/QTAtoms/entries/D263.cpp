#include <qt/QTAtoms/detail/Descriptions.h>
#include <qt/QTAtoms/entries/D263.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

namespace {
constexpr unsigned int kSize = 15;
} // namespace

D263::D263() : QTAtom(kSize, fourCC("d263")) {}

D263::D263(QTAtom* header) : QTAtom(header) {}

D263::~D263() = default;

template <class Self, class Io>
void D263::layout(Self& a, Io& io) {
    io.u32(a.vendor_);
    io.u8(a.decoderVersion_);
    io.u8(a.h263Level_);
    io.u8(a.h263Profile_);
}

int D263::parse() { return wire::parseLeaf(*this); }

QTFrame* D263::serialize() { return wire::writeLeaf(*this); }

int D263::getInfo(unsigned char** cursor) {
    wire::Reader in(*cursor, kSize - wire::kAtomHeader);
    layout(*this, in);
    *cursor += in.position();
    return 0;
}

namespace wire {

void readBody(D263& atom, Reader& in) { Access::layout(atom, in); }

} // namespace wire

} // namespace Ketra::QT
