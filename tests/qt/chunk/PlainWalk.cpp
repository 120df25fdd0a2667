#include "qt/chunk/PlainWalk.h"

#include <algorithm>

namespace test {

PlainSample plainWalk(const TrackSpec& track, std::uint32_t n, std::uint64_t mediaStart) {
    PlainSample s;
    // time: one step a sample, entries that are used up are passed
    std::size_t entry = 0;
    std::uint32_t used = 0;
    const auto settle = [&] {
        while (entry < track.stts.size() && used >= track.stts[entry].first) {
            ++entry;
            used = 0;
        }
        return entry < track.stts.size();
    };
    for (std::uint32_t i = 1; i < n; ++i) {
        if (!settle()) return s;
        s.decodeTicks += track.stts[entry].second;
        ++used;
    }
    if (!settle()) return s;
    s.duration = track.stts[entry].second;
    // composition: n steps of the cursor
    if (!track.ctts.empty()) {
        std::size_t index = 0;
        std::uint32_t counter = 0;
        for (std::uint32_t i = 0; i < n; ++i) {
            if (counter < track.ctts[index].first) {
                ++counter;
            } else {
                counter = 1;
                if (++index >= track.ctts.size()) index = track.ctts.size() - 1;
            }
            s.compositionOffset = static_cast<std::int32_t>(track.ctts[index].second);
        }
    }
    // bytes: chunk by chunk, sample by sample
    std::uint64_t position = mediaStart;
    std::uint32_t sample = 0;
    for (std::size_t chunk = 0; chunk < track.chunks.size(); ++chunk) {
        for (std::uint32_t k = 0; k < track.chunks[chunk]; ++k, ++sample) {
            if (sample + 1 == n) {
                s.found = n <= track.sampleCount();
                s.chunk = static_cast<std::uint32_t>(chunk + 1);
                s.offset = position;
                s.size = track.sizeOf(sample);
            }
            position += track.sizeOf(sample);
        }
    }
    if (track.hasSync || !track.sync.empty()) {
        s.key = std::find(track.sync.begin(), track.sync.end(), n) != track.sync.end();
    }
    return s;
}

} // namespace test
