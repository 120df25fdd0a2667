#include <qt/QTAtoms/detail/Descriptors.h>
#include <qt/QTAtoms/systems/ESIDInc.h>

namespace Ketra::QT {

namespace {
constexpr unsigned char kTag = 0x0E;
constexpr unsigned int kSize = 4;
} // namespace

ESIDInc::ESIDInc(unsigned int trackID) : ESIDInc(kSize, kTag) { trackID_ = trackID; }

ESIDInc::ESIDInc(unsigned int size, unsigned char tag) : MP4ObjectData(size, tag) {}

ESIDInc::~ESIDInc() = default;

template <class Self, class Io>
void ESIDInc::layout(Self& a, Io& io) {
    io.u32(a.trackID_);
}

int ESIDInc::getInfo(unsigned char** cursor) { return wire::readInfo(*this, cursor); }

QTFrame* ESIDInc::serialize() { return wire::writeDescriptor(*this, kTag, kSize); }

unsigned int ESIDInc::updateSize() { return size_; }

} // namespace Ketra::QT
