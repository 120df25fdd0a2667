#include <qt/QTAtoms/detail/ChunkRecords.h>
#include <qt/QTAtoms/detail/TableMethods.h>
#include <qt/QTAtoms/samples/STSC.h>
#include <qt/wire/Leaf.h>
#include <qt/wire/Throw.h>

namespace Ketra::QT {

namespace {
constexpr std::uint64_t kEntry = 12;
constexpr std::uint64_t kFixed = 16;
} // namespace

KETRA_TABLE_LIFE(STSC, ChunkRunEntry, "stsc", kFixed)
KETRA_TABLE_METHODS(STSC, STSCData, addSampleToChunk, SampleToChunk, kEntry)
KETRA_TABLE_COUNT(STSC)
KETRA_TABLE_SET_ITERATOR(STSC)

namespace {

/// A chunk needs four bytes of offset table at least, so a file has no more chunks than that.
std::uint64_t mostChunks(QTUtils* utils) {
    constexpr std::uint64_t kMost = std::numeric_limits<unsigned int>::max();
    if (!utils) return kMost;
    constexpr std::uint64_t kUntold = std::uint64_t{1} << 22; // of a stream that does not tell its size
    const std::int64_t told = wire::Access::streamSize(*utils);
    const std::uint64_t stream = told > 0 ? static_cast<std::uint64_t>(told) : kUntold;
    return std::min(kMost, std::max(stream, wire::Access::alternateSize(*utils)) / 4 + 1);
}

} // namespace

template <class Self, class Io>
void STSC::layout(Self& a, Io& io) {
    io.versionAndFlags(a);
    auto& table = *a.table_;
    if constexpr (Io::kReads) {
        unsigned int runs = 0;
        io.u32(runs);
        wire::ChunkRuns& store = table.replaceStore();
        store.clear();
        wire::ChunkExpansion expansion(store, mostChunks(a.getUtils()));
        for (; runs && io.left() >= kEntry; --runs) {
            unsigned int firstChunk = 0;
            unsigned int samplesPerChunk = 0;
            unsigned int descriptionID = 0;
            io.u32(firstChunk);
            io.u32(samplesPerChunk);
            io.u32(descriptionID);
            if (!expansion.add(firstChunk, samplesPerChunk, descriptionID)) break;
        }
        table.declared = static_cast<unsigned int>(store.size());
        table.cursor = 0;
    } else {
        io.u32(wire::writtenRuns(table));
        wire::forEachWrittenRun(table, [&io](const wire::ChunkRun& run) {
            io.u32(run.firstChunk);
            io.u32(run.samplesPerChunk);
            io.u32(run.descriptionID);
        });
    }
}

std::uint64_t STSC::updateSize() { return size_ = kFixed + kEntry * wire::writtenRuns(*table_); }

int STSC::parse() { return wire::parseLeaf(*this); }

QTFrame* STSC::serialize() {
    updateSize();
    if (!table_->consistent()) {
        QT_THROW(wire::area::kAtoms, "Ketra::QT::STSC::serialize", "Wrong number of entries in STSC-table");
    }
    return wire::writeLeaf(*this);
}

STSCData* STSC::getSampleToChunkData(unsigned int index) const { return table_->record(index); }

int STSC::setSampleToChunkTable(const std::vector<STSCData*>& table) {
    table_->replace(table);
    return 0;
}

unsigned int STSC::getIterator() const { return table_->cursor; }

} // namespace Ketra::QT
