#include "support/TrackTree.h"

namespace test {

using namespace Ketra::QT;

namespace {

Bytes number(unsigned int v) {
    return {static_cast<unsigned char>(v >> 24), static_cast<unsigned char>(v >> 16),
            static_cast<unsigned char>(v >> 8), static_cast<unsigned char>(v)};
}

} // namespace

Bytes sampleEntry(const char (&format)[5], const Bytes& body) {
    return atom(format, hex("000000000000 0001") + body);
}

Bytes trackBytes(const Bytes& header, const Bytes& descriptions, unsigned char claimed, const Bytes& userData,
                 unsigned int first) {
    const Bytes tkhd = atom("tkhd", hex("0000000F 00000000 00000000 00000007 00000000 00000000") +
                                        repeat(0, 16) + repeat(0, 36) + hex("01400000 00F00000"));
    const Bytes mdhd = atom("mdhd", hex("00000000 00000000 00000000 0000000A 00000014 0000 0000"));
    const Bytes stbl =
        atom("stbl", join({atom("stsd", hex("00000000 000000") + Bytes{claimed} + descriptions),
                           atom("stts", hex("00000000 00000001 00000001 00000014")),
                           atom("stsc", hex("00000000 00000001 00000001 00000001 00000001")),
                           atom("stsz", hex("00000000 00000004 00000001")),
                           atom("stco", hex("00000000 00000001") + number(first))}));
    return atom("trak", join({tkhd, userData, atom("mdia", mdhd + atom("minf", header + stbl))}));
}

QTAtom* ParsedTree::descriptions() const {
    QTAtom* at = trak_.get();
    for (const unsigned int type : {fourCC("mdia"), fourCC("minf"), fourCC("stbl"), fourCC("stsd")}) {
        at = at->getAtomOfType(type);
    }
    return at;
}

} // namespace test
