#include "report/TrackGraph.h"

#include "Atoms.h"
#include "InfoTrack.h"
#include "report/TimeRuns.h"

#include <qt/QTAtoms.h>

#include <algorithm>
#include <cmath>

namespace Ketra::Tool::Report {

using QT::fourCC;

namespace {

/// Of one table. Longer ones are real in sound alone, where sizes and durations are all the same.
constexpr std::uint64_t kMostEntries = std::uint64_t{1} << 24;
constexpr std::size_t kFirstSamples = 24;

/// The columns from one place to another, with the share of each in it; at least one.
template <class Add>
void spread(double begin, double end, Add add) {
    const double last = static_cast<double>(kColumns - 1);
    if (!(begin >= 0) || begin >= static_cast<double>(kColumns)) return;
    const auto from = static_cast<std::size_t>(begin);
    const auto to = static_cast<std::size_t>(std::clamp(std::ceil(end) - 1, static_cast<double>(from), last));
    const double width = end - begin;
    for (std::size_t i = from; i <= to; ++i) {
        const double low = std::max(begin, static_cast<double>(i));
        const double high = std::min(end, static_cast<double>(i + 1));
        add(i, width > 0 ? std::max(0.0, high - low) / width : 1.0, (low - begin) / std::max(width, 1e-300),
            (high - begin) / std::max(width, 1e-300));
    }
}

class Reader {
public:
    Reader(TableStore& store, QT::QTTrack& track, double seconds, std::uint64_t fileSize)
        : store_(store), track_(track),
          stbl_(atomAt<QT::QTAtom>(track.getTrak(), {fourCC("mdia"), fourCC("minf"), fourCC("stbl")})),
          fileSize_(fileSize), perSecond_(seconds > 0 ? static_cast<double>(kColumns) / seconds : 0),
          perByte_(fileSize > 0 ? static_cast<double>(kColumns) / static_cast<double>(fileSize) : 0),
          times_(store, stbl_) {
        graph_.scale = std::max(1U, track.getAtomMediaTimeScale());
        graph_.seconds = inSeconds(times_.ticks());
        graph_.cutShort = times_.cutShort();
    }

    TrackGraph read() {
        readKeys();
        readOffsets();
        readChunks();
        return std::move(graph_);
    }

private:
    Table tableOf(unsigned int type, unsigned int before, unsigned int rowSize) {
        return store_.tableOf(childOf<QT::QTAtom>(stbl_, type), before, rowSize);
    }
    /// Whether this row of a table is still looked at.
    bool within(std::uint64_t row) {
        graph_.cutShort = graph_.cutShort || row >= kMostEntries;
        return row < kMostEntries;
    }
    double inSeconds(std::uint64_t ticks) const { return static_cast<double>(ticks) / graph_.scale; }
    double timeOf(std::uint64_t sample) const { return inSeconds(times_.tickOf(sample)); }

    void readKeys() {
        Table table = tableOf(fourCC("stss"), 8, 4);
        graph_.keysListed = table.found;
        double previous = 0;
        while (within(graph_.keyCount) && table.rows.next()) {
            const unsigned int number = table.rows.u32(0);
            if (number == 0) continue;
            ++graph_.keyCount;
            if (keys_.size() < kFirstSamples) keys_.push_back(number);
            const double time = timeOf(number - 1);
            graph_.longestKeyGap = std::max(graph_.longestKeyGap, time - previous);
            previous = time;
            spread(time * perSecond_, time * perSecond_,
                   [this](std::size_t i, double, double, double) { ++graph_.keys[i]; });
        }
        if (graph_.keyCount) graph_.longestKeyGap = std::max(graph_.longestKeyGap, graph_.seconds - previous);
    }

    void readOffsets() {
        Rows rows = tableOf(fourCC("ctts"), 8, 8).rows;
        std::uint64_t sample = 0;
        for (std::uint64_t i = 0; sample < times_.samples() && within(i) && rows.next(); ++i) {
            const auto offset = static_cast<std::int32_t>(rows.u32(4));
            addOffset(sample, rows.u32(0), static_cast<double>(offset) / graph_.scale);
            sample += rows.u32(0);
        }
        for (std::uint64_t i = graph_.first.size(); i < kFirstSamples && i < times_.samples(); ++i) {
            addFirst(i, 0);
        }
    }

    void addOffset(std::uint64_t sample, std::uint64_t count, double offset) {
        if (count == 0) return;
        graph_.leastOffset = graph_.composed ? std::min(graph_.leastOffset, offset) : offset;
        graph_.mostOffset = graph_.composed ? std::max(graph_.mostOffset, offset) : offset;
        graph_.composed = true;
        for (std::uint64_t i = sample; i < sample + count && i < kFirstSamples && i < times_.samples(); ++i) {
            addFirst(i, offset);
        }
        const std::uint64_t last = std::min(sample + count, times_.samples());
        spread(timeOf(sample) * perSecond_, timeOf(last) * perSecond_,
               [this, offset](std::size_t i, double, double, double) {
                   OffsetColumn& column = graph_.offsets[i];
                   column.least = column.used ? std::min(column.least, offset) : offset;
                   column.most = column.used ? std::max(column.most, offset) : offset;
                   column.used = true;
               });
    }

