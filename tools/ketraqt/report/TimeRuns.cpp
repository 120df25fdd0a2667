#include "report/TimeRuns.h"

#include "Atoms.h"

#include <algorithm>

namespace Ketra::Tool::Report {

TimeRuns::TimeRuns(TableStore& store, const QT::QTAtom* stbl) {
    constexpr std::size_t kMostRuns = std::size_t{1} << 22;
    constexpr std::uint64_t kMostTicks = std::uint64_t{1} << 62;
    Rows rows = store.tableOf(childOf<QT::QTAtom>(stbl, QT::fourCC("stts")), 8, 8).rows;
    while (rows.next()) {
        const unsigned int count = rows.u32(0);
        const unsigned int delta = rows.u32(4);
        const std::uint64_t length = static_cast<std::uint64_t>(count) * delta;
        if (runs_.size() == kMostRuns || length > kMostTicks - ticks_) {
            cutShort_ = true;
            return;
        }
        if (count == 0) continue;
        runs_.push_back({samples_, ticks_, delta});
        samples_ += count;
        ticks_ += length;
    }
}

std::uint64_t TimeRuns::tickOf(std::uint64_t sample) const {
    if (sample >= samples_) return ticks_;
    const auto holds = [&](std::size_t i) {
        return i < runs_.size() && runs_[i].firstSample <= sample &&
               (i + 1 == runs_.size() || sample < runs_[i + 1].firstSample);
    };
    if (!holds(last_) && !holds(++last_)) {
        const auto behind =
            std::upper_bound(runs_.begin(), runs_.end(), sample,
                             [](std::uint64_t wanted, const Run& run) { return wanted < run.firstSample; });
        last_ = static_cast<std::size_t>(behind - runs_.begin()) - 1;
    }
    return runs_[last_].firstTick + (sample - runs_[last_].firstSample) * runs_[last_].delta;
}

} // namespace Ketra::Tool::Report
