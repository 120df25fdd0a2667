// Run-length tables: merging neighbours and summing.
#pragma once

#include <qt/QTAtoms/detail/SampleRecords.h>

namespace Ketra::QT::wire {

/// Merges neighbouring runs of equal value and sets the count; an empty table is left alone.
template <class Layout>
void compactRuns(EntryTable<Layout>& table) {
    if (table.held() == 0) return;
    if (!table.merged())
        table.mergeNeighbours([](Run& last, const Run& next) {
            if (last.value != next.value) return false;
            last.count += next.count;
            return true;
        });
    table.declared = static_cast<unsigned int>(table.held());
}

/// The samples of the first `entries` runs, modulo 2^32 like every sum over this table.
template <class Layout>
unsigned int sumOfCounts(const EntryTable<Layout>& table, std::uint64_t entries) {
    unsigned int sum = 0;
    for (std::uint64_t i = 0; i < std::min(entries, table.held()); ++i) {
        sum += table.at(i).count;
    }
    return sum;
}

} // namespace Ketra::QT::wire
