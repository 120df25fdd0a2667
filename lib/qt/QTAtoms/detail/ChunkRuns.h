// The expanded sample-to-chunk table, one entry a chunk, kept as the runs that it consists of.
//
// A file states a few runs for thousands of chunks, and a few bytes can claim four thousand million of them:
// so the expansion is never made, only answered from.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

namespace Ketra::QT::wire {

/// One entry of the expanded table. `totalBefore` counts the samples of all chunks before it, modulo 2^32.
struct ChunkRun {
    std::uint32_t firstChunk;
    std::uint32_t samplesPerChunk;
    std::uint32_t descriptionID;
    std::uint32_t totalBefore;

    /// The entry that stands `steps` further in a run that begins with this one.
    ChunkRun advanced(std::uint64_t steps) const {
        const auto n = static_cast<std::uint32_t>(steps);
        return {firstChunk + n, samplesPerChunk, descriptionID, totalBefore + n * samplesPerChunk};
    }
    /// Samples through this entry.
    std::uint64_t end() const { return std::uint64_t{totalBefore} + samplesPerChunk; }
    bool sameSamples(const ChunkRun& other) const {
        return samplesPerChunk == other.samplesPerChunk && descriptionID == other.descriptionID;
    }
};

class ChunkRuns {
public:
    using Value = ChunkRun;

    /// Entries from index `start` up to the next segment's start: the first one and those that follow from
    /// it. Chunks that are being written do not count the samples before them: their totals stay.
    struct Segment {
        ChunkRun first;
        std::uint32_t start;
        bool totalStays;

        ChunkRun at(std::uint64_t index) const {
            ChunkRun entry = first.advanced(index - start);
            if (totalStays) entry.totalBefore = first.totalBefore;
            return entry;
        }
    };

    std::uint64_t size() const { return size_; }
    /// Entry i, i < size().
    ChunkRun at(std::uint64_t i) const;
    ChunkRun last() const { return at(size_ - 1); }
    /// In order of their starts; no two neighbours continue each other.
    const std::vector<Segment>& segments() const { return segments_; }
    /// The index of the first entry whose samples reach `last` (counted from 1), or size(). Needs totals that
    /// rise evenly.
    std::uint64_t firstEndingAt(std::uint64_t last) const;
    /// True when totals do not rise evenly: some entry's total is below the end of the entry before it, as
    /// when the count passed 2^32. Totals cannot be searched by halves then.
    bool wrapped() const { return wrapped_; }

    void push(const ChunkRun& entry) { append(entry, 1); }
    /// Appends `count` entries: the first and those that follow from it.
    void append(const ChunkRun& first, std::uint64_t count);
    void clear() { *this = ChunkRuns(); }

private:
    std::vector<Segment> segments_;
    std::uint64_t size_ = 0;
    bool wrapped_ = false;
};

/// Builds the expansion from the runs that a file states.
class ChunkExpansion {
public:
    /// No more than `limit` entries are made.
    ChunkExpansion(ChunkRuns& runs, std::uint64_t limit) : runs_(runs), limit_(limit) {}
    /// The next run of the file. False when the limit is reached: the rest of the file's runs is dropped.
    bool add(std::uint32_t firstChunk, std::uint32_t samplesPerChunk, std::uint32_t descriptionID);

private:
    bool append(const ChunkRun& first, std::uint64_t count);

    ChunkRuns& runs_;
    std::uint64_t limit_;
    // The run before, and the samples so far.
    std::uint32_t chunk_ = 1;
    std::uint32_t samples_ = 0;
    std::uint32_t description_ = 0;
    std::uint32_t total_ = 0;
};

inline ChunkRun ChunkRuns::at(std::uint64_t i) const {
    const auto behind =
        std::upper_bound(segments_.begin(), segments_.end(), i,
                         [](std::uint64_t index, const Segment& segment) { return index < segment.start; });
    const Segment& segment = *(behind - 1);
    return segment.at(i);
}

inline std::uint64_t ChunkRuns::firstEndingAt(std::uint64_t last) const {
    const auto reaches = [this, last](const Segment& segment) {
        const Segment* next = &segment + 1;
        const std::uint64_t behind = next == segments_.data() + segments_.size() ? size_ : next->start;
        return segment.first.totalBefore + (behind - segment.start) * segment.first.samplesPerChunk >= last;
    };
    const auto found = std::partition_point(segments_.begin(), segments_.end(),
                                            [&reaches](const Segment& segment) { return !reaches(segment); });
    if (found == segments_.end()) return size_;
    const ChunkRun& first = found->first;
    if (first.samplesPerChunk == 0 || last <= first.end()) return found->start;
    return found->start + (last - first.totalBefore - 1) / first.samplesPerChunk;
}

inline void ChunkRuns::append(const ChunkRun& first, std::uint64_t count) {
    if (count == 0) return;
    bool continues = false;
    if (size_) {
        Segment& segment = segments_.back();
        const bool alone = segment.start + 1 == size_;
        const ChunkRun previous = segment.at(size_ - 1);
        const ChunkRun next = previous.advanced(1);
        const bool follows = next.sameSamples(first) && next.firstChunk == first.firstChunk;
        const bool rises = follows && next.totalBefore == first.totalBefore && !segment.totalStays;
        const bool stays = follows && previous.totalBefore == first.totalBefore && count == 1 &&
                           (alone || segment.totalStays);
        segment.totalStays = segment.totalStays || (stays && !rises);
        continues = rises || stays;
        wrapped_ = wrapped_ || first.totalBefore < previous.end();
    }
    if (!continues) segments_.push_back({first, static_cast<std::uint32_t>(size_), false});
    size_ += count;
    const std::uint64_t room = std::numeric_limits<std::uint32_t>::max() - first.totalBefore;
    wrapped_ = wrapped_ || (first.samplesPerChunk && (count - 1) > room / first.samplesPerChunk);
}

inline bool ChunkExpansion::append(const ChunkRun& first, std::uint64_t count) {
    const std::uint64_t taken = std::min(count, limit_ - std::min(limit_, runs_.size()));
    runs_.append(first, taken);
    total_ += static_cast<std::uint32_t>(taken) * first.samplesPerChunk;
    return taken == count;
}

inline bool ChunkExpansion::add(std::uint32_t firstChunk, std::uint32_t samplesPerChunk,
                                std::uint32_t descriptionID) {
    const std::uint64_t next = std::uint64_t{chunk_} + 1;
    if (next < firstChunk) {
        const ChunkRun between{static_cast<std::uint32_t>(next), samples_, description_, total_};
        if (!append(between, firstChunk - next)) return false;
    }
    if (!append({firstChunk, samplesPerChunk, descriptionID, total_}, 1)) return false;
    chunk_ = firstChunk;
    samples_ = samplesPerChunk;
    description_ = descriptionID;
    return true;
}

} // namespace Ketra::QT::wire
