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
    const QT::QTAtom* table(unsigned int type) const { return childOf<QT::QTAtom>(stbl_, type); }
    double inSeconds(std::uint64_t ticks) const { return static_cast<double>(ticks) / graph_.scale; }
    double timeOf(std::uint64_t sample) const { return inSeconds(times_.tickOf(sample)); }

    void readKeys() {
        TableWords words(store_, table(fourCC("stss")));
        std::uint32_t count = 0;
        graph_.keysListed = words.found() && words.next(count);
        double previous = 0;
        std::uint32_t number = 0;
        for (std::uint64_t i = 0; i < count && words.next(number); ++i) {
            if (i >= kMostEntries) {
                graph_.cutShort = true;
                break;
            }
            if (number == 0) continue;
            ++graph_.keyCount;
            if (keys_.size() < kFirstSamples) keys_.push_back(number);
            const double time = timeOf(number - 1);
            graph_.longestKeyGap = std::max(graph_.longestKeyGap, time - previous);
            previous = time;
            spread(time * perSecond_, time * perSecond_,
                   [this](std::size_t i_, double, double, double) { ++graph_.keys[i_]; });
        }
        if (graph_.keyCount) graph_.longestKeyGap = std::max(graph_.longestKeyGap, graph_.seconds - previous);
    }

    void readOffsets() {
        TableWords words(store_, table(fourCC("ctts")));
        std::uint32_t runs = 0;
        std::uint64_t sample = 0;
        if (words.found()) words.next(runs);
        for (std::uint64_t i = 0; i < runs && sample < times_.samples(); ++i) {
            std::uint32_t count = 0;
            std::uint32_t stored = 0;
            if (!words.next(count) || !words.next(stored)) break;
            if (i >= kMostEntries) {
                graph_.cutShort = true;
                break;
            }
            addOffset(sample, count, static_cast<double>(static_cast<std::int32_t>(stored)) / graph_.scale);
            sample += count;
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
        TableWords offsets(store_, table(fourCC("stco")));
        TableWords runs(store_, table(fourCC("stsc")));
        TableWords sizes(store_, table(fourCC("stsz")));
        std::uint32_t chunks = 0;
        std::uint32_t runCount = 0;
        if (!offsets.next(chunks) || !runs.next(runCount) || !openSizes(sizes)) return;
        Run next;
        bool more = nextRun(runs, runCount, next);
        Run run;
        std::uint64_t sample = 0;
        for (std::uint64_t chunk = 1; chunk <= chunks && sample < stored_; ++chunk) {
            std::uint64_t offset = 0;
            if (!nextOffset(offsets, offset)) break;
            if (chunk > kMostEntries) {
                graph_.cutShort = true;
                break;
            }
            while (more && next.firstChunk <= chunk) {
                run = next;
                more = nextRun(runs, runCount, next);
            }
            const std::uint64_t count = std::min<std::uint64_t>(run.samples, stored_ - sample);
            addChunk(offset, sample, count, addSamples(sizes, sample, count));
            sample += count;
        }
        graph_.samples = sample;
    }

    struct Run {
        std::uint32_t firstChunk = 0;
        std::uint32_t samples = 0;
    };
    static bool nextRun(TableWords& words, std::uint32_t& left, Run& run) {
        std::uint32_t description = 0;
        if (left == 0) return false;
        --left;
        return words.next(run.firstChunk) && words.next(run.samples) && words.next(description);
    }

    static bool nextOffset(TableWords& words, std::uint64_t& offset) {
        if (words.type() == fourCC("co64")) return words.next64(offset);
        std::uint32_t word = 0;
        if (!words.next(word)) return false;
        offset = word;
        return true;
    }

    bool openSizes(TableWords& words) {
        std::uint32_t constant = 0;
        std::uint32_t count = 0;
        if (!words.next(constant) || !words.next(count)) return false;
        stored_ = count;
        // The size may stand for what is counted in another way than in bytes.
        if (constant) constant_ = count ? static_cast<double>(payloadBytes(track_)) / count : 0;
        listed_ = constant == 0;
        return true;
    }

    /// Their bytes.
    double addSamples(TableWords& sizes, std::uint64_t sample, std::uint64_t count) {
        if (!listed_) {
            const double bytes = constant_ * static_cast<double>(count);
            addBits(timeOf(sample), timeOf(sample + count), bytes * 8);
            return bytes;
        }
        double sum = 0;
        for (std::uint64_t i = 0; i < count; ++i) {
            std::uint32_t size = 0;
            if (!sizes.next(size)) break;
            if (sample + i >= kMostEntries) {
                graph_.cutShort = true;
                break;
            }
            addBits(timeOf(sample + i), timeOf(sample + i + 1), static_cast<double>(size) * 8);
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
