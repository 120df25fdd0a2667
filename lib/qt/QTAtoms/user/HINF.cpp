#include <qt/QTAtoms/detail/DataAtoms.h>
#include <qt/QTAtoms/user/HINF.h>
#include <qt/wire/Access.h>

namespace Ketra::QT {

using DataAtoms = wire::HeldList<QTDataAtom>;
using Description = wire::HeldList<QTFrame>;

HINF::HINF()
    : QTAtom(8, fourCC("hinf")), atoms_(std::make_unique<DataAtoms>()),
      description_(std::make_unique<Description>()) {}

HINF::HINF(QTAtom* header)
    : QTAtom(header), atoms_(std::make_unique<DataAtoms>()), description_(std::make_unique<Description>()) {}

HINF::HINF(const HINF& other)
    : QTAtom(other), atoms_(std::make_unique<DataAtoms>(*other.atoms_)),
      description_(std::make_unique<Description>(*other.description_)) {}

HINF& HINF::operator=(const HINF& other) {
    QTAtom::operator=(other);
    *atoms_ = *other.atoms_;
    *description_ = *other.description_;
    return *this;
}

HINF::~HINF() = default;

std::uint64_t HINF::updateSize() {
    const QTFrame* description = getHintDescription();
    return size_ = 8 + wire::dataAtomBytes(*atoms_) + (description ? description->getDataLength() : 0);
}

int HINF::parse() {
    if (!utils_) return -1;
    atoms_->clear();
    if (wire::Access::payloadLength(*this) == 0) return 0; // a new track has an empty one
    const wire::Payload payload = wire::Access::fetch(*this);
    if (!payload) return -1;
    wire::readDataAtoms(*atoms_, payload.data.get(), payload.delivered);
    return 0;
}

QTFrame* HINF::serialize() {
    wire::FrameList pieces;
    wire::writeDataAtoms(pieces, *atoms_);
    if (const QTFrame* description = getHintDescription()) {
        pieces.push_back(std::make_unique<QTFrame>(*description));
    }
    return wire::joinFrames(*this, static_cast<unsigned int>(size_), pieces);
}

int HINF::addDataAtom(QTDataAtom* atom) {
    if (!atoms_->append(atom)) return -1;
    size_ += atom->getSize();
    return 0;
}

QTDataAtom* HINF::getDataAtom(unsigned int n) const { return atoms_->record(n); }

std::vector<QTDataAtom*> HINF::getDataAtoms() const { return atoms_->records(); }

int HINF::setHintDescription(QTFrame* description) {
    description_->set(description);
    return 0;
}

QTFrame* HINF::getHintDescription() const { return description_->first(); }

} // namespace Ketra::QT
