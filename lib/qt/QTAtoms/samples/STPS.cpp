#include <qt/QTAtoms/detail/SampleRecords.h>
#include <qt/QTAtoms/detail/TableMethods.h>
#include <qt/QTAtoms/samples/STPS.h>
#include <qt/wire/Leaf.h>
#include <qt/wire/Throw.h>

namespace Ketra::QT {

namespace {
constexpr std::uint64_t kEntry = 4;
constexpr std::uint64_t kFixed = 16;
} // namespace

KETRA_TABLE_LIFE(STPS, SyncEntry, "stps", kFixed)
KETRA_TABLE_METHODS(STPS, STSSData, addSyncSample, SyncSample, kEntry)
KETRA_TABLE_COUNT(STPS)
KETRA_TABLE_SET_ITERATOR(STPS)

template <class Self, class Io>
void STPS::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    io.counted(*a.table_);
}

std::uint64_t STPS::updateSize() { return table_->declared ? kFixed + kEntry * table_->declared : 0; }

int STPS::parse() { return wire::parseLeaf(*this); }

QTFrame* STPS::serialize() {
    if (table_->declared == 0) return nullptr;
    if (!table_->consistent()) {
        QT_THROW(wire::area::kAtoms, "Ketra::QT::STPS::serialize", "Wrong number of entries in STSS-table");
    }
    return wire::writeLeaf(*this);
}

STSSData* STPS::getSyncSampleData(unsigned int index) const {
    return index < table_->declared ? table_->record(index) : nullptr;
}

int STPS::setSyncSampleTable(const std::vector<STSSData*>& table) {
    table_->replace(table);
    return 0;
}

} // namespace Ketra::QT
