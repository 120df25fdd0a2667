#include <qt/QTAtoms/detail/CodecEntries.h>
#include <qt/QTAtoms/entries/AudioEntry.h>

namespace Ketra::QT {

namespace {
constexpr unsigned int kSize = 36;
constexpr unsigned int kFields = 28;
} // namespace

AudioEntry::AudioEntry(unsigned int type) : CodecEntry(kSize, type) {}

AudioEntry::AudioEntry(QTAtom* header) : CodecEntry(header) {}

AudioEntry::~AudioEntry() = default;

template <class Self, class Io>
void AudioEntry::layout(Self& a, Io& io) {
    io.template as<wire::odd::Reserved48>(a.reserved_);
    io.u16(a.dataReferenceIndex_);
    io.u64(a.reserved2_);
    io.u16(a.channelCount_);
    io.u16(a.sampleSize_);
    io.u32(a.reserved3_);
    io.u16(a.timeScale_);
    io.u16(a.timeScaleFraction_);
}

int AudioEntry::parseFields() { return wire::parseFields(*this, kFields); }

std::uint64_t AudioEntry::updateSize() { return size_ = kSize + childSize(); }

QTFrame* AudioEntry::writeAll(bool header) {
    updateSize();
    return wire::writeFields(*this, child(), header);
}

} // namespace Ketra::QT
