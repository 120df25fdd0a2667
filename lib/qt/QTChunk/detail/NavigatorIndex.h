// What the cursor remembers of the packed tables so that a seek need not walk them: sums at every 64th entry.
//
// Everything here is built when it is first needed and holds for one generation of a table. A table whose
// records have been handed out as objects may change under us, so it is walked every time instead.
#pragma once

#include <qt/QTAtoms/detail/SampleRecords.h>

#include <cstdint>
#include <vector>

namespace Ketra::QT::wire {

constexpr std::uint64_t kIndexStep = 64;

inline std::uint64_t addSaturated(std::uint64_t a, std::uint64_t b) {
    return b > ~a ? ~std::uint64_t{0} : a + b;
}

/// An entry of a time-to-sample table and what stands before it.
struct TimePoint {
    std::uint64_t entry = 0;
    std::uint64_t samples = 0; // stored samples before the entry
    std::uint64_t ticks = 0;   // time before the entry
};

/// Sums over a time-to-sample table. With a group of g stored samples to a frame, a frame lasts g times the
/// duration of the entry that its first stored sample lies in; with a group of 1 that is the plain sum.
class TimeIndex {
public:
    using Table = EntryTable<TimeToSampleEntry>;

    /// The entry that covers stored sample k (from 0); false when the table ends before it.
    bool locateSample(const Table& table, std::uint32_t group, std::uint64_t k, TimePoint& found);
    /// The first entry that ends at or after x ticks; false when the table ends before that.
    bool locateTicks(const Table& table, std::uint64_t x, TimePoint& found);
    /// Moves a point behind its entry.
    static void pass(TimePoint& point, const Run& run, std::uint32_t group);

private:
    void build(const Table& table, std::uint32_t group);

    std::vector<TimePoint> points_; // before entry 0, 64, 128, ...
    unsigned int generation_ = 0;
    std::uint32_t group_ = 0; // 0: not built
};

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
    std::uint64_t firstAfter(const Table& table, std::uint32_t sample);

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
