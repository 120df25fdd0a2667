// What a report is made of, and its sections.
#pragma once

#include "Json.h"
#include "report/TrackGraph.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Ketra::Tool::Report {

/// Of more tracks than this only the summary tells.
constexpr std::size_t kMostGraphs = 12;
constexpr std::size_t kColours = 8;

struct TrackPart {
    unsigned int id;
    std::string name;   ///< markup: 1 video avc1
    std::string kind;   ///< markup: video
    std::string lane;   ///< shorter than the name
    std::string colour; ///< class
    const Json* info;   ///< as `info --json` has it
    TrackGraph graph;
};

/// A line of the table of atoms.
struct AtomRow {
    unsigned int depth; ///< 0 at the top level
    unsigned int type;
    std::uint64_t offset;
    std::uint64_t size;
    bool placed; ///< it lies in the file at its offset, and in its parent
    int track;   ///< index of the track that it belongs to; -1: none
};

/// Tracks point into what is told of the movie.
struct MovieParts {
    explicit MovieParts(const std::string& name) : file(name) {}
    MovieParts(const MovieParts&) = delete;
    MovieParts& operator=(const MovieParts&) = delete;

    std::string file;
    std::uint64_t fileSize = 0;
    Json info;                ///< null without a movie
    unsigned int created = 0; ///< seconds since 1904; 0: not known
    unsigned int modified = 0;
    double seconds = 0; ///< of the longest track's media
    std::vector<TrackPart> tracks;
    std::vector<AtomRow> atoms;  ///< parents before children
    std::uint64_t atomCount = 0; ///< with those that are left out
};

void addSummary(std::string& page, const MovieParts& movie);
void addFindings(std::string& page, Source& source);
void addAtomMap(std::string& page, const MovieParts& movie);
void addBitRates(std::string& page, const MovieParts& movie);
void addInterleaving(std::string& page, const MovieParts& movie);
void addTimeline(std::string& page, const MovieParts& movie);
void addComposition(std::string& page, const MovieParts& movie); ///< belongs to the time line
void addChapters(std::string& page, const MovieParts& movie);

/// Square and name of each track that there are graphs of.
void addLegend(std::string& page, const MovieParts& movie);
void openSection(std::string& page, std::string_view id, std::string_view title, std::string_view intro);
void closeSection(std::string& page);

/// The whole of a style sheet, and what a content security policy has to name it by.
std::string_view styleSheet();
std::string_view styleHash();

} // namespace Ketra::Tool::Report
