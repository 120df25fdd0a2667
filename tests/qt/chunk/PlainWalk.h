// The rules of reading, as plain walks over plain tables: slow, and easy to check by eye.
#pragma once

#include "support/MovieBytes.h"

#include <cstdint>
#include <vector>

namespace test {

/// Where sample n (from 1) of a track with one stored sample a frame is, by walking from the front.
struct PlainSample {
    bool found = false;
    std::uint32_t chunk = 0;
    std::uint64_t offset = 0;
    std::uint32_t size = 0;
    std::uint64_t decodeTicks = 0;
    std::int32_t compositionOffset = 0;
    std::uint32_t duration = 0;
    bool key = true;
};

PlainSample plainWalk(const TrackSpec& track, std::uint32_t n, std::uint64_t mediaStart);

} // namespace test
