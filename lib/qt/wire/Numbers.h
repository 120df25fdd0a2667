// Conversions between floating point and integers that are defined for every input.
#pragma once

#include <cmath>
#include <cstdint>

namespace Ketra::QT::wire {

/// Truncates toward zero. Not-a-number gives 0 and everything else stays within +-2^62, so that sums and
/// shifts of the result cannot overflow; callers take the low bits they store.
inline std::int64_t toInteger(double x) {
    constexpr double kLimit = 4611686018427387904.0; // 2^62
    if (std::isnan(x)) return 0;
    if (x >= kLimit) return std::int64_t{1} << 62;
    if (x <= -kLimit) return -(std::int64_t{1} << 62);
    return static_cast<std::int64_t>(x);
}

inline unsigned int toUnsigned32(double x) { return static_cast<unsigned int>(toInteger(x)); }

/// Ticks of a time scale as seconds; a scale of 0 has no seconds.
inline double toSeconds(double units, unsigned int scale) { return scale ? units / scale : 0.0; }

} // namespace Ketra::QT::wire
