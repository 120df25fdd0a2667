// Blocks as the library wants them, and the fields that RTP hints are made of.
#pragma once

#include "Packetizer.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace Ketra::Tool {

constexpr unsigned short kExtraData = 4; ///< flag of a packet entry
constexpr unsigned int kExtraSize = 16;  ///< total length, then one entry with the offset of the timestamp

/// A block that the library can adopt.
inline unsigned char* mallocCopy(const unsigned char* bytes, std::size_t size) {
    auto* block = static_cast<unsigned char*>(std::malloc(size ? size : 1));
    if (!block) throw std::bad_alloc();
    if (size) std::memcpy(block, bytes, size);
    return block;
}

inline void store32(unsigned char* at, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        *at++ = static_cast<unsigned char>(value >> shift);
    }
}

inline std::uint32_t load32(const unsigned char* at) {
    return static_cast<std::uint32_t>(at[0]) << 24 | static_cast<std::uint32_t>(at[1]) << 16 |
           static_cast<std::uint32_t>(at[2]) << 8 | at[3];
}

} // namespace Ketra::Tool
