// What goes into a track, packet by packet, with times in ticks of its media time scale.
#pragma once

#include "FrameWalk.h"

#include <qt/QTAtoms/samples/STPS.h>
#include <qt/QTAtoms/samples/STSC.h>

#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

namespace Ketra::Tool {

struct Packet {
    std::unique_ptr<QT::QTFrame> frame; ///< the bytes
    std::int64_t decode = 0;
    std::int64_t presentation = 0;
    std::uint64_t duration = 0;
    unsigned int samples = 1; ///< stored samples that these bytes are
    bool key = true;
    bool partialKey = false;
    unsigned int description = 1;
};

class PacketSource {
public:
    PacketSource() = default;
    PacketSource(const PacketSource&) = delete;
    PacketSource& operator=(const PacketSource&) = delete;
    virtual ~PacketSource();

    virtual bool next(Packet& packet) = 0; ///< false at the end
};

/// The frames of a track that is read. Sound that is handed out in whole chunks is cut into packets of at
/// most `longest` seconds.
class FramePackets : public PacketSource {
public:
    /// `bytesRead`: whether the stream delivers bytes; if not, nothing is found missing.
    FramePackets(QT::QTTrack& track, double longest);

    bool next(Packet& packet) override;

private:
    void cut(std::unique_ptr<QT::QTFrame> frame, const FramePlace& place);
    unsigned int storedIn(const QT::QTFrame& frame, unsigned int chunk) const;

    FrameWalk walk_;
    unsigned int scale_;
    double longest_;
    bool sound_;
    const QT::STSC* chunks_;
    std::vector<unsigned int> partial_; // sample numbers, rising
    std::deque<Packet> cut_;
};

} // namespace Ketra::Tool
