#include <qt/QTAtoms/systems/MPOD.h>
#include <qt/wire/Leaf.h>

namespace Ketra::QT {

namespace {
constexpr unsigned int kHeader = 8;
constexpr unsigned int kEntry = 4;
} // namespace

MPOD::MPOD() : QTAtom(kHeader, fourCC("mpod")), refs_(new wire::Block) {}

MPOD::MPOD(unsigned int* refs, unsigned int count) : MPOD() { setTrackRefs(refs, count); }

MPOD::MPOD(QTAtom* header) : QTAtom(header), refs_(new wire::Block) {}

MPOD::MPOD(const MPOD& other) : QTAtom(other), refs_(new wire::Block(*other.refs_)) {}

MPOD& MPOD::operator=(const MPOD& other) {
    if (this == &other) return *this;
    QTAtom::operator=(other);
    *refs_ = *other.refs_;
    return *this;
}

MPOD::~MPOD() = default;

template <class Self, class Io>
void MPOD::layout(Self& a, Io& io) {
    io.rest(*a.refs_);
}

int MPOD::parse() {
    if (!utils_ || wire::Access::payloadLength(*this)) return wire::parseLeaf(*this);
    refs_->clear(); // a list of nothing, as it is written when no track is referred to
    return 0;
}

std::uint64_t MPOD::updateSize() { return size_ = wire::leafBytes(*this); }

QTFrame* MPOD::serialize() {
    updateSize();
    return wire::writeLeaf(*this);
}

unsigned int* MPOD::getTrackRefs() const { return reinterpret_cast<unsigned int*>(refs_->data()); }

unsigned int MPOD::getTrackRefCount() const { return static_cast<unsigned int>(refs_->size() / kEntry); }

int MPOD::setTrackRefs(unsigned int* refs, unsigned int count) {
    if (count && !refs) return -1;
    const std::uint64_t bytes = std::uint64_t{count} * kEntry;
    refs_->adopt(reinterpret_cast<unsigned char*>(refs), bytes);
    if (!count) refs_->clear();
    size_ = kHeader + bytes;
    return 0;
}

} // namespace Ketra::QT
