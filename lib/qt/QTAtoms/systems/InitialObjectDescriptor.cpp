#include <qt/QTAtoms/detail/DescriptorURL.h>
#include <qt/QTAtoms/detail/Descriptors.h>
#include <qt/QTAtoms/systems/ESDescriptor.h>
#include <qt/QTAtoms/systems/ESIDInc.h>
#include <qt/QTAtoms/systems/InitialObjectDescriptor.h>

namespace Ketra::QT {

namespace {

constexpr unsigned char kTag = 0x10;
constexpr unsigned int kFixed = 7;
constexpr unsigned int kFixedWithURL = 3; // and the URL

constexpr wire::NestedDescriptor kNested[] = {
    {0x03, wire::makeNested<ESDescriptor>},
    {0x0E, wire::makeNested<ESIDInc>},
};

} // namespace

InitialObjectDescriptor::InitialObjectDescriptor() : InitialObjectDescriptor(kFixed, kTag) {}

InitialObjectDescriptor::InitialObjectDescriptor(unsigned int size, unsigned char tag)
    : MP4ObjectData(size, tag), url_(new wire::Block) {}

InitialObjectDescriptor::~InitialObjectDescriptor() = default;

template <class Self, class Io>
void InitialObjectDescriptor::layout(Self& a, Io& io) {
    // The reserved bits are set in every descriptor that is written.
    auto bits = static_cast<unsigned short>((a.id_ << 6) | (a.urlFlag_ << 5) |
                                            (a.includeInlineProfileLevelFlag_ << 4) | 0x0F);
    io.u16(bits);
    if constexpr (Io::kReads) {
        a.id_ = bits >> 6;
        a.urlFlag_ = (bits >> 5) & 1;
        a.includeInlineProfileLevelFlag_ = (bits >> 4) & 1;
        a.reserved_ = bits & 0x0F;
    }
    if (a.urlFlag_) {
        wire::urlLayout(*a.url_, io);
        return; // a URL stands for everything else
    }
    io.u8(a.odProfileLevel_);
    io.u8(a.sceneProfileLevel_);
    io.u8(a.audioProfileLevel_);
    io.u8(a.visualProfileLevel_);
    io.u8(a.graphicsProfileLevel_);
    if constexpr (Io::kReads) {
        for (auto& nested : wire::readDescriptors(io, kNested)) {
            a.addDescriptor(nested.release());
        }
    }
}

int InitialObjectDescriptor::getInfo(unsigned char** cursor) { return wire::readInfo(*this, cursor); }

QTFrame* InitialObjectDescriptor::serialize() { return wire::writeDescriptor(*this, kTag, updateSize()); }

unsigned int InitialObjectDescriptor::updateSize() {
    return size_ = (urlFlag_ ? getURLLength() + kFixedWithURL : kFixed) + nestedStoredSize();
}

int InitialObjectDescriptor::setURL(unsigned char* bytes, unsigned char length) {
    return wire::adoptURL(*url_, bytes, length);
}

unsigned char* InitialObjectDescriptor::getURL() const { return url_->data(); }

unsigned char InitialObjectDescriptor::getURLLength() const {
    return static_cast<unsigned char>(url_->size());
}

int InitialObjectDescriptor::addESIDIncReference(unsigned int trackID) {
    return addDescriptor(new ESIDInc(trackID));
}

} // namespace Ketra::QT
