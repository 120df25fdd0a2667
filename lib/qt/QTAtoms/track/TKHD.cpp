#include <qt/QTAtoms/track/TKHD.h>
#include <qt/wire/Leaf.h>

#include <algorithm>

namespace Ketra::QT {

namespace {
constexpr unsigned int kSize = 92;
} // namespace

TKHD::TKHD() : TKHD(0U) {}

TKHD::TKHD(unsigned int trackID)
    : QTAtom(kSize, fourCC("tkhd")), creationTime_(getNewCurrentTime()), modificationTime_(creationTime_),
      trackID_(trackID) {}

TKHD::TKHD(QTAtom* header) : QTAtom(header) {}

TKHD::~TKHD() = default;

template <class Self, class Io>
void TKHD::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    io.u32(a.creationTime_);
    io.u32(a.modificationTime_);
    io.u32(a.trackID_);
    io.u32(a.reserved1_);
    io.u32(a.duration_);
    io.u64(a.reserved2_);
    io.u16(a.layer_);
    io.u16(a.alternateGroup_);
    io.template as<wire::odd::Fixed8_8>(a.volume_);
    io.u16(a.reserved3_);
    if constexpr (Io::kReads) {
        io.bytes(reinterpret_cast<unsigned char*>(a.matrix_), sizeof a.matrix_);
        a.rawMatrix_ = true;
    } else if (a.rawMatrix_) {
        io.bytes(reinterpret_cast<const unsigned char*>(a.matrix_), sizeof a.matrix_);
    } else {
        io.template as<wire::odd::IntegerMatrix>(a.matrix_);
    }
    io.template as<wire::odd::WholeFixed16_16>(a.width_);
    io.template as<wire::odd::WholeFixed16_16>(a.height_);
}

std::uint64_t TKHD::updateSize() { return size_ = kSize; }

int TKHD::parse() { return wire::parseLeaf(*this); }

QTFrame* TKHD::serialize() {
    updateSize();
    return wire::writeLeaf(*this);
}

int TKHD::setMatrix(const unsigned int* words) {
    if (!words) return -1;
    std::copy_n(words, 9, matrix_);
    rawMatrix_ = false;
    return 0;
}

} // namespace Ketra::QT
