#include <qt/QTAtoms/detail/DescriptorURL.h>
#include <qt/QTAtoms/detail/Descriptors.h>
#include <qt/QTAtoms/systems/DecoderConfigDescriptor.h>
#include <qt/QTAtoms/systems/ESDescriptor.h>
#include <qt/QTAtoms/systems/SLConfigDescriptor.h>

namespace Ketra::QT {

namespace {

constexpr unsigned char kTag = 0x03;
constexpr unsigned int kFixed = 3;

constexpr wire::NestedDescriptor kNested[] = {
    {0x04, wire::makeNested<DecoderConfigDescriptor>},
    {0x06, wire::makeNested<SLConfigDescriptor>},
};

} // namespace

ESDescriptor::ESDescriptor() : ESDescriptor(kFixed, kTag) {}

ESDescriptor::ESDescriptor(unsigned int size, unsigned char tag)
    : MP4ObjectData(size, tag), url_(new wire::Block) {}

ESDescriptor::~ESDescriptor() = default;

template <class Self, class Io>
void ESDescriptor::layout(Self& a, Io& io) {
    io.u16(a.esID_);
    auto bits = static_cast<unsigned char>((a.streamDependenceFlag_ << 7) | (a.urlFlag_ << 6) |
                                           (a.ocrStreamFlag_ << 5) | a.streamPriority_);
    io.u8(bits);
    if constexpr (Io::kReads) {
        a.streamDependenceFlag_ = bits >> 7;
        a.urlFlag_ = (bits >> 6) & 1;
        a.ocrStreamFlag_ = (bits >> 5) & 1;
        a.streamPriority_ = bits & 0x1F;
    }
    if (a.streamDependenceFlag_) io.u16(a.dependsOnESID_);
    if (a.urlFlag_) wire::urlLayout(*a.url_, io);
    if (a.ocrStreamFlag_) io.u16(a.ocrESID_);
    if constexpr (Io::kReads) {
        for (auto& nested : wire::readDescriptors(io, kNested)) {
            a.addDescriptor(nested.release());
        }
    }
}

int ESDescriptor::getInfo(unsigned char** cursor) { return wire::readInfo(*this, cursor); }

QTFrame* ESDescriptor::serialize() {
    updateSize();
    return wire::writeDescriptor(*this, tag_, size_, urlFlag_ ? 1 : 0);
}

unsigned int ESDescriptor::updateSize() {
    size_ = kFixed + (streamDependenceFlag_ ? 2 : 0) + (ocrStreamFlag_ ? 2 : 0);
    if (urlFlag_) size_ += getURLLength();
    return size_ += nestedSize();
}

int ESDescriptor::setURL(unsigned char* bytes, unsigned char length) {
    return wire::adoptURL(*url_, bytes, length);
}

unsigned char* ESDescriptor::getURL() const { return url_->data(); }

unsigned char ESDescriptor::getURLLength() const { return static_cast<unsigned char>(url_->size()); }

} // namespace Ketra::QT
