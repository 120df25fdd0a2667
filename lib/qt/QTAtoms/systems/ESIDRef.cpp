#include <qt/QTAtoms/detail/Descriptors.h>
#include <qt/QTAtoms/systems/ESIDRef.h>

namespace Ketra::QT {

namespace {
constexpr unsigned char kTag = 0x0F;
constexpr unsigned int kSize = 2;
} // namespace

ESIDRef::ESIDRef(unsigned int esid) : ESIDRef(kSize, kTag) { esid_ = esid; }

ESIDRef::ESIDRef(unsigned int size, unsigned char tag) : MP4ObjectData(size, tag) {}

ESIDRef::~ESIDRef() = default;

template <class Self, class Io>
void ESIDRef::layout(Self& a, Io& io) {
    io.u16(a.esid_);
}

int ESIDRef::getInfo(unsigned char** cursor) { return wire::readInfo(*this, cursor); }

QTFrame* ESIDRef::serialize() { return wire::writeDescriptor(*this, kTag, kSize); }

unsigned int ESIDRef::updateSize() { return size_; }

} // namespace Ketra::QT
