// The samples of two movies, track by track.
#include "FrameWalk.h"
#include "diff/Difference.h"

#include <array>
#include <fmt/format.h>
#include <optional>

namespace Ketra::Tool {

namespace {

/// One thing told of every sample: where it differs first, and how often.
struct Property {
    const char* name;
    Json a = {};
    Json b = {};
    std::uint64_t first = 0;
    std::uint64_t count = 0;

    template <class Value>
    void compare(Value left, Value right, std::uint64_t sample) {
        if (left == right || count++ > 0) return;
        a = left;
        b = right;
        first = sample;
    }
};

struct Move {
    std::int64_t distance = 0;
    bool same = true; // for all
    std::uint64_t count = 0;

    void add(std::int64_t by) {
        if (by != 0) ++count;
        if (any_ && by != distance) same = false;
        distance = by;
        any_ = true;
    }

private:
    bool any_ = false;
};

class TrackDiff {
public:
    TrackDiff(QT::QTTrack& a, QT::QTTrack& b, std::string path, std::vector<Difference>& differences)
        : a_(a), b_(b), path_(std::move(path)), differences_(differences) {}

    Move compare() {
        FrameWalk left(a_);
        FrameWalk right(b_);
        std::uint64_t frames = 0;
        FramePlace placeA;
        FramePlace placeB;
        while (true) {
            const auto frameA = left.next(placeA);
            const auto frameB = right.next(placeB);
            if (!frameA && !frameB) break;
            if (frameA && frameB) {
                ++frames;
                compareFrames(placeA, *frameA, placeB, *frameB);
            } else {
                const std::uint64_t more = 1 + countRest(frameA ? left : right);
                addCount(frames + (frameA ? more : 0), frames + (frameB ? more : 0));
                break;
            }
        }
        for (Property* property : {&sizes_, &decodes_, &presentations_, &durations_, &keys_, &counts_}) {
            if (property->count == 0) continue;
            differences_.push_back({Difference::kSamples, path_, property->name, property->a, property->b,
                                    property->first, property->count});
        }
        return move_;
    }

private:
    static std::uint64_t countRest(FrameWalk& walk) {
        std::uint64_t count = 0;
        FramePlace place;
        while (walk.next(place)) {
            ++count;
        }
        return count;
    }

    void addCount(std::uint64_t a, std::uint64_t b) {
        differences_.push_back({Difference::kField, path_, "frames", a, b});
    }

    void compareFrames(const FramePlace& placeA, const QT::QTFrame& frameA, const FramePlace& placeB,
                       const QT::QTFrame& frameB) {
        const std::uint64_t sample = placeA.sample;
        sizes_.compare(placeA.size, placeB.size, sample);
        const Ticks ticksA = ticksOf(frameA, a_.getAtomMediaTimeScale());
        const Ticks ticksB = ticksOf(frameB, b_.getAtomMediaTimeScale());
        decodes_.compare(ticksA.decode, ticksB.decode, sample);
        // Moved along with the decode time, it is no difference of its own.
        presentations_.compare(ticksA.presentation - ticksA.decode, ticksB.presentation - ticksB.decode,
                               sample);
        durations_.compare(ticksA.duration, ticksB.duration, sample);
        keys_.compare(frameA.getIsKeyFrame(), frameB.getIsKeyFrame(), sample);
        counts_.compare(frameA.getSamplesInFrame(), frameB.getSamplesInFrame(), sample);
        move_.add(static_cast<std::int64_t>(placeB.offset - placeA.offset));
    }

    QT::QTTrack& a_;
    QT::QTTrack& b_;
    std::string path_;
    std::vector<Difference>& differences_;
    Property sizes_{"size"};
    Property decodes_{"decode time"};
    Property presentations_{"composition offset"};
    Property durations_{"duration"};
    Property keys_{"key mark"};
    Property counts_{"samples in the frame"};
    Move move_;
};

struct MovedTrack {
    std::string path;
    Move move;
};

/// One line for all tracks when all went the same way.
void addMoves(const std::vector<MovedTrack>& tracks, std::vector<Difference>& differences) {
    std::uint64_t count = 0;
    bool together = true;
    for (const MovedTrack& track : tracks) {
        count += track.move.count;
        together = together && track.move.same && track.move.distance == tracks.front().move.distance;
    }
    if (count == 0) return;
    if (together && tracks.size() > 1) {
        differences.push_back({Difference::kMoved, {}, {}, {}, tracks.front().move.distance, 0, count});
        return;
    }
    for (const auto& [path, move] : tracks) {
        if (move.count == 0) continue;
        const Json distance = move.same ? Json(move.distance) : Json();
        differences.push_back({Difference::kMoved, path, {}, {}, distance, 0, move.count});
    }
}

} // namespace

void compareSamples(Side& a, Side& b, std::vector<Difference>& differences) {
    if (!a.movie || !b.movie) return;
    a.source.leaveMediaOut();
    b.source.leaveMediaOut();
    std::vector<MovedTrack> moved;
    for (QT::QTTrack* track : a.movie->getTracks()) {
        QT::QTTrack* other = b.movie->getTrackID(track->getID());
        if (!other) continue; // the atoms tell
        const std::string path = fmt::format("track {}", track->getID());
        moved.push_back({path, TrackDiff(*track, *other, path, differences).compare()});
    }
    addMoves(moved, differences);
}

} // namespace Ketra::Tool
