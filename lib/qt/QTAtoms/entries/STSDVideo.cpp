#include <qt/QTAtoms/detail/Descriptions.h>
#include <qt/QTAtoms/entries/STSDVideo.h>
#include <qt/wire/Body.h>
#include <qt/wire/Reader.h>

#include <algorithm>
#include <cstring>

namespace Ketra::QT {

namespace {
constexpr unsigned int kSize = 70;
} // namespace

STSDVideo::STSDVideo() : QTAtom(kSize, 0) {}

STSDVideo::STSDVideo(QTAtom* header) : QTAtom(header) {}

STSDVideo::~STSDVideo() = default;

template <class Self, class Io>
void STSDVideo::layout(Self& a, Io& io) {
    io.u16(a.version_);
    io.u16(a.revisionLevel_);
    io.u32(a.vendor_);
    io.u32(a.temporalQuality_);
    io.u32(a.spatialQuality_);
    io.u16(a.width_);
    io.u16(a.height_);
    io.template as<wire::odd::RoundedFixed16_16>(a.horizontalResolution_);
    io.template as<wire::odd::RoundedFixed16_16>(a.verticalResolution_);
    io.skip(4); // data size
    io.u16(a.frameCount_);
    wire::odd::CompressorName name;
    if constexpr (Io::kReads) {
        io.template as<wire::odd::CompressorName>(name);
        a.setCompressorName(name.length, name.text);
    } else {
        name.assign(a.compressorName_, a.compressorNameLength_);
        io.template as<wire::odd::CompressorName>(name);
    }
    io.u16(a.depth_);
    io.u16(a.colorTableID_);
}

std::uint64_t STSDVideo::updateSize() { return size_ = kSize; }

int STSDVideo::parse() { return 0; }

QTFrame* STSDVideo::serialize() { return wire::writeBody(*this); }

int STSDVideo::setCompressorName(unsigned int length, unsigned char* name) {
    if (length && !name) return -1;
    const unsigned int kept = std::min(length, 32U);
    unsigned char copy[33] = {}; // the argument may be the name already held
    if (kept) std::memcpy(copy, name, kept);
    std::memcpy(compressorName_, copy, sizeof copy);
    compressorNameLength_ = kept;
    return 0;
}

namespace wire {

void readBody(STSDVideo& video, Reader& in) { Access::layout(video, in); }

} // namespace wire

} // namespace Ketra::QT
