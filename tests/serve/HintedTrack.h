// What a server makes of a hint track: a reader of its own, which shares nothing with what builds the hints.
#pragma once

#include <qt/QTMovie.h>
#include <qt/QTTrack.h>

#include <cstdint>
#include <string>
#include <vector>

namespace serve {

/// A packet as it goes over the wire, header included.
struct TimedPacket {
    double sendAt = 0; ///< seconds from the beginning of the movie
    std::vector<unsigned char> bytes;
};

struct HintedTrack {
    unsigned int id = 0;
    unsigned int clockRate = 0;    ///< of the timestamps
    std::uint64_t sampleBytes = 0; ///< all hint samples
    std::uint64_t samples = 0;
    unsigned int largestPayload = 0;
    std::vector<TimedPacket> packets;
    std::vector<std::string> problems; ///< what a server would stumble over

    static constexpr unsigned int kTimestampBase = 0x10000000; ///< added to all timestamps
};

/// Everything the track says, payloads gathered by reference.
HintedTrack readHints(Ketra::QT::QTMovie& movie, Ketra::QT::QTTrack& track);

/// What does not add up between the track's statistics and its packets.
std::vector<std::string> checkStatistics(Ketra::QT::QTTrack& track, const HintedTrack& hints);

bool isHintTrack(const Ketra::QT::QTTrack& track);

} // namespace serve
