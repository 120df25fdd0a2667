// The arithmetic of stream positions, shared by the streams of the library.
#pragma once

#include <cstdint>
#include <limits>

namespace Ketra::Ferro {

// Where a seek leads: -1 for a place before the start or beyond 64 bits.
constexpr std::int64_t seekTarget(std::int64_t position, std::int64_t offset, bool relative) {
    if (!relative) return offset < 0 ? -1 : offset;
    if (offset > std::numeric_limits<std::int64_t>::max() - position) return -1;
    return position + offset < 0 ? -1 : position + offset;
}

// Whether length bytes at position end within 64 bits.
constexpr bool endsWithin64Bits(std::int64_t position, std::int64_t length) {
    return length <= std::numeric_limits<std::int64_t>::max() - position;
}

} // namespace Ketra::Ferro
