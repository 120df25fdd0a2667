#include <qt/QTAtom.h>
#include <qt/QTAtoms/detail/Descriptors.h>
#include <qt/QTAtoms/systems/MP4ObjectData.h>
#include <qt/wire/Growth.h>

namespace Ketra::QT {

namespace {

constexpr unsigned int kHead = 5; // tag and size of a descriptor that is written

template <class Codec>
auto take(unsigned char** cursor) {
    const auto value = Codec::read(*cursor);
    *cursor += Codec::width;
    return value;
}

template <class Codec>
int put(unsigned char** cursor, std::uint64_t value) {
    Codec::write(*cursor, value);
    *cursor += Codec::width;
    return 0;
}

/// A descriptor of no class of its own is its size in zeros.
struct Opaque {
    unsigned int size;
    std::vector<MP4ObjectData*> nested;

    std::vector<MP4ObjectData*> getDescriptors() const { return nested; }
    template <class Self, class Io>
    static void layout(Self& a, Io& io) {
        io.skip(a.size);
    }
};

} // namespace

MP4ObjectData::MP4ObjectData() = default;

MP4ObjectData::MP4ObjectData(unsigned int size, unsigned char tag) : size_(size), tag_(tag) {}

MP4ObjectData::~MP4ObjectData() = default;

int MP4ObjectData::getInfo(unsigned char** cursor) {
    *cursor += size_;
    return 0;
}

QTFrame* MP4ObjectData::serialize() {
    const unsigned int nested = nestedSize();
    const Opaque opaque{size_ > nested ? size_ - nested : 0, getDescriptors()};
    return wire::writeDescriptor(opaque, tag_, size_);
}

unsigned int MP4ObjectData::updateSize() { return size_; }

int MP4ObjectData::addDescriptor(MP4ObjectData* descriptor) {
    if (!descriptor || descriptor == this) return -1;
    wire::makeRoomForOne(descriptors_);
    descriptors_.emplace_back(descriptor);
    return 0;
}

std::vector<MP4ObjectData*> MP4ObjectData::getDescriptors() const {
    std::vector<MP4ObjectData*> list;
    list.reserve(descriptors_.size());
    for (const auto& descriptor : descriptors_) {
        list.push_back(descriptor.get());
    }
    return list;
}

MP4ObjectData* MP4ObjectData::getDescriptorNumber(unsigned int n) const {
    return n < descriptors_.size() ? descriptors_[n].get() : nullptr;
}

MP4ObjectData* MP4ObjectData::getDescriptorTag(unsigned char tag) const {
    return wire::lastOfTag(getDescriptors(), tag);
}

unsigned int MP4ObjectData::nestedSize() {
    unsigned int sum = 0;
    for (const auto& descriptor : descriptors_) {
        sum += kHead + descriptor->updateSize();
    }
    return sum;
}

unsigned int MP4ObjectData::nestedStoredSize() const {
    unsigned int sum = 0;
    for (const auto& descriptor : descriptors_) {
        sum += kHead + descriptor->getSize();
    }
    return sum;
}

unsigned int MP4ObjectData::getMP4ObjectSize(unsigned char** cursor, unsigned int* remaining) {
    return QTAtom::getMP4ObjectSize(cursor, remaining);
}

unsigned char MP4ObjectData::getUInt8(unsigned char** cursor) { return take<wire::U8>(cursor); }
unsigned short MP4ObjectData::getUInt16(unsigned char** cursor) { return take<wire::U16>(cursor); }
unsigned int MP4ObjectData::getUInt24(unsigned char** cursor) { return take<wire::U24>(cursor); }
unsigned int MP4ObjectData::getUInt32(unsigned char** cursor) { return take<wire::U32>(cursor); }
int MP4ObjectData::putUInt8(unsigned char** cursor, unsigned char v) { return put<wire::U8>(cursor, v); }
int MP4ObjectData::putUInt16(unsigned char** cursor, unsigned short v) { return put<wire::U16>(cursor, v); }
int MP4ObjectData::putUInt32(unsigned char** cursor, unsigned int v) { return put<wire::U32>(cursor, v); }

} // namespace Ketra::QT
