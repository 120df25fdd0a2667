#include <qt/QTAtoms/detail/Descriptors.h>
#include <qt/QTAtoms/systems/ESDS.h>
#include <qt/QTAtoms/systems/ESDescriptor.h>
#include <qt/wire/Held.h>

namespace Ketra::QT {

namespace {

constexpr unsigned int kSize = 12;
constexpr unsigned int kHeader = 8;

constexpr wire::NestedDescriptor kNested[] = {
    {0x03, wire::makeNested<ESDescriptor>},
};

} // namespace

ESDS::ESDS() : QTAtom(kSize, fourCC("esds")), descriptors_(new wire::HeldList<MP4ObjectData>) {}

ESDS::ESDS(QTAtom* header) : QTAtom(header), descriptors_(new wire::HeldList<MP4ObjectData>) {}

ESDS::ESDS(const ESDS& other)
    : QTAtom(other), version_(other.version_), flags_(other.flags_),
      descriptors_(new wire::HeldList<MP4ObjectData>(*other.descriptors_)) {}

ESDS& ESDS::operator=(const ESDS& other) {
    if (this == &other) return *this;
    QTAtom::operator=(other);
    version_ = other.version_;
    flags_ = other.flags_;
    *descriptors_ = *other.descriptors_;
    return *this;
}

ESDS::~ESDS() = default;

template <class Self, class Io>
void ESDS::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    for (auto& nested : wire::readDescriptors(io, kNested)) {
        a.descriptors_->append(std::move(nested));
    }
}

int ESDS::getInfo(unsigned char** cursor) {
    const std::uint64_t bytes = size_ > kHeader ? size_ - kHeader : 0;
    wire::Reader in(*cursor, bytes);
    layout(*this, in);
    *cursor += bytes;
    return 0;
}

std::uint64_t ESDS::updateSize() { return size_ = wire::descriptorAtomSize(descriptors_->items()); }

int ESDS::parse() { return QTAtom::parse(); }

QTFrame* ESDS::serialize() {
    updateSize();
    return wire::writeDescriptorAtom(*this);
}

int ESDS::addDescriptor(MP4ObjectData* descriptor) { return descriptors_->append(descriptor) ? 0 : -1; }

std::vector<MP4ObjectData*> ESDS::getDescriptors() const { return descriptors_->items(); }

MP4ObjectData* ESDS::getDescriptorNumber(unsigned int n) const { return descriptors_->record(n); }

MP4ObjectData* ESDS::getDescriptorTag(unsigned char tag) const {
    return wire::lastOfTag(descriptors_->items(), tag);
}

} // namespace Ketra::QT
