// What the cursor remembers of the packed tables so that a seek need not walk them: sums at every 64th entry.
//
// Everything here is built when it is first needed and holds for one generation of a table. A table whose
// records have been handed out as objects may change under us, so it is walked every time instead.
#pragma once

#include <qt/QTAtoms/detail/SampleRecords.h>
#include <qt/QTChunk/detail/TimeIndex.h>

#include <cstdint>
#include <vector>

namespace Ketra::QT::wire {

/// Sums over a table of sample sizes.
class SizeIndex {
public:
    using Table = EntryTable<SampleSizeEntry>;

    /// The bytes of `count` samples from index `first`; past its end the table repeats its last entry.
    std::uint64_t sum(const Table& table, std::uint64_t first, std::uint64_t count);

private:
    std::uint64_t before(const Table& table, std::uint64_t index);

    std::vector<std::uint64_t> sums_; // of the entries before 0, 64, 128, ...
    unsigned int generation_ = 0;
    bool built_ = false;
};

/// Searches in a table of sync samples, which is ascending in any sound file and searched from the front in
/// any other.
class SyncIndex {
public:
    using Table = EntryTable<SyncEntry>;

    std::uint64_t firstAtOrAfter(const Table& table, std::uint32_t sample); ///< index, or the entries held
    /// `near` is an index close to the one looked for, if one is known.
    std::uint64_t firstAfter(const Table& table, std::uint32_t sample, std::uint64_t near = 0);

private:
    bool ascending(const Table& table);

    unsigned int generation_ = 0;
    bool known_ = false;
    bool ascending_ = false;
};

struct NavigatorIndex {
    TimeIndex plainTimes;
    TimeIndex frameTimes;
    SizeIndex sizes;
    SyncIndex sync;
    SyncIndex partialSync;
};

} // namespace Ketra::QT::wire
