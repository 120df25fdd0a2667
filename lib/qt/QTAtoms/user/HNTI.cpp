#include <qt/QTAtoms/detail/DataAtoms.h>
#include <qt/QTAtoms/user/HNTI.h>
#include <qt/wire/Access.h>

namespace Ketra::QT {

using DataAtoms = wire::HeldList<QTDataAtom>;

HNTI::HNTI() : QTAtom(8, fourCC("hnti")), atoms_(std::make_unique<DataAtoms>()) {}

HNTI::HNTI(QTAtom* header) : QTAtom(header), atoms_(std::make_unique<DataAtoms>()) {}

HNTI::HNTI(const HNTI& other) : QTAtom(other), atoms_(std::make_unique<DataAtoms>(*other.atoms_)) {}

HNTI& HNTI::operator=(const HNTI& other) {
    QTAtom::operator=(other);
    *atoms_ = *other.atoms_;
    return *this;
}

HNTI::~HNTI() = default;

std::uint64_t HNTI::updateSize() { return size_ = 8 + wire::dataAtomBytes(*atoms_); }

int HNTI::parse() {
    if (!utils_) return -1;
    atoms_->clear();
    if (wire::Access::payloadLength(*this) == 0) return 0; // a new track has an empty one
    const wire::Payload payload = wire::Access::fetch(*this);
    if (!payload) return -1;
    wire::readDataAtoms(*atoms_, payload.data.get(), payload.delivered);
    return 0;
}

QTFrame* HNTI::serialize() {
    wire::FrameList pieces;
    wire::writeDataAtoms(pieces, *atoms_);
    return wire::joinFrames(*this, static_cast<unsigned int>(size_), pieces);
}

int HNTI::addDataAtom(QTDataAtom* atom) {
    if (!atoms_->append(atom)) return -1;
    size_ += atom->getSize();
    return 0;
}

QTDataAtom* HNTI::getDataAtom(unsigned int n) const { return atoms_->record(n); }

std::vector<QTDataAtom*> HNTI::getDataAtoms() const { return atoms_->records(); }

} // namespace Ketra::QT
