// What the headers of a movie and of its tracks say, for the checks that compare it.
#pragma once

#include "check/Subject.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace Ketra::Tool {

/// A table in an atom: a count, then rows of one size.
struct TablePlace {
    const AtomPlace* atom = nullptr; ///< null: there is none
    std::uint64_t at = 0;            ///< the first row
    std::uint64_t count = 0;         ///< rows that fit into the atom
    unsigned int rowSize = 0;

    Rows rows(Bytes& bytes) const { return atom ? Rows(bytes, at, count, rowSize) : Rows(); }
};

/// `before`: bytes between the start of the body and the rows, the count being the last four of them. Adds
/// what does not fit.
TablePlace tableOf(const Subject& subject, const AtomPlace* atom, unsigned int before, unsigned int rowSize);

struct TrackHead {
    const AtomPlace* trak = nullptr;
    const AtomPlace* header = nullptr; ///< tkhd
    const AtomPlace* media = nullptr;  ///< mdhd
    const AtomPlace* tables = nullptr; ///< stbl
    unsigned int id = 0;
    unsigned int handler = 0;
    unsigned int timeScale = 0;                 ///< ticks a second
    std::optional<std::uint64_t> duration;      ///< in the movie's time scale; none: not known
    std::optional<std::uint64_t> mediaDuration; ///< in its own
    double shift = 0;                           ///< seconds from the time of a sample to that in the movie
    // From the sample tables:
    std::uint64_t samples = 0;
    std::uint64_t ticks = 0;  ///< of all samples
    unsigned int longest = 0; ///< ticks of one sample
    std::int64_t latest = 0;  ///< the greatest composition offset
};

struct MovieHead {
    const AtomPlace* header = nullptr; ///< mvhd
    unsigned int timeScale = 0;
    std::optional<std::uint64_t> duration;
    unsigned int nextTrack = 0;
    std::vector<TrackHead> tracks;
};

/// Adds what is wrong with the single headers, IDs and references.
MovieHead readHeads(const Subject& subject);

/// Compares the durations with each other, and the edit lists with the media. Needs the sums of the tables;
/// sets the shifts.
void checkTimes(const Subject& subject, MovieHead& movie);

} // namespace Ketra::Tool
