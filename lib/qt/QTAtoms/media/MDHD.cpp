#include <qt/QTAtoms/media/MDHD.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

namespace {

constexpr unsigned int kSize = 32;
constexpr std::uint64_t kWidePayload = 36;
constexpr std::uint64_t kFullAtom = 4; // version and flags

} // namespace

MDHD::MDHD() : QTAtom(kSize, fourCC("mdhd")) {
    creationTime_ = getNewCurrentTime();
    modificationTime_ = creationTime_;
}

MDHD::MDHD(QTAtom* header) : QTAtom(header) {}

MDHD::~MDHD() = default;

template <class Self, class Io>
void MDHD::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    bool wide = a.version_ != 0;
    // Unknown versions are taken for the wide form where there is room for it.
    if constexpr (Io::kReads) {
        if (a.version_ > 1) wide = io.left() + kFullAtom >= kWidePayload;
    }
    if (wide) {
        io.u64(a.creationTime_);
        io.u64(a.modificationTime_);
        io.u32(a.timeScale_);
        io.u64(a.duration_);
    } else {
        io.u32(a.creationTime_);
        io.u32(a.modificationTime_);
        io.u32(a.timeScale_);
        io.u32(a.duration_);
    }
    io.u16(a.language_);
    io.u16(a.quality_);
}

std::uint64_t MDHD::updateSize() { return size_ = wire::leafBytes(*this); }

int MDHD::parse() { return wire::parseLeaf(*this); }

QTFrame* MDHD::serialize() { return wire::writeLeaf(*this); }

} // namespace Ketra::QT
