// What a remux writes: which tracks, in what order, and how they name each other.
#pragma once

#include "Source.h"
#include "remux/HeaderFields.h"
#include "remux/TrackInput.h"

#include <memory>
#include <string>
#include <vector>

namespace Ketra::Tool {

struct RemuxOptions {
    std::string file;
    std::string output;
    std::string flavour;              ///< empty: that of the file
    std::vector<unsigned int> tracks; ///< IDs; none: all that are media
    std::string chapters = "keep";    ///< "keep", "drop", or a file of titles
    std::string startTimecode;        ///< empty: as it is
    std::string rate;
    double chunkDuration = 0.5;           ///< seconds
    unsigned int chunkSize = 1024 * 1024; ///< bytes
    bool fastStart = false;
    bool dryRun = false;
    bool force = false;
};

struct Reference {
    std::size_t from;
    unsigned int type;
    std::size_t to;
};

struct Plan {
    QT::QTMovie& movie;
    Source& source;
    QT::QTMovieConstructionFlags flavour;
    MovieTimes times;
    double chunkDuration;
    unsigned int chunkSize;
    std::vector<std::unique_ptr<TrackInput>> tracks;
    std::vector<Reference> references;
    std::vector<unsigned int> userDataLeftOut;
    std::vector<std::string> notes; ///< what stays behind, for people

    std::uint64_t bytes() const; ///< of all tracks, as far as it is known
};

/// Throws ToolError for what cannot be carried over, or has no place in the flavour.
Plan makePlan(const RemuxOptions& options, QT::QTMovie& movie, Source& source);

} // namespace Ketra::Tool