    void addFirst(std::uint64_t sample, double offset) {
        const bool key =
            !graph_.keysListed || std::find(keys_.begin(), keys_.end(), sample + 1) != keys_.end();
        const double decode = timeOf(sample);
        graph_.first.push_back({decode, decode + offset, key});
    }

    void readChunks() {
        Table offsets = tableOf(fourCC("stco"), 8, 4);
        Rows runs = tableOf(fourCC("stsc"), 8, 12).rows;
        Rows sizes = openSizes();
        const bool wide = offsets.type == fourCC("co64");
        bool more = runs.next();
        std::uint64_t perChunk = 0;
        std::uint64_t sample = 0;
        for (std::uint64_t chunk = 1; sample < stored_ && within(chunk) && offsets.rows.next(); ++chunk) {
            while (more && runs.u32(0) <= chunk) {
                perChunk = runs.u32(4);
                more = runs.next();
            }
            const std::uint64_t count = std::min(perChunk, stored_ - sample);
            const std::uint64_t offset = wide ? offsets.rows.u64(0) : offsets.rows.u32(0);
            addChunk(offset, sample, count, addSamples(sizes, sample, count));
            sample += count;
        }
        graph_.samples = sample;
    }

    Rows openSizes() {
        constexpr unsigned int kBefore = 12;
        Table table = tableOf(fourCC("stsz"), kBefore, 4);
        stored_ = table.stated;
        listed_ = table.second == 0;
        // The size may stand for what is counted in another way than in bytes.
        if (!listed_ && stored_)
            constant_ = static_cast<double>(payloadBytes(track_)) / static_cast<double>(stored_);
        return table.rows;
    }

    /// Their bytes.
    double addSamples(Rows& sizes, std::uint64_t sample, std::uint64_t count) {
        if (!listed_) {
            const double bytes = constant_ * static_cast<double>(count);
            addBits(timeOf(sample), timeOf(sample + count), bytes * 8);
            return bytes;
        }
        double sum = 0;
        for (std::uint64_t i = sample; i < sample + count && within(i) && sizes.next(); ++i) {
            const double size = sizes.u32(0);
            addBits(timeOf(i), timeOf(i + 1), size * 8);
            sum += size;
        }
        return sum;
    }

    void addBits(double begin, double end, double bits) {
        spread(begin * perSecond_, end * perSecond_,
               [this, bits](std::size_t i, double share, double, double) { graph_.bits[i] += bits * share; });
    }

    void addChunk(std::uint64_t offset, std::uint64_t sample, std::uint64_t count, double bytes) {
        ++graph_.chunks;
        graph_.bytes += bytes;
        if (offset >= fileSize_) {
            ++graph_.chunksOutside;
            return;
        }
        const double begin = timeOf(sample);
        const double length = timeOf(sample + count) - begin;
        const double from = static_cast<double>(offset) * perByte_;
        // Chunks that all reach over the whole file are damage, and not worth the time.
        constexpr std::uint64_t kMostSteps = std::uint64_t{1} << 26;
        const double to = steps_ < kMostSteps ? from + bytes * perByte_ : from;
        spread(from, to, [=, this](std::size_t i, double share, double low, double high) {
            FileColumn& column = graph_.places[i];
            ++steps_;
            column.bytes += bytes * share;
            column.begin = std::min(column.begin, begin + length * std::clamp(low, 0.0, 1.0));
            column.end = std::max(column.end, begin + length * std::clamp(high, 0.0, 1.0));
        });
    }

    TableStore& store_;
    QT::QTTrack& track_;
    QT::QTAtom* stbl_;
    std::uint64_t fileSize_;
    double perSecond_;
    double perByte_;
    TimeRuns times_;
    TrackGraph graph_;
    std::vector<std::uint32_t> keys_; // the first of them
    std::uint64_t stored_ = 0;
    bool listed_ = true;
    double constant_ = 0;
    std::uint64_t steps_ = 0;
};

} // namespace

double mediaSeconds(TableStore& store, QT::QTTrack& track) {
    const TimeRuns times(
        store, atomAt<QT::QTAtom>(track.getTrak(), {fourCC("mdia"), fourCC("minf"), fourCC("stbl")}));
    return static_cast<double>(times.ticks()) / std::max(1U, track.getAtomMediaTimeScale());
}

TrackGraph readGraph(TableStore& store, QT::QTTrack& track, double seconds, std::uint64_t fileSize) {
    return Reader(store, track, seconds, fileSize).read();
}

} // namespace Ketra::Tool::Report
