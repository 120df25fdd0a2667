#include <qt/QTAtoms/detail/Runs.h>
#include <qt/QTAtoms/detail/TableMethods.h>
#include <qt/QTAtoms/samples/STTS.h>
#include <qt/wire/Leaf.h>
#include <qt/wire/Throw.h>

namespace Ketra::QT {

namespace {
constexpr std::uint64_t kEntry = 8;
constexpr std::uint64_t kFixed = 16;
} // namespace

KETRA_TABLE_LIFE(STTS, TimeToSampleEntry, "stts", kFixed)
KETRA_TABLE_METHODS(STTS, STTSData, addTimeToSample, TimeToSample, kEntry)
KETRA_TABLE_COUNT(STTS)

template <class Self, class Io>
void STTS::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    io.counted(*a.table_);
}

std::uint64_t STTS::updateSize() {
    compact();
    return size_ = kFixed + kEntry * table_->held();
}

int STTS::parse() { return wire::parseLeaf(*this); }

QTFrame* STTS::serialize() {
    const bool consistent = table_->consistent(); // compacting sets the count right, so ask before
    updateSize();
    if (!consistent) {
        QT_THROW(wire::area::kAtoms, "Ketra::QT::STTS::serialize", "Wrong number of entries in STTS-table");
    }
    return wire::writeLeaf(*this);
}

int STTS::compact() {
    wire::compactRuns(*table_);
    return 0;
}

STTSData* STTS::getTimeToSampleData(unsigned int index) const { return table_->record(index); }

int STTS::setTimeToSampleTable(const std::vector<STTSData*>& table) {
    table_->replace(table);
    size_ = kFixed + kEntry * table_->held();
    return 0;
}

unsigned int STTS::setIterator(unsigned int n) {
    table_->setCursor(n);
    return wire::sumOfCounts(*table_, n);
}

unsigned int STTS::getCurrentIndex() const { return table_->cursor; }

unsigned int STTS::getSumOfDurations() const {
    unsigned int sum = 0;
    for (std::uint64_t i = 0; i < table_->counted(); ++i) {
        const wire::Run run = table_->at(i);
        sum += run.count * run.value;
    }
    return sum;
}

unsigned int STTS::getSumOfEntries() const { return wire::sumOfCounts(*table_, table_->counted()); }

} // namespace Ketra::QT
