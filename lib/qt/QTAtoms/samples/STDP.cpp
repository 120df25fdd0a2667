#include <qt/QTAtoms/detail/SampleRecords.h>
#include <qt/QTAtoms/detail/TableMethods.h>
#include <qt/QTAtoms/samples/STDP.h>
#include <qt/wire/Leaf.h>
#include <qt/wire/Throw.h>

namespace Ketra::QT {

namespace {
constexpr std::uint64_t kEntry = 2;
constexpr std::uint64_t kFixed = 16;
} // namespace

KETRA_TABLE_LIFE(STDP, PriorityEntry, "stdp", kFixed)
KETRA_TABLE_METHODS(STDP, STDPData, addDegradationPriority, DegradationPriority, kEntry)
KETRA_TABLE_COUNT(STDP)
KETRA_TABLE_SET_ITERATOR(STDP)

template <class Self, class Io>
void STDP::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    if constexpr (Io::kReads) {
        // Priorities fill the atom; the count field stays what it was.
        io.entries(*a.table_, io.left() / kEntry);
        a.table_->cursor = 0;
    } else {
        io.entries(*a.table_, a.table_->held());
        io.skip(4); // padding that the size has always counted
    }
}

std::uint64_t STDP::updateSize() { return size_ = kFixed + kEntry * table_->held(); }

int STDP::parse() { return wire::parseLeaf(*this); }

QTFrame* STDP::serialize() {
    if (!table_->consistent()) {
        QT_THROW(wire::area::kAtoms, "Ketra::QT::STDP::serialize", "Wrong number of entries in STDP-table");
    }
    return wire::writeLeaf(*this);
}

STDPData* STDP::getDegradationPriorityData(unsigned int index) const { return table_->record(index); }

int STDP::setDegradationPriorityTable(const std::vector<STDPData*>& table) {
    table_->replace(table);
    updateSize();
    return 0;
}

} // namespace Ketra::QT
