#include <qt/QTAtoms/detail/Descriptors.h>
#include <qt/QTAtoms/systems/DecoderConfigDescriptor.h>
#include <qt/QTAtoms/systems/DecoderSpecificInfo.h>

namespace Ketra::QT {

namespace {

constexpr unsigned char kTag = 0x04;
constexpr unsigned int kFixed = 13;
constexpr unsigned int kNewSize = 16;

constexpr wire::NestedDescriptor kNested[] = {
    {0x05, wire::makeNested<DecoderSpecificInfo>},
};

} // namespace

DecoderConfigDescriptor::DecoderConfigDescriptor() : DecoderConfigDescriptor(kNewSize, kTag) {}

DecoderConfigDescriptor::DecoderConfigDescriptor(unsigned int size, unsigned char tag)
    : MP4ObjectData(size, tag) {}

DecoderConfigDescriptor::~DecoderConfigDescriptor() = default;

template <class Self, class Io>
void DecoderConfigDescriptor::layout(Self& a, Io& io) {
    io.u8(a.objectTypeIndication_);
    // The reserved bit is set in every descriptor that is written.
    auto bits = static_cast<unsigned char>((a.streamType_ << 2) | (a.upStream_ << 1) | 1);
    io.u8(bits);
    io.template as<wire::U24>(a.bufferSizeDB_);
    io.u32(a.maxBitRate_);
    io.u32(a.avgBitRate_);
    if constexpr (Io::kReads) {
        a.streamType_ = bits >> 2;
        a.upStream_ = (bits >> 1) & 1;
        a.reserved_ = bits & 1;
        for (auto& nested : wire::readDescriptors(io, kNested)) {
            a.addDescriptor(nested.release());
        }
    }
}

int DecoderConfigDescriptor::getInfo(unsigned char** cursor) { return wire::readInfo(*this, cursor); }

QTFrame* DecoderConfigDescriptor::serialize() { return wire::writeDescriptor(*this, tag_, updateSize()); }

unsigned int DecoderConfigDescriptor::updateSize() { return size_ = kFixed + nestedSize(); }

} // namespace Ketra::QT
