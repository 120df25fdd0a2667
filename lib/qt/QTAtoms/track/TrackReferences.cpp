#include <qt/QTAtoms/track/TrackReferences.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

namespace {
constexpr unsigned int kSize = 12;
} // namespace

TrackReference::TrackReference(unsigned int type, unsigned int trackID)
    : QTAtom(kSize, type), trackID_(trackID) {}

TrackReference::TrackReference(QTAtom* header) : QTAtom(header) {}

TrackReference::~TrackReference() = default;

template <class Self, class Io>
void TrackReference::layout(Self& a, Io& io) {
    io.u32(a.trackID_);
}

int TrackReference::parse() { return wire::parseLeaf(*this); }

QTFrame* TrackReference::serialize() { return wire::writeLeaf(*this); }

TMCD::TMCD() : TMCD(0U) {}
TMCD::TMCD(unsigned int trackID) : TrackReference(fourCC("tmcd"), trackID) {}
TMCD::TMCD(QTAtom* header) : TrackReference(header) {}
TMCD::~TMCD() = default;

CHAP::CHAP() : CHAP(0U) {}
CHAP::CHAP(unsigned int trackID) : TrackReference(fourCC("chap"), trackID) {}
CHAP::CHAP(QTAtom* header) : TrackReference(header) {}
CHAP::~CHAP() = default;

SYNC::SYNC() : SYNC(0U) {}
SYNC::SYNC(unsigned int trackID) : TrackReference(fourCC("sync"), trackID) {}
SYNC::SYNC(QTAtom* header) : TrackReference(header) {}
SYNC::~SYNC() = default;

SCPT::SCPT() : SCPT(0U) {}
SCPT::SCPT(unsigned int trackID) : TrackReference(fourCC("scpt"), trackID) {}
SCPT::SCPT(QTAtom* header) : TrackReference(header) {}
SCPT::~SCPT() = default;

SSRC::SSRC() : SSRC(0U) {}
SSRC::SSRC(unsigned int trackID) : TrackReference(fourCC("ssrc"), trackID) {}
SSRC::SSRC(QTAtom* header) : TrackReference(header) {}
SSRC::~SSRC() = default;

HINT::HINT() : HINT(0U) {}
HINT::HINT(unsigned int trackID) : TrackReference(fourCC("hint"), trackID) {}
HINT::HINT(QTAtom* header) : TrackReference(header) {}
HINT::~HINT() = default;

DPND::DPND() : DPND(0U) {}
DPND::DPND(unsigned int trackID) : TrackReference(fourCC("dpnd"), trackID) {}
DPND::DPND(QTAtom* header) : TrackReference(header) {}
DPND::~DPND() = default;

IPIR::IPIR() : IPIR(0U) {}
IPIR::IPIR(unsigned int trackID) : TrackReference(fourCC("ipir"), trackID) {}
IPIR::IPIR(QTAtom* header) : TrackReference(header) {}
IPIR::~IPIR() = default;

} // namespace Ketra::QT
