// Tracks that the tool makes itself: chapter titles and a start timecode.
#pragma once

#include "remux/Chapters.h"
#include "remux/TimecodeText.h"
#include "remux/TrackInput.h"

namespace Ketra::Tool {

/// A few samples that are held in memory.
class NewTrack : public TrackInput {
public:
    std::unique_ptr<PacketSource> packets(double longest) override;
    std::uint64_t bytes() const override;
    /// One edit that shows all of it, in units of the media.
    void beforePreparing(QT::QTTrack& track) override;
    void settle(QT::QTTrack& track, std::vector<std::unique_ptr<QT::QTAtom>>& removed) override;

    struct Sample {
        std::vector<unsigned char> bytes;
        std::uint64_t duration; ///< ticks
    };

protected:
    std::vector<Sample> samples_;
};

class ChapterTrack : public NewTrack {
public:
    ChapterTrack(const std::vector<Chapter>& chapters, double movieSeconds);

    MediaKind kind() const override { return MediaKind::kText; }
    unsigned int timeScale() const override;
    void configure(QT::QTTrack& track) override;
};

class TimecodeTrack : public NewTrack {
public:
    TimecodeTrack(const Timecode& start, const FrameRate& rate, double movieSeconds);

    MediaKind kind() const override { return MediaKind::kTimecode; }
    unsigned int timeScale() const override { return rate_.numerator; }
    void configure(QT::QTTrack& track) override;

private:
    Timecode start_;
    FrameRate rate_;
};

} // namespace Ketra::Tool
