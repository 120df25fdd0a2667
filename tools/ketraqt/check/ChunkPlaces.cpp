// Where chunks lie: in the file, in media data, clear of each other, and near those of the same time.
#include "check/Tables.h"

#include <qt/QTTypes.h>

#include <algorithm>
#include <fmt/format.h>
#include <limits>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

constexpr std::size_t kMostChunks = 2'000'000; // 64 MB, about a day of sound in small chunks
constexpr float kFarApart = 3;                 // seconds; players read about that much ahead

} // namespace

ChunkPlaces::ChunkPlaces(const Subject& subject) : subject_(subject) {
    for (const AtomPlace& atom : subject.file.children) {
        if (atom.type == fourCC("mdat")) media_.push_back({atom.body(), atom.end()});
        if (atom.type == fourCC("moov") && header_.end == 0) header_ = {atom.offset, atom.end()};
    }
}

void ChunkPlaces::add(const TrackHead& track, std::size_t number, TrackTables tables) {
    tables_.resize(std::max(tables_.size(), number + 1));
    tables_[number] = tables.chunks.atom;
    // Pictures of a slide show, and one cover picture, are wherever they are.
    const bool timed = (track.handler == fourCC("vide") || track.handler == fourCC("soun")) &&
                       track.samples > 1 && track.timeScale > 0;
    Rows chunks = tables.chunks.rows(subject_.bytes);
    ChunkRuns runs(tables.runs.rows(subject_.bytes));
    SampleTimes times(tables.times.rows(subject_.bytes));
    const auto seconds = [&] {
        return static_cast<float>(static_cast<double>(times.now()) / track.timeScale + track.shift);
    };
    std::uint32_t chunk = 0;
    while (chunks.next()) {
        runs.next();
        const unsigned int index = runs.description();
        const Description description =
            index > 0 && index <= tables.descriptions.size() ? tables.descriptions[index - 1] : Description{};
        Range range{};
        range.begin = tables.chunks.rowSize == 4 ? chunks.u32(0) : chunks.u64(0);
        range.track = static_cast<std::uint32_t>(number);
        range.chunk = ++chunk;
        range.start = timed ? seconds() : -1;
        times.skip(runs.samples());
        range.stop = timed ? seconds() : -1;
        std::uint64_t size = tables.sizes.take(runs.samples());
        if (description.bytesOfUnit) {
            // Both have 32 bits at most.
            size = (size + description.samplesOfUnit - 1) / description.samplesOfUnit;
            size = size > 0xFFFFFFFF ? 0 : size * description.bytesOfUnit;
        } else if (!description.sizeKnown) {
            size = 0;
        }
        if (!description.inFile) continue;
        range.end = range.begin + std::min(size, std::numeric_limits<std::uint64_t>::max() - range.begin);
        checkPlace(tables.chunks, range, chunks.at());
        if (ranges_.size() < kMostChunks) {
            ranges_.push_back(range);
        } else {
            full_ = true;
        }
    }
}

void ChunkPlaces::checkPlace(const TablePlace& table, const Range& range, std::uint64_t at) {
    const auto add = [&](Severity severity, const char* rule, const char* where) {
        subject_.findings.add(severity, rule, table.atom->path, at, [&] {
            return fmt::format("chunk {} ({} bytes at 0x{:x}) {}", range.chunk, range.end - range.begin,
                               range.begin, where);
        });
    };
    if (range.end == range.begin) return; // it has no bytes that could be missing
    if (range.end > subject_.file.size) {
        add(Severity::Error, "chunk-outside-file", "ends behind the end of the file");
        return;
    }
    if (range.begin < header_.end && range.end > header_.begin) {
        add(Severity::Error, "chunk-in-header", "overlaps the movie header");
        return;
    }
    const auto behind = std::upper_bound(media_.begin(), media_.end(), range.begin,
                                         [](std::uint64_t begin, const Span& m) { return begin < m.begin; });
    if (behind == media_.begin() || range.end > std::prev(behind)->end) {
        add(Severity::Warning, "chunk-outside-media", "is not in any media data");
    }
}

void ChunkPlaces::finish(const MovieHead& movie) {
    std::sort(ranges_.begin(), ranges_.end(), [](const Range& a, const Range& b) {
        return a.begin != b.begin ? a.begin < b.begin : a.end < b.end;
    });
    const Range* before = nullptr; // that which ends last so far
    for (const Range& range : ranges_) {
        if (range.end == range.begin) continue;
        if (before && range.begin < before->end) compare(*before, range, movie);
        if (!before || range.end > before->end) before = &range;
    }
    if (full_) {
        subject_.findings.add(
            Severity::Note, "too-many-chunks", subject_.movie.path, subject_.movie.offset,
            [] { return fmt::format("only the first {} chunks are compared with each other", kMostChunks); });
    }
    if (!full_) checkInterleaving(movie);
}

void ChunkPlaces::compare(const Range& before, const Range& range, const MovieHead& movie) {
    const AtomPlace& table = *tables_[range.track];
    const bool same = before.begin == range.begin && before.end == range.end;
    // Two tracks may well show the same media.
    subject_.findings.add(same ? Severity::Note : Severity::Warning, same ? "shared-chunk" : "chunk-overlap",
                          table.path, table.offset, [&] {
                              return fmt::format("chunk {} ({} bytes at 0x{:x}) {} chunk {} of track {}",
                                                 range.chunk, range.end - range.begin, range.begin,
                                                 same ? "is also" : "overlaps", before.chunk,
                                                 movie.tracks[before.track].id);
                          });
}

/// A player that reads from the start to the end has to keep what it got of one track until the others have
/// come as far.
void ChunkPlaces::checkInterleaving(const MovieHead& movie) {
    float reached = -1;
    std::uint32_t leader = 0;
    for (const Range& range : ranges_) {
        if (range.start < 0 && range.stop < 0) continue;
        if (reached - range.start > kFarApart && leader != range.track) {
            const AtomPlace& table = *tables_[range.track];
            subject_.findings.add(Severity::Note, "interleaving", table.path, table.offset, [&] {
                return fmt::format("chunk {} lies {:.1f} s behind the media of track {}", range.chunk,
                                   reached - range.start, movie.tracks[leader].id);
            });
        }
        if (range.stop > reached) {
            reached = range.stop;
            leader = range.track;
        }
    }
}

} // namespace Ketra::Tool
