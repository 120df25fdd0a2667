// Moving the decode cursor of a run-length table to a sample without walking all entries before it.
//
// Every 64th running sum is kept; a lookup guesses its block, corrects the guess and walks the rest. The sums
// are built by the first lookup and belong to one generation of one packed table: a table that changed gets
// new ones, and a table of objects, whose entries change without anybody being told, is walked from its
// start.
#pragma once

#include <qt/QTAtoms/detail/SampleRecords.h>
#include <qt/wire/Search.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <vector>

namespace Ketra::QT::wire {

/// Steps that the decode cursor of the composition table spends on an entry: the cursor starts in the first
/// one, and every other one that it comes to gives its offset once at least.
inline std::uint64_t decodeSteps(const Run& run, std::uint64_t entry) {
    return entry == 0 ? run.count : std::max<std::uint32_t>(run.count, 1);
}

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
        renew(table);
        Place place = blockOf(steps);
        table.expect(place.entry, kBlock);
        for (; place.entry < held; ++place.entry) {
            const std::uint64_t through = place.before + decodeSteps(table.at(place.entry), place.entry);
            if (through >= steps) return position(place.entry, steps - place.before);
            place.before = through;
        }
        // Past the end the cursor starts over within the last entry.
        const std::uint64_t last = held - 1;
        const Run run = table.at(last);
        const std::uint64_t before = place.before - decodeSteps(run, last);
        return position(last, (steps - before - 1) % std::max<std::uint32_t>(run.count, 1) + 1);
    }

    /// Has what after() would look at on its way, if that is known.
    template <class Table>
    KETRA_QT_INLINED void expect(const Table& table, std::uint64_t steps) const {
        if (steps == 0 || table_ != &table || generation_ != table.generation()) return;
        table.expect(blockOf(steps).entry, kBlock);
    }

private:
    static constexpr std::uint64_t kBlock = 64;
    static constexpr std::uint64_t kAhead = 8; // blocks: memory takes longer than a block's sum

    struct Place {
        std::uint64_t entry;
        std::uint64_t before; // the steps of all entries before it
    };

    static Position position(std::uint64_t entry, std::uint64_t taken) {
        return {static_cast<unsigned int>(entry), static_cast<unsigned int>(taken)};
    }

    /// The start of the block in which the sum reaches `steps`.
    Place blockOf(std::uint64_t steps) const {
        if (sums_.empty()) return {0, 0};
        const std::uint64_t blocks = sums_.size();
        const std::uint64_t guess = evenGuess(steps, 0, sums_.back(), blocks);
        const std::uint64_t behind = firstFrom(
            guess, blocks, [&](std::uint64_t i) { return sums_[static_cast<std::size_t>(i)] >= steps; });
        const std::uint64_t block = behind - 1; // the first sum is 0, which no step count is
        return {block * kBlock, sums_[static_cast<std::size_t>(block)]};
    }

    template <class Table>
    void renew(const Table& table) {
        const bool useful = table.packed() && table.held() > kBlock;
        if (useful && table_ == &table && generation_ == table.generation()) return;
        sums_.clear();
        table_ = nullptr;
        if (!useful) return;
        sums_.reserve(static_cast<std::size_t>(table.held() / kBlock + 1));
        const auto& store = table.store();
        std::uint64_t sum = 0;
        for (std::uint64_t i = 0, held = table.held(); i < held; i += kBlock) {
            sums_.push_back(sum);
            table.expect(i + kAhead * kBlock, kBlock);
            const std::uint64_t end = std::min(i + kBlock, held);
            if (i > 0 && i + kBlock <= store.stored() && addShortRuns(store.bytes(i), sum)) continue;
            for (std::uint64_t k = i; k < end; ++k) {
                sum += decodeSteps(store.at(k), k);
            }
        }
        table_ = &table;
        generation_ = table.generation();
    }
    /// Adds the steps of a whole block without a branch, when every run in it has a length that a byte can
    /// tell and none is empty, as nearly all are: the compiler makes vector instructions of it.
    static bool addShortRuns(const unsigned char* bytes, std::uint64_t& sum) {
        constexpr bool kLittle = std::endian::native == std::endian::little;
        constexpr unsigned int kLowest = kLittle ? 24 : 32; // bits before the lowest byte of the length
        constexpr std::uint64_t kOne = std::uint64_t{1} << kLowest;
        constexpr std::uint64_t kCount = 0xFF * kOne;
        constexpr std::uint64_t kHigher = kLittle ? 0xFFFFFF : 0xFFFFFF0000000000;
        std::uint64_t any = 0;
        std::uint64_t empty = 0; // its highest bit tells
        std::uint64_t steps = 0;
        for (std::uint64_t i = 0; i < kBlock; ++i) {
            std::uint64_t entry = 0;
            std::memcpy(&entry, bytes + i * sizeof entry, sizeof entry);
            const std::uint64_t count = entry & kCount;
            any |= entry;
            empty |= count - kOne;
            steps += count;
        }
        if ((any & kHigher) || empty >> 63) return false;
        sum += steps >> kLowest;
        return true;
    }

    std::vector<std::uint64_t> sums_; // before each block
    const void* table_ = nullptr;
    unsigned int generation_ = 0;
};

} // namespace Ketra::QT::wire
