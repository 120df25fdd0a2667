#include <qt/QTChunk/detail/NavigatorIndex.h>
#include <qt/wire/Search.h>

#include <algorithm>

namespace Ketra::QT::wire {

std::uint64_t SizeIndex::before(const Table& table, std::uint64_t index) {
    std::uint64_t sum = sums_[static_cast<std::size_t>(index / kIndexStep)];
    for (std::uint64_t i = index / kIndexStep * kIndexStep; i < index; ++i) {
        sum += table.at(i);
    }
    return sum;
}

std::uint64_t SizeIndex::sum(const Table& table, std::uint64_t first, std::uint64_t count) {
    const std::uint64_t held = table.held();
    if (held == 0 || count == 0) return 0;
    const std::uint64_t begin = std::min(first, held);
    const std::uint64_t end = begin + std::min(count, held - begin);
    const std::uint64_t repeated = (count - (end - begin)) * table.at(held - 1);
    std::uint64_t sum = 0;
    if (end - begin <= 4 * kIndexStep || !table.packed()) {
        for (std::uint64_t i = begin; i < end; ++i) {
            sum += table.at(i);
        }
        return sum + repeated;
    }
    if (!built_ || generation_ != table.generation()) {
        sums_.clear();
        for (std::uint64_t i = 0; i < held; ++i) {
            if (i % kIndexStep == 0) sums_.push_back(sum);
            sum += table.at(i);
        }
        if (held % kIndexStep == 0) sums_.push_back(sum);
        generation_ = table.generation();
        built_ = true;
    }
    return before(table, end) - before(table, begin) + repeated;
}

bool SyncIndex::ascending(const Table& table) {
    if (!table.packed()) return false;
    if (known_ && generation_ == table.generation()) return ascending_;
    ascending_ = true;
    std::uint32_t last = 0;
    for (std::uint64_t i = 0; i < table.held() && ascending_; ++i) {
        const std::uint32_t sample = table.store().at(i);
        ascending_ = sample >= last;
        last = sample;
    }
    generation_ = table.generation();
    known_ = true;
    return ascending_;
}

namespace {

template <class Passes>
std::uint64_t walkTo(std::uint64_t count, Passes passes) {
    std::uint64_t i = 0;
    while (i < count && !passes(i)) {
        ++i;
    }
    return i;
}

} // namespace

std::uint64_t SyncIndex::firstAtOrAfter(const Table& table, std::uint32_t sample) {
    const auto passes = [&](std::uint64_t i) { return table.at(i) >= sample; };
    const std::uint64_t held = table.held();
    if (held == 0 || !ascending(table)) return walkTo(held, passes);
    return firstFrom(evenGuess(sample, table.at(0), table.at(held - 1), held), held, passes);
}

std::uint64_t SyncIndex::firstAfter(const Table& table, std::uint32_t sample, std::uint64_t near) {
    const auto passes = [&](std::uint64_t i) { return table.at(i) > sample; };
    const std::uint64_t held = table.held();
    return ascending(table) ? firstFrom(near, held, passes) : walkTo(held, passes);
}

} // namespace Ketra::QT::wire
