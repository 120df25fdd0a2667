// A track that is carried over from the movie that is read.
#pragma once

#include "remux/HeaderFields.h"
#include "remux/TrackInput.h"

#include <qt/QTAtoms/samples/CTTS.h>
#include <qt/QTAtoms/samples/STSZ.h>
#include <qt/QTMovie.h>

namespace Ketra::Tool {

/// The kind by class and handler; false for hints and everything else that is no media.
bool mediaKindOf(QT::QTTrack& track, MediaKind& kind);

class CopiedTrack : public TrackInput {
public:
    CopiedTrack(QT::QTTrack& track, MediaKind kind, QT::QTStream& stream, bool fromQuickTime);

    MediaKind kind() const override { return kind_; }
    unsigned int timeScale() const override { return source_.getAtomMediaTimeScale(); }
    unsigned int sourceID() const override { return source_.getID(); }
    std::unique_ptr<PacketSource> packets(double longest) override;
    std::unique_ptr<PacketSource> packetsOf(QT::QTTrack& written, double longest) const override;
    std::uint64_t bytes() const override;
    void configure(QT::QTTrack& track) override;
    void add(QT::QTTrack& track, Packet& packet) override;
    void beforePreparing(QT::QTTrack& track) override;
    void settle(QT::QTTrack& track, std::vector<std::unique_ptr<QT::QTAtom>>& removed) override;
    std::int64_t shift() const override { return shift_; }

private:
    template <class Atom>
    Atom* table(const QT::QTTrack& track, unsigned int type) const;

    void settleHeader(QT::QTTrack& track);
    void settleTables(QT::QTTrack& track, std::vector<std::unique_ptr<QT::QTAtom>>& removed);
    void settleDurations(QT::QTTrack& track);
    void settleSizes(QT::QTTrack& track);

    QT::QTTrack& source_;
    MediaKind kind_;
    QT::QTStream& stream_;
    bool fromQuickTime_;
    bool byTables_;
    bool hasSync_;
    bool hasOffsets_;
    bool grouped_ = false; // packets of more than one stored sample
    std::uint64_t stored_ = 0;
    std::int64_t shift_ = 0;
    std::vector<Edit> edits_;
    std::unique_ptr<QT::TKHD> header_;
};

} // namespace Ketra::Tool
