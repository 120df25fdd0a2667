#include <qt/QTAtoms/detail/EditRecords.h>
#include <qt/QTAtoms/detail/TableMethods.h>
#include <qt/QTAtoms/track/ELST.h>
#include <qt/wire/Leaf.h>
#include <qt/wire/Throw.h>

namespace Ketra::QT {

namespace {
constexpr std::uint64_t kEntry = 12;
constexpr std::uint64_t kFixed = 16;
} // namespace

KETRA_TABLE_LIFE(ELST, EditEntry, "elst", kFixed)
KETRA_TABLE_METHODS(ELST, ELSTData, addEditListEntry, EditList, kEntry)
KETRA_TABLE_COUNT(ELST)
KETRA_TABLE_SET_ITERATOR(ELST)

template <class Self, class Io>
void ELST::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    io.counted(*a.table_);
}

std::uint64_t ELST::updateSize() { return size_ = kFixed + kEntry * table_->held(); }

int ELST::parse() { return wire::parseLeaf(*this); }

QTFrame* ELST::serialize() {
    if (!table_->consistent()) {
        QT_THROW(wire::area::kAtoms, "Ketra::QT::ELST::serialize", "Wrong number of entries in ELST-table");
    }
    return wire::writeLeaf(*this);
}

ELSTData* ELST::getEditListData(unsigned int index) const { return table_->record(index); }

int ELST::setEditListTable(const std::vector<ELSTData*>& table) {
    table_->replace(table);
    updateSize();
    return 0;
}

} // namespace Ketra::QT
