// Searching in what rises, beginning where the wanted place probably is.
#pragma once

#include <algorithm>
#include <cstdint>

namespace Ketra::QT::wire {

/// The first index below `count` at which `passes` holds, or `count`; from there on it must hold. Steps that
/// double lead away from the guess, halving does the rest: a good guess touches two or three entries, a bad
/// one costs twice what halving alone does.
template <class Passes>
std::uint64_t firstFrom(std::uint64_t guess, std::uint64_t count, Passes passes) {
    std::uint64_t low = 0; // all before it fail
    std::uint64_t high = count;
    if (guess < count) {
        if (passes(guess)) {
            high = guess;
            for (std::uint64_t step = 1; low < high; step *= 2) {
                const std::uint64_t probe = high - std::min(step, high);
                if (!passes(probe)) {
                    low = probe + 1;
                    break;
                }
                high = probe;
            }
        } else {
            low = guess + 1;
            for (std::uint64_t step = 1; low < high; step *= 2) {
                const std::uint64_t probe = low + std::min(step, high - low) - 1;
                if (passes(probe)) {
                    high = probe;
                    break;
                }
                low = probe + 1;
            }
        }
    }
    while (low < high) {
        const std::uint64_t middle = low + (high - low) / 2;
        if (passes(middle)) {
            high = middle;
        } else {
            low = middle + 1;
        }
    }
    return low;
}

/// The index that stands in for `value` when what begins with `first` and ends with `last` rises evenly.
inline std::uint64_t evenGuess(std::uint64_t value, std::uint64_t first, std::uint64_t last,
                               std::uint64_t count) {
    if (count == 0 || value <= first || last <= first) return 0;
    if (value >= last) return count - 1;
    const double share = static_cast<double>(value - first) / static_cast<double>(last - first);
    return std::min(static_cast<std::uint64_t>(share * static_cast<double>(count - 1)), count - 1);
}

} // namespace Ketra::QT::wire
