#include <qt/QTAtoms/detail/Descriptions.h>
#include <qt/QTAtoms/entries/STSDAudio.h>
#include <qt/wire/Body.h>
#include <qt/wire/Reader.h>

#include <algorithm>

namespace Ketra::QT {

namespace {

constexpr unsigned int kNewSize = 36;
constexpr unsigned int kWideSize = 56;
constexpr unsigned int kEntryHeader = 16;

/// The sound fields that all versions have. A wide description holds constants there, so that a reader that
/// does not know its version takes it for something harmless.
struct Common {
    unsigned short channels = 3;
    unsigned short sampleSize = 16;
    unsigned short compressionID = 0xFFFE;
    unsigned short packetSize = 0;
    float sampleRate = 1;

    template <class Self, class Io>
    static void layout(Self& a, Io& io) {
        io.u16(a.channels);
        io.u16(a.sampleSize);
        io.u16(a.compressionID);
        io.u16(a.packetSize);
        io.template as<wire::odd::RoundedFixed16_16>(a.sampleRate);
    }
};

/// What only a wide description (version 2) has.
struct Wide {
    unsigned int descriptionLength = 0; // entry header included
    double sampleRate = 0;
    unsigned int channels = 0;
    unsigned int marker = 0x7F000000;
    unsigned int bitsPerChannel = 0;
    unsigned int formatFlags = 0;
    unsigned int bytesPerPacket = 0;
    unsigned int framesPerPacket = 0;

    template <class Self, class Io>
    static void layout(Self& a, Io& io) {
        io.u32(a.descriptionLength);
        io.template as<wire::F64>(a.sampleRate);
        io.u32(a.channels);
        io.u32(a.marker);
        io.u32(a.bitsPerChannel);
        io.u32(a.formatFlags);
        io.u32(a.bytesPerPacket);
        io.u32(a.framesPerPacket);
    }
};

} // namespace

STSDAudio::STSDAudio() : QTAtom(kNewSize, 0) {}

STSDAudio::STSDAudio(QTAtom* header) : QTAtom(header) {}

STSDAudio::~STSDAudio() = default;

template <class Self, class Io>
void STSDAudio::layout(Self& a, Io& io) {
    io.u16(a.version_);
    io.u16(a.revisionLevel_);
    io.u32(a.vendor_);
    // Versions above 2 are written like 2 but read like 0.
    const bool wide = Io::kReads ? a.version_ == 2 : a.version_ >= 2;
    Common common;
    if constexpr (Io::kReads) {
        Common::layout(common, io);
        a.channels_ = common.channels;
        a.sampleSize_ = common.sampleSize;
        a.compressionID_ = common.compressionID;
        a.packetSize_ = common.packetSize;
        a.sampleRate_ = static_cast<double>(common.sampleRate);
    } else {
        if (!wide) {
            common = {static_cast<unsigned short>(a.channels_), a.sampleSize_, a.compressionID_,
                      a.packetSize_, a.getSampleRate()};
        }
        Common::layout(common, io);
    }
    if (a.version_ == 1) {
        io.u32(a.samplesPerPacket_);
        io.u32(a.bytesPerPacket_);
        io.u32(a.bytesPerFrame_);
        io.u32(a.bytesPerSample_);
    }
    if (!wide) return;
    Wide rest;
    if constexpr (Io::kReads) {
        Wide::layout(rest, io);
        a.sampleRate_ = rest.sampleRate;
        a.channels_ = rest.channels;
        a.sampleSize_ = static_cast<unsigned short>(rest.bitsPerChannel);
        a.formatSpecificFlags_ = static_cast<int>(rest.formatFlags);
        a.bytesPerPacket_ = rest.bytesPerPacket;
        a.samplesPerPacket_ = rest.framesPerPacket;
    } else {
        rest.descriptionLength = std::max(static_cast<unsigned int>(a.getSize()), kWideSize) + kEntryHeader;
        rest.sampleRate = a.sampleRate_;
        rest.channels = a.channels_;
        if (a.formatSpecificFlags_ < 0) {
            rest.bitsPerChannel = a.bytesPerSample_ * 8;
            rest.formatFlags = static_cast<unsigned int>(a.formatSpecificFlags_) & 0xFF;
            rest.bytesPerPacket = a.channels_ * a.bytesPerSample_;
            rest.framesPerPacket = 1;
        }
        Wide::layout(rest, io);
    }
}

std::uint64_t STSDAudio::updateSize() { return size_; }

int STSDAudio::parse() { return 0; }

QTFrame* STSDAudio::serialize() { return wire::writeBody(*this); }

namespace wire {

double readBody(STSDAudio& audio, Reader& in) {
    Access::layout(audio, in);
    return Access::sampleRate(audio);
}

} // namespace wire

} // namespace Ketra::QT
