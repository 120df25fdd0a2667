#include <qt/QTAtoms/detail/Descriptors.h>
#include <qt/QTAtoms/systems/SLConfigDescriptor.h>

namespace Ketra::QT {

namespace {
constexpr unsigned char kTag = 0x06;
} // namespace

SLConfigDescriptor::SLConfigDescriptor(unsigned char predefined) : SLConfigDescriptor(1U, kTag) {
    predefined_ = predefined;
}

SLConfigDescriptor::SLConfigDescriptor(unsigned int size, unsigned char tag) : MP4ObjectData(size, tag) {}

SLConfigDescriptor::~SLConfigDescriptor() = default;

template <class Self, class Io>
void SLConfigDescriptor::layout(Self& a, Io& io) {
    io.u8(a.predefined_);
    if (a.size_ > 1) io.skip(a.size_ - 1);
}

int SLConfigDescriptor::getInfo(unsigned char** cursor) { return wire::readInfo(*this, cursor); }

QTFrame* SLConfigDescriptor::serialize() { return wire::writeDescriptor(*this, tag_, size_); }

unsigned int SLConfigDescriptor::updateSize() { return size_; }

} // namespace Ketra::QT
