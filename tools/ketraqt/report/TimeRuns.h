// Decode times of the samples of a track.
#pragma once

#include "report/TableStore.h"

#include <cstdint>
#include <vector>

namespace Ketra::Tool::Report {

/// The table of durations, in which the time of any sample is found. Samples behind those that it covers have
/// the time of its end.
class TimeRuns {
public:
    TimeRuns(TableStore& store, const QT::QTAtom* stbl);

    std::uint64_t tickOf(std::uint64_t sample) const; ///< counted from 0
    std::uint64_t samples() const { return samples_; }
    std::uint64_t ticks() const { return ticks_; } ///< of all samples
    bool cutShort() const { return cutShort_; }    ///< the table is longer than what is held

private:
    struct Run {
        std::uint64_t firstSample;
        std::uint64_t firstTick;
        std::uint32_t delta; // ticks of one sample
    };

    std::vector<Run> runs_;
    std::uint64_t samples_ = 0;
    std::uint64_t ticks_ = 0;
    bool cutShort_ = false;
    mutable std::size_t last_ = 0; // the run that was asked for last: mostly the next one is there, too
};

} // namespace Ketra::Tool::Report
