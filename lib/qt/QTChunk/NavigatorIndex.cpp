#include <qt/QTChunk/detail/NavigatorIndex.h>

#include <algorithm>

namespace Ketra::QT::wire {

void TimeIndex::pass(TimePoint& point, const Run& run, std::uint32_t group) {
    const std::uint64_t end = point.samples + run.count;
    const std::uint64_t frames = (end + group - 1) / group - (point.samples + group - 1) / group;
    const std::uint64_t perFrame = static_cast<std::uint64_t>(run.value) * group;
    const bool fits = frames == 0 || perFrame <= ~std::uint64_t{0} / frames;
    point.ticks = addSaturated(point.ticks, fits ? frames * perFrame : ~std::uint64_t{0});
    point.samples = end;
    ++point.entry;
}

void TimeIndex::build(const Table& table, std::uint32_t group) {
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

bool TimeIndex::locateSample(const Table& table, std::uint32_t group, std::uint64_t k, TimePoint& found) {
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

bool TimeIndex::locateTicks(const Table& table, std::uint64_t x, TimePoint& found) {
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

/// The first index at which `passes` holds; by halving when it stays true from there on.
template <class Passes>
std::uint64_t firstWhere(std::uint64_t count, bool monotonic, Passes passes) {
    if (!monotonic) {
        std::uint64_t i = 0;
        while (i < count && !passes(i)) {
            ++i;
        }
        return i;
    }
    std::uint64_t low = 0;
    while (low < count) {
        const std::uint64_t middle = low + (count - low) / 2;
        if (passes(middle)) {
            count = middle;
        } else {
            low = middle + 1;
        }
    }
    return low;
}

} // namespace

std::uint64_t SyncIndex::firstAtOrAfter(const Table& table, std::uint32_t sample) {
    return firstWhere(table.held(), ascending(table), [&](std::uint64_t i) { return table.at(i) >= sample; });
}

std::uint64_t SyncIndex::firstAfter(const Table& table, std::uint32_t sample) {
    return firstWhere(table.held(), ascending(table), [&](std::uint64_t i) { return table.at(i) > sample; });
}

} // namespace Ketra::QT::wire
