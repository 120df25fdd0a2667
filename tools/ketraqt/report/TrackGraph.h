// What the graphs show of a track: its sample tables, summed up in a fixed number of columns.
#pragma once

#include "report/TableStore.h"

#include <qt/QTTrack.h>

#include <array>
#include <cstdint>
#include <limits>
#include <vector>

namespace Ketra::Tool::Report {

constexpr std::size_t kColumns = 400;

/// Where the chunks of a track lie in one column of the file, and which media times they hold.
struct FileColumn {
    double bytes = 0;
    double begin = std::numeric_limits<double>::max(); ///< seconds
    double end = 0;
};

struct OffsetColumn {
    bool used = false;
    double least = 0; ///< seconds from decoding to presentation
    double most = 0;
};

struct FirstSample {
    double decode; ///< seconds
    double presentation;
    bool key;
};

struct TrackGraph {
    unsigned int scale = 1; ///< ticks a second
    double seconds = 0;     ///< of all samples
    std::uint64_t samples = 0;
    std::uint64_t chunks = 0;
    std::uint64_t chunksOutside = 0; ///< that begin behind the end of the file
    double bytes = 0;
    bool cutShort = false; ///< the tables are longer than what is drawn

    std::array<double, kColumns> bits{}; ///< by media time
    std::array<unsigned int, kColumns> keys{};
    bool keysListed = false; ///< without a list every sample is a key
    std::uint64_t keyCount = 0;
    double longestKeyGap = 0; ///< seconds

    std::array<FileColumn, kColumns> places; ///< by position in the file

    bool composed = false; ///< there are composition offsets
    std::array<OffsetColumn, kColumns> offsets;
    double leastOffset = 0;
    double mostOffset = 0;
    std::vector<FirstSample> first;
};

/// How long the samples of a track last by the table of their durations, in seconds.
double mediaSeconds(TableStore& store, QT::QTTrack& track);

/// Columns of time reach to `seconds`, those of the file to its size.
TrackGraph readGraph(TableStore& store, QT::QTTrack& track, double seconds, std::uint64_t fileSize);

} // namespace Ketra::Tool::Report
