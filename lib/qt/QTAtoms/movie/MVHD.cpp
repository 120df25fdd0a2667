#include <qt/QTAtoms/movie/MVHD.h>
#include <qt/wire/Leaf.h>

#include <cstdlib>
#include <cstring>
#include <new>

namespace Ketra::QT {

namespace {

constexpr unsigned int kSize = 108;
constexpr std::size_t kReserved = 10;
constexpr std::size_t kMatrix = 9 * sizeof(unsigned int);
constexpr unsigned int kIdentity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};

} // namespace

MVHD::MVHD() : QTAtom(kSize, fourCC("mvhd")) {
    makeBlocks();
    creationTime_ = getNewCurrentTime();
    modificationTime_ = creationTime_;
}

MVHD::MVHD(QTAtom* header) : QTAtom(header) { makeBlocks(); }

MVHD::MVHD(const MVHD& other) : QTAtom(other) {
    makeBlocks();
    *this = other;
}

MVHD& MVHD::operator=(const MVHD& other) {
    if (this == &other) return *this;
    QTAtom::operator=(other);
    version_ = other.version_;
    flags_ = other.flags_;
    creationTime_ = other.creationTime_;
    modificationTime_ = other.modificationTime_;
    timeScale_ = other.timeScale_;
    duration_ = other.duration_;
    preferredRate_ = other.preferredRate_;
    preferredVolume_ = other.preferredVolume_;
    std::memcpy(reservedBytes_, other.reservedBytes_, kReserved);
    std::memcpy(matrix_, other.matrix_, kMatrix);
    previewTime_ = other.previewTime_;
    previewDuration_ = other.previewDuration_;
    posterTime_ = other.posterTime_;
    selectionTime_ = other.selectionTime_;
    selectionDuration_ = other.selectionDuration_;
    currentTime_ = other.currentTime_;
    nextTrackID_ = other.nextTrackID_;
    return *this;
}

MVHD::~MVHD() {
    std::free(reservedBytes_);
    std::free(matrix_);
}

void MVHD::makeBlocks() {
    wire::MallocPtr reserved = wire::allocate(kReserved);
    wire::MallocPtr matrix = wire::allocate(kMatrix);
    if (!reserved || !matrix) throw std::bad_alloc();
    reservedBytes_ = reserved.release();
    matrix_ = reinterpret_cast<unsigned int*>(matrix.release());
    std::memcpy(matrix_, kIdentity, kMatrix);
}

template <class Self, class Io>
void MVHD::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    io.u32(a.creationTime_);
    io.u32(a.modificationTime_);
    io.u32(a.timeScale_);
    io.u32(a.duration_);
    io.template as<wire::odd::Fixed16_16>(a.preferredRate_);
    io.template as<wire::odd::Fixed8_8>(a.preferredVolume_);
    io.bytes(a.reservedBytes_, kReserved);
    if constexpr (Io::kReads) {
        io.bytes(reinterpret_cast<unsigned char*>(a.matrix_), kMatrix);
    } else {
        io.template as<wire::odd::IntegerMatrix>(a.matrix_);
    }
    io.u32(a.previewTime_);
    io.u32(a.previewDuration_);
    io.u32(a.posterTime_);
    io.u32(a.selectionTime_);
    io.u32(a.selectionDuration_);
    io.u32(a.currentTime_);
    io.u32(a.nextTrackID_);
}

int MVHD::parse() { return wire::parseLeaf(*this); }

QTFrame* MVHD::serialize() { return wire::writeLeaf(*this); }

int MVHD::setReserved(unsigned char* bytes) {
    if (!bytes) return -1;
    if (bytes != reservedBytes_) std::free(reservedBytes_);
    reservedBytes_ = bytes;
    return 0;
}

int MVHD::setMatrix(unsigned int* words) {
    if (!words) return -1;
    if (words != matrix_) std::free(matrix_);
    matrix_ = words;
    return 0;
}

} // namespace Ketra::QT
