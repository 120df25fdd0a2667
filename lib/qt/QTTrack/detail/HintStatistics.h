// What a hint track says of itself: bit rates, packet sizes, and the atoms of "hinf".
#pragma once

#include <base/CString.h>
#include <qt/QTAtoms/user/HINF.h>

#include <cstdint>

namespace Ketra::QT::wire {

/// RTP payload of a hint track, the "payt" atom: 8 payload type (32), 12 length of the text (8), 13 the text
/// "encoding/clock rate", for audio "encoding/clock rate/channels".
struct PayloadDescription {
    unsigned int type = 0;
    CString encoding;
    unsigned int clockRate = 0;
    unsigned int parameter = 0;

    static PayloadDescription read(QTDataAtom& atom);
    CString text(bool audio) const;
};

/// The sums of a prepared hint track. `bytes` counts whole hint samples: 32 of them a packet are not payload.
struct HintStatistics {
    unsigned int packets = 0;
    std::uint64_t bytes = 0;
    unsigned int maxBitRate = 0;
    unsigned int largestPacket = 0;
    double duration = 0; // seconds
    unsigned int samples = 0;
    PayloadDescription payload;

    /// Appends one set of statistics.
    void append(HINF& hinf, bool audio) const;
};

/// Payload bits a second; half a byte is added before bytes become bits. 0 without a duration.
unsigned int hintBitRate(std::uint64_t bytes, unsigned int packets, double duration);

/// The average packet size that video hint tracks state: not a true average (it multiplies by -31 where a
/// subtraction of 32 a packet was meant), and kept since servers are used to it. 0 without packets.
unsigned short videoPacketSize(std::uint64_t bytes, unsigned int packets);

/// The one that audio hint tracks state: payload bytes a packet. 0 without packets.
unsigned short audioPacketSize(std::uint64_t bytes, unsigned int packets);

} // namespace Ketra::QT::wire
