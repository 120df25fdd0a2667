// The sample tables of a track, read side by side.
#pragma once

#include "check/Heads.h"

#include <cstdint>
#include <utility>
#include <vector>

namespace Ketra::Tool {

/// The sizes of samples in their order.
class SampleSizes {
public:
    SampleSizes() = default;
    SampleSizes(const Subject& subject, const AtomPlace* stsz, const AtomPlace* stz2);

    std::uint64_t count() const { return count_; }
    unsigned int constant() const { return constant_; } ///< of all; 0: each has its own

    /// Bytes of the next samples, of which there may be fewer.
    std::uint64_t take(std::uint64_t samples);

private:
    unsigned int next();

    std::uint64_t count_ = 0;
    std::uint64_t left_ = 0;
    unsigned int constant_ = 0;
    unsigned int bits_ = 32;
    bool secondHalf_ = false; // of a byte with two sizes
    Rows rows_;
};

/// The decode times of samples in their order.
class SampleTimes {
public:
    SampleTimes() = default;
    explicit SampleTimes(Rows rows) : rows_(std::move(rows)) {}

    std::uint64_t now() const { return ticks_; }
    void skip(std::uint64_t samples);

private:
    Rows rows_;
    std::uint64_t left_ = 0; // of the current row
    std::uint64_t ticks_ = 0;
};

/// How many samples of what description each chunk has, chunk by chunk.
class ChunkRuns {
public:
    ChunkRuns() = default;
    explicit ChunkRuns(Rows rows);

    void next(); ///< to the next chunk, the first at first
    unsigned int samples() const { return samples_; }
    unsigned int description() const { return description_; } ///< from 1

private:
    Rows rows_;
    std::uint64_t chunk_ = 0;
    std::uint64_t rowChunk_ = 0; // the first chunk of the row that comes next
    bool ended_ = true;
    unsigned int samples_ = 0;
    unsigned int description_ = 0;
};

/// A sample description, as far as chunks need it.
struct Description {
    bool inFile = true;              ///< its media lie in this file
    std::uint64_t samplesOfUnit = 1; ///< a unit of sound is this many samples
    std::uint64_t bytesOfUnit = 0;   ///< 0: the sizes of the table are bytes, or nothing is known
    bool sizeKnown = true;
};

struct TrackTables {
    TablePlace chunks; ///< rows of 4 or 8 bytes
    TablePlace runs;
    TablePlace times;
    SampleSizes sizes;
    std::vector<Description> descriptions;
};

/// `countsSamples`: the sizes of the table are 1 for every sample, so that those of sound say nothing.
std::vector<Description> readDescriptions(const Subject& subject, const TrackHead& track, bool countsSamples);

/// Checks the tables with each other and puts their sums into the head.
TrackTables checkTables(const Subject& subject, TrackHead& track);

/// Where the chunks of all tracks lie.
class ChunkPlaces {
public:
    explicit ChunkPlaces(const Subject& subject);
    void add(const TrackHead& track, std::size_t number, TrackTables tables);
    /// Compares the places of all tracks with each other.
    void finish(const MovieHead& movie);

private:
    struct Range {
        std::uint64_t begin;
        std::uint64_t end;
        std::uint32_t track; // its number in the movie, from 0
        std::uint32_t chunk; // from 1
        float start;         // seconds in the movie
        float stop;
    };
    struct Span {
        std::uint64_t begin;
        std::uint64_t end;
    };

    void checkPlace(const TablePlace& table, const Range& range, std::uint64_t at);
    void compare(const Range& before, const Range& range, const MovieHead& movie);
    void checkInterleaving(const MovieHead& movie);

    const Subject& subject_;
    std::vector<Span> media_;
    Span header_{};
    std::vector<Range> ranges_;
    std::vector<const AtomPlace*> tables_; // of chunk offsets, by track
    bool full_ = false;
};

} // namespace Ketra::Tool
