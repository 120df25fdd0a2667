// What becomes a track of the written movie.
#pragma once

#include "remux/Flavours.h"
#include "remux/Packets.h"

#include <qt/QTTrack.h>

#include <memory>
#include <vector>

namespace Ketra::Tool {

/// Used for one pass after the other: configure() on a fresh track, the packets, settle().
class TrackInput {
public:
    TrackInput() = default;
    TrackInput(const TrackInput&) = delete;
    TrackInput& operator=(const TrackInput&) = delete;
    virtual ~TrackInput();

    virtual MediaKind kind() const = 0;
    virtual unsigned int timeScale() const = 0;
    virtual unsigned int sourceID() const { return 0; } ///< ID of the track that is read; 0: a new one
    /// All packets from the first on, those of sound cut to `longest` seconds.
    virtual std::unique_ptr<PacketSource> packets(double longest) = 0;
    /// Reads what was written of it in the same way.
    virtual std::unique_ptr<PacketSource> packetsOf(QT::QTTrack& written, double longest) const;
    virtual std::uint64_t bytes() const = 0; ///< of all packets, as far as it is known

    virtual void configure(QT::QTTrack& track) = 0; ///< before the first sample
    /// Adds one packet, whose times are set in the frame.
    virtual void add(QT::QTTrack& track, Packet& packet);
    virtual void beforePreparing(QT::QTTrack& track); ///< between endTrack() and prepareForWriting()
    /// After prepareForWriting(). What is taken out of the tree goes to `removed`, which lives as long as it.
    virtual void settle(QT::QTTrack& track, std::vector<std::unique_ptr<QT::QTAtom>>& removed) = 0;

    /// Ticks that the times of all samples are moved ahead by, so that none is negative.
    virtual std::int64_t shift() const { return 0; }
};

/// The type that a track of the kind is begun with.
unsigned int trackType(MediaKind kind);

/// Takes the edit list away: the whole media is presented, from its first tick on.
void dropEdits(QT::QTTrack& track, std::vector<std::unique_ptr<QT::QTAtom>>& removed);

} // namespace Ketra::Tool
