// Sound by its tables alone.
#pragma once

#include "remux/Packets.h"

#include <qt/QTAtoms/samples/STCO.h>
#include <qt/QTAtoms/samples/STSZ.h>
#include <qt/QTAtoms/samples/STTS.h>
#include <qt/QTStream.h>

namespace Ketra::Tool {

/// Whether the frames of a sound track depend on what is known of its codec: its table tells one size for all
/// samples, or sizes of what is otherwise plain PCM. To carry such a track over, whole packets are enough.
bool wantsTables(const QT::QTTrack& track);

/// Stored samples as they lie in their chunks, cut to pieces of at most `longest` seconds.
class TablePackets : public PacketSource {
public:
    TablePackets(QT::QTTrack& track, double longest);

    bool next(Packet& packet) override;

private:
    /// The smallest piece that stands for itself.
    struct Piece {
        unsigned int bytes = 1;
        unsigned int samples = 1;
    };
    Piece pieceOf(unsigned int description) const;
    bool enterChunk();
    std::uint64_t take(unsigned int samples); ///< their ticks
    std::unique_ptr<QT::QTFrame> read(std::uint64_t count);

    QT::QTTrack& track_;
    QT::QTStream* stream_;
    double longest_;
    double scale_;
    const QT::STSC* runs_;
    const QT::STCO* offsets_;
    std::vector<QT::STSZData*> sizes_; // none: one size
    unsigned int constant_ = 0;
    std::vector<QT::STTSData*> times_;

    unsigned int chunk_ = 0; // number of the current one
    std::uint64_t left_ = 0; // stored samples of it
    std::uint64_t stored_ = 0;
    std::uint64_t sample_ = 0;
    std::uint64_t offset_ = 0;
    Piece piece_;
    unsigned int description_ = 1;
    std::size_t time_ = 0;
    unsigned int timeUsed_ = 0;
    std::uint64_t ticks_ = 0;
};

} // namespace Ketra::Tool
