#include <qt/QTAtoms/detail/DescriptorURL.h>
#include <qt/QTAtoms/detail/Descriptors.h>
#include <qt/QTAtoms/systems/ESIDRef.h>
#include <qt/QTAtoms/systems/ObjectDescriptor.h>

namespace Ketra::QT {

namespace {

constexpr unsigned char kTag = 0x11;
constexpr unsigned int kFixed = 2;
constexpr unsigned int kFixedWithURL = 3; // and the URL

// References are written with tag 0x0F, so that a descriptor written here is read back without them.
constexpr wire::NestedDescriptor kNested[] = {
    {0x11, wire::makeNested<ESIDRef>},
};

} // namespace

ObjectDescriptor::ObjectDescriptor() : ObjectDescriptor(kFixed, kTag) {}

ObjectDescriptor::ObjectDescriptor(unsigned int size, unsigned char tag)
    : MP4ObjectData(size, tag), url_(new wire::Block) {}

ObjectDescriptor::~ObjectDescriptor() = default;

template <class Self, class Io>
void ObjectDescriptor::layout(Self& a, Io& io) {
    auto bits = static_cast<unsigned short>((a.id_ << 6) | (a.urlFlag_ << 5) | 0x1F);
    io.u16(bits);
    if constexpr (Io::kReads) {
        a.id_ = bits >> 6;
        a.urlFlag_ = (bits >> 5) & 1;
        a.reserved_ = bits & 0x1F;
    }
    if (a.urlFlag_) {
        wire::urlLayout(*a.url_, io);
        return; // a URL stands for everything else
    }
    if constexpr (Io::kReads) {
        for (auto& nested : wire::readDescriptors(io, kNested)) {
            a.addDescriptor(nested.release());
        }
    }
}

int ObjectDescriptor::getInfo(unsigned char** cursor) { return wire::readInfo(*this, cursor); }

QTFrame* ObjectDescriptor::serialize() { return wire::writeDescriptor(*this, kTag, updateSize()); }

unsigned int ObjectDescriptor::updateSize() {
    return size_ = (urlFlag_ ? getURLLength() + kFixedWithURL : kFixed) + nestedStoredSize();
}

int ObjectDescriptor::setURL(unsigned char* bytes, unsigned char length) {
    return wire::adoptURL(*url_, bytes, length);
}

unsigned char* ObjectDescriptor::getURL() const { return url_->data(); }

unsigned char ObjectDescriptor::getURLLength() const { return static_cast<unsigned char>(url_->size()); }

int ObjectDescriptor::addESIDRefReference(unsigned int esid) { return addDescriptor(new ESIDRef(esid)); }

} // namespace Ketra::QT
