// Finding a sample or a time in a time-to-sample table: sums at every 64th entry, built when first needed.
#pragma once

#include <qt/QTAtoms/detail/SampleRecords.h>

#include <algorithm>
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

inline void TimeIndex::pass(TimePoint& point, const Run& run, std::uint32_t group) {
    const std::uint64_t end = point.samples + run.count;
    if (group == 1) { // the most of all tables, and nothing to divide
        point = {point.entry + 1, end, addSaturated(point.ticks, std::uint64_t{run.count} * run.value)};
        return;
    }
    const std::uint64_t frames = (end + group - 1) / group - (point.samples + group - 1) / group;
    const std::uint64_t perFrame = static_cast<std::uint64_t>(run.value) * group;
    const bool fits = frames == 0 || perFrame <= ~std::uint64_t{0} / frames;
    point.ticks = addSaturated(point.ticks, fits ? frames * perFrame : ~std::uint64_t{0});
    point.samples = end;
    ++point.entry;
}

inline void TimeIndex::build(const Table& table, std::uint32_t group) {
    if (group_ == group && generation_ == table.generation() && table.packed()) return;
    points_.clear();
    group_ = group;
    generation_ = table.generation();
    TimePoint point;
    points_.push_back(point);
    if (!table.packed()) {
        group_ = 0; // walked from the front this time, and asked again the next
        return;
    }
    const std::uint64_t held = table.held();
    for (std::uint64_t i = 0; i < held; ++i) {
        pass(point, table.store().at(i), group);
        if (point.entry % kIndexStep == 0) points_.push_back(point);
    }
}

inline bool TimeIndex::locateSample(const Table& table, std::uint32_t group, std::uint64_t k,
                                    TimePoint& found) {
    build(table, group);
    const auto after =
        std::upper_bound(points_.begin(), points_.end(), k,
                         [](std::uint64_t sample, const TimePoint& p) { return sample < p.samples; });
    TimePoint point = *(after - 1); // the first point stands before sample 0
    for (const std::uint64_t held = table.held(); point.entry < held;) {
        const Run run = table.at(point.entry);
        if (k < point.samples + run.count) {
            found = point;
            return true;
        }
        pass(point, run, group);
    }
    return false;
}

inline bool TimeIndex::locateTicks(const Table& table, std::uint64_t x, TimePoint& found) {
    build(table, 1);
    auto from = std::lower_bound(points_.begin(), points_.end(), x,
                                 [](const TimePoint& p, std::uint64_t ticks) { return p.ticks < ticks; });
    if (from != points_.begin()) --from;
    TimePoint point = *from;
    for (const std::uint64_t held = table.held(); point.entry < held;) {
        TimePoint behind = point;
        pass(behind, table.at(point.entry), 1);
        if (x <= behind.ticks) {
            found = point;
            return true;
        }
        point = behind;
    }
    return false;
}

} // namespace Ketra::QT::wire
