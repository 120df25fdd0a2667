#include <qt/QTAtoms/detail/Descriptors.h>
#include <qt/QTAtoms/movie/IODS.h>
#include <qt/wire/Held.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

namespace {

constexpr unsigned int kSize = 12;
constexpr unsigned char kWrittenTag = 0x10;

constexpr wire::NestedDescriptor kNested[] = {
    {0x02, wire::makeNested<InitialObjectDescriptor>},
    {kWrittenTag, wire::makeNested<InitialObjectDescriptor>},
};

} // namespace

IODS::IODS() : QTAtom(kSize, fourCC("iods")), descriptors_(new wire::HeldList<MP4ObjectData>) {
    auto descriptor = std::make_unique<InitialObjectDescriptor>();
    descriptor->setID(1);
    descriptors_->append(std::move(descriptor));
}

IODS::IODS(QTAtom* header) : QTAtom(header), descriptors_(new wire::HeldList<MP4ObjectData>) {}

IODS::IODS(const IODS& other)
    : QTAtom(other), version_(other.version_), flags_(other.flags_),
      descriptors_(new wire::HeldList<MP4ObjectData>(*other.descriptors_)) {}

IODS& IODS::operator=(const IODS& other) {
    if (this == &other) return *this;
    QTAtom::operator=(other);
    version_ = other.version_;
    flags_ = other.flags_;
    *descriptors_ = *other.descriptors_;
    return *this;
}

IODS::~IODS() = default;

template <class Self, class Io>
void IODS::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    for (auto& nested : wire::readDescriptors(io, kNested)) {
        a.descriptors_->append(std::move(nested));
    }
}

std::uint64_t IODS::updateSize() { return size_ = wire::descriptorAtomSize(descriptors_->items()); }

int IODS::parse() { return wire::parseLeaf(*this); }

QTFrame* IODS::serialize() {
    updateSize();
    return wire::writeDescriptorAtom(*this);
}

int IODS::addDescriptor(MP4ObjectData* descriptor) { return descriptors_->append(descriptor) ? 0 : -1; }

std::vector<MP4ObjectData*> IODS::getDescriptors() const { return descriptors_->items(); }

MP4ObjectData* IODS::getDescriptor(unsigned int n) const { return descriptors_->record(n); }

InitialObjectDescriptor* IODS::getInitialObjectDescriptor() const {
    for (MP4ObjectData* descriptor : descriptors_->items()) {
        if (descriptor->getTag() != kWrittenTag) continue;
        if (auto* initial = dynamic_cast<InitialObjectDescriptor*>(descriptor)) return initial;
    }
    return nullptr;
}

} // namespace Ketra::QT
