#include <qt/QTAtoms/detail/CodecEntries.h>
#include <qt/QTAtoms/entries/MP4S.h>
#include <qt/QTAtoms/systems/ESDS.h>
#include <qt/wire/Container.h>

namespace Ketra::QT {

namespace {
constexpr unsigned int kSize = 8;
} // namespace

MP4S::MP4S() : CodecEntry(kSize, fourCC("mp4s")) {}

MP4S::MP4S(QTAtom* header) : CodecEntry(header) {}

MP4S::~MP4S() = default;

std::uint64_t MP4S::updateSize() { return size_ = kSize + childSize(); }

int MP4S::parse() {
    if (!utils_) return -1;
    parseChild(fourCC("esds"), wire::make<ESDS>);
    return 0;
}

QTFrame* MP4S::serialize() {
    updateSize();
    return wire::writeFields(*this, child(), false);
}

} // namespace Ketra::QT
