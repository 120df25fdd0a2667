// Moving the decode cursor of a run-length table to a sample without walking all entries before it.
//
// Every 64th running sum is kept; a lookup halves its way to a block and walks the rest. The sums are built
// by the first lookup and belong to one generation of one packed table: a table that changed gets new ones,
// and a table of objects, whose entries change without anybody being told, is walked from its start.
#pragma once

#include <qt/QTAtoms/detail/SampleRecords.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace Ketra::QT::wire {

/// Sums of a run-length table. `Sum` is zero when new, and add(run, index) counts the run at that index in.
template <class Sum>
class SampledSums {
public:
    struct Place {
        std::uint64_t entry; // the entries held when there is no such entry
        Sum before;          // the sum of all entries before it
    };

    /// The first entry whose sum, itself included, has `reached` the goal. `reached` must hold for every
    /// larger sum too.
    template <class Table, class Reached>
    Place firstReaching(const Table& table, Reached reached) {
        renew(table);
        const auto block = std::partition_point(sums_.begin(), sums_.end(),
                                                [&](const Sum& before) { return !reached(before); });
        const auto skipped = block == sums_.begin() ? 0 : block - sums_.begin() - 1;
        Place place = start(static_cast<std::uint64_t>(skipped));
        for (const std::uint64_t held = table.held(); place.entry < held; ++place.entry) {
            Sum through = place.before;
            through.add(table.at(place.entry), place.entry);
            if (reached(through)) break;
            place.before = through;
        }
        return place;
    }
    /// The sum of the first `count` entries.
    template <class Table>
    Sum sumOf(const Table& table, std::uint64_t count) {
        renew(table);
        count = std::min(count, table.held());
        Place place = start(sums_.empty() ? 0 : std::min<std::uint64_t>(count / kBlock, sums_.size() - 1));
        for (; place.entry < count; ++place.entry) {
            place.before.add(table.at(place.entry), place.entry);
        }
        return place.before;
    }

private:
    static constexpr std::uint64_t kBlock = 64;

    template <class Table>
    void renew(const Table& table) {
        const bool useful = table.packed() && table.held() > kBlock;
        if (useful && table_ == &table && generation_ == table.generation()) return;
        sums_.clear();
        table_ = nullptr;
        if (!useful) return;
        sums_.reserve(static_cast<std::size_t>(table.held() / kBlock + 1));
        Sum sum;
        const auto& store = table.store();
        for (std::uint64_t i = 0, held = table.held(); i < held;) {
            sums_.push_back(sum);
            for (const std::uint64_t end = std::min(i + kBlock, held); i < end; ++i) {
                sum.add(store.at(i), i);
            }
        }
        table_ = &table;
        generation_ = table.generation();
    }
    Place start(std::uint64_t block) const {
        return {block * kBlock, sums_.empty() ? Sum() : sums_[static_cast<std::size_t>(block)]};
    }

    std::vector<Sum> sums_; // before each block
    const void* table_ = nullptr;
    unsigned int generation_ = 0;
};

/// Steps that the decode cursor of the composition table spends on each entry: the cursor starts in the first
/// one, and every other one that it comes to gives its offset once at least.
struct DecodeSteps {
    std::uint64_t steps = 0;

    void add(const Run& run, std::uint64_t entry) {
        steps += entry == 0 ? run.count : std::max<std::uint32_t>(run.count, 1);
    }
};

class DecodeIndex {
public:
    struct Position {
        unsigned int entry;
        unsigned int taken; // steps spent on the entry
    };

    /// Where the cursor stands after that many steps from the start.
    template <class Table>
    Position after(const Table& table, std::uint64_t steps) {
        const std::uint64_t held = table.held();
        if (steps == 0 || held == 0) return {0, 0};
        const auto found =
            sums_.firstReaching(table, [steps](const DecodeSteps& sum) { return sum.steps >= steps; });
        if (found.entry < held) return position(found.entry, steps - found.before.steps);
        // Past the end the cursor starts over within the last entry.
        const std::uint64_t last = held - 1;
        const std::uint64_t count = std::max<std::uint32_t>(table.at(last).count, 1);
        const std::uint64_t before = sums_.sumOf(table, last).steps;
        return position(last, (steps - before - 1) % count + 1);
    }

private:
    static Position position(std::uint64_t entry, std::uint64_t taken) {
        return {static_cast<unsigned int>(entry), static_cast<unsigned int>(taken)};
    }

    SampledSums<DecodeSteps> sums_;
};

} // namespace Ketra::QT::wire
