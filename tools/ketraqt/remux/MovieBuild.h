// One pass over all tracks: their packets in the order in which they are played, gathered into chunks.
#pragma once

#include "remux/Plan.h"
#include "remux/RawAtom.h"

#include <cstdint>
#include <functional>

namespace Ketra::Tool {

class MovieBuild {
public:
    /// Takes a chunk's bytes, which belong directly behind those of the chunk before.
    using Sink = std::function<void(const QT::QTFrame& chunk)>;

    explicit MovieBuild(Plan& plan);

    /// Adds all packets; the first chunk is at that offset of the file. Bytes of all chunks.
    std::uint64_t addMedia(std::uint64_t start, const Sink& sink);
    void finish();                        ///< ends and prepares the movie
    void moveChunks(std::uint64_t delta); ///< the media goes that much further back in the file

    /// The atoms in front of the media data, by their types; serialized anew each time.
    Bytes header();
    QT::QTMovie& movie() { return *movie_; }
    QT::QTTrack& track(std::size_t index) { return *tracks_[index].track; }

private:
    struct Track {
        TrackInput* input;
        QT::QTTrack* track;
        std::unique_ptr<PacketSource> packets;
        Packet pending;
        bool ended = false;
        std::vector<unsigned int> descriptions; // of the chunks saved
        unsigned int description = 0;           // of the chunk that is open; 0: nothing is in it
        double pendingSeconds() const;
    };

    void begin(TrackInput& input);
    void advance(Track& track);
    Track* earliest();
    void addPending(Track& track);
    void save(Track& track, const Sink& sink);
    void settleChunkDescriptions(const Track& track);
    void link();

    Plan& plan_;
    std::vector<std::unique_ptr<QT::QTAtom>> removed_; // outlives the movie's cursors, which may point there
    std::unique_ptr<QT::QTMovie> movie_;
    std::vector<Track> tracks_;
    std::uint64_t position_ = 0;
};

} // namespace Ketra::Tool
