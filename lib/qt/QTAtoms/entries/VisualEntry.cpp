#include <qt/QTAtoms/detail/CodecEntries.h>
#include <qt/QTAtoms/entries/VisualEntry.h>

namespace Ketra::QT {

namespace {
constexpr unsigned int kSize = 86;
constexpr unsigned int kFields = 78;
} // namespace

VisualEntry::VisualEntry(unsigned int type) : CodecEntry(kSize, type) {}

VisualEntry::VisualEntry(QTAtom* header) : CodecEntry(header) {}

VisualEntry::~VisualEntry() = default;

template <class Self, class Io>
void VisualEntry::layout(Self& a, Io& io) {
    io.template as<wire::odd::Reserved48>(a.reserved_);
    io.u16(a.dataReferenceIndex_);
    io.u64(a.reserved2_[0]);
    io.u64(a.reserved2_[1]);
    io.u16(a.width_);
    io.u16(a.height_);
    io.u32(a.horizontalResolution_);
    io.u32(a.verticalResolution_);
    io.u32(a.reserved3_);
    io.u16(a.frameCount_);
    io.bytes(a.compressorName_, sizeof a.compressorName_);
    io.u16(a.depth_);
    io.u16(a.preDefined_);
}

int VisualEntry::parseFields() { return wire::parseFields(*this, kFields); }

std::uint64_t VisualEntry::updateSize() { return size_ = kSize + childSize(); }

QTFrame* VisualEntry::serialize() {
    updateSize();
    return wire::writeFields(*this, child(), true);
}

} // namespace Ketra::QT
