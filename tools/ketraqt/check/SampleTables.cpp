// The sample tables of one track: each in itself, and their sums with each other.
#include "Text.h"
#include "check/Tables.h"

#include <qt/QTTypes.h>

#include <algorithm>
#include <fmt/format.h>
#include <limits>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

constexpr unsigned int kBeforeRows = 8; // version and flags, the count

class TableCheck {
public:
    TableCheck(const Subject& subject, TrackHead& track) : subject_(subject), track_(track) {}

    TrackTables check() {
        const AtomPlace* offsets = atom(fourCC("stco"));
        const AtomPlace* wide = atom(fourCC("co64"));
        tables_.chunks =
            offsets ? tableOf(subject_, offsets, kBeforeRows, 4) : tableOf(subject_, wide, kBeforeRows, 8);
        tables_.times = tableOf(subject_, atom(fourCC("stts")), kBeforeRows, 8);
        tables_.runs = tableOf(subject_, atom(fourCC("stsc")), kBeforeRows, 12);
        tables_.sizes = SampleSizes(subject_, atom(fourCC("stsz")), atom(fourCC("stz2")));
        tables_.descriptions = readDescriptions(subject_, track_, tables_.sizes.constant() == 1);
        track_.samples = tables_.sizes.count();
        checkTimes();
        checkRuns();
        checkOffsets();
        checkSync(atom(fourCC("stss")));
        checkSync(atom(fourCC("stps")));
        checkDependencies();
        return std::move(tables_);
    }

private:
    const AtomPlace* atom(unsigned int type) const { return track_.tables->child(type); }

    template <class Text>
    void add(Severity severity, const char* rule, const TablePlace& table, std::uint64_t at,
             const Text& text) {
        subject_.findings.add(severity, rule, table.atom->path, at, text);
    }

    void checkTimes() {
        const TablePlace& table = tables_.times;
        if (!table.atom) return;
        std::uint64_t samples = 0;
        Rows rows = table.rows(subject_.bytes);
        while (rows.next()) {
            const unsigned int count = rows.u32(0);
            const unsigned int duration = rows.u32(4);
            samples += count;
            if (count) track_.longest = std::max(track_.longest, duration);
            track_.ticks += std::uint64_t{count} * duration;
            if (count == 0) {
                add(Severity::Warning, "empty-run", table, rows.at(), "an entry for no samples");
            } else if (duration == 0 && rows.left() > 0 && track_.handler != fourCC("hint")) {
                // Packets of one time follow each other.
                add(Severity::Warning, "zero-duration", table, rows.at(),
                    [count] { return fmt::format("{} samples in the middle last no time", count); });
            }
        }
        compareSums(table, samples, "times");
    }

    /// Too few entries leave samples out, too many are only odd.
    void compareSums(const TablePlace& table, std::uint64_t samples, const char* what) {
        if (samples == track_.samples) return;
        add(samples < track_.samples ? Severity::Error : Severity::Warning, "table-sum", table,
            table.atom->offset,
            [&] { return fmt::format("{} of {} samples, but sizes of {}", what, samples, track_.samples); });
    }

    void checkRuns() {
        const TablePlace& table = tables_.runs;
        if (!table.atom) return;
        const std::uint64_t chunks = tables_.chunks.count;
        std::uint64_t before = 0; // the first chunk of the row before
        std::uint64_t samplesBefore = 0;
        std::uint64_t sum = 0;
        Rows rows = table.rows(subject_.bytes);
        while (rows.next()) {
            const unsigned int first = rows.u32(0);
            checkRun(table, rows, before, chunks);
            if (before) sum = plus(sum, before, std::min<std::uint64_t>(first, chunks + 1), samplesBefore);
            before = std::max<std::uint64_t>(before, first);
            samplesBefore = rows.u32(4);
        }
        if (before) sum = plus(sum, before, chunks + 1, samplesBefore);
        compareSums(table, sum, "chunks");
    }

    void checkRun(const TablePlace& table, const Rows& row, std::uint64_t before, std::uint64_t chunks) {
        const unsigned int first = row.u32(0);
        const unsigned int description = row.u32(8);
        if (before == 0 && first != 1) {
            add(Severity::Error, "chunk-runs", table, row.at(), [first] {
                return fmt::format("the first entry is for the chunks from {} on, not from 1", first);
            });
        } else if (before != 0 && first <= before) {
            add(Severity::Error, "chunk-runs", table, row.at(), [=] {
                return fmt::format("an entry for the chunks from {} on follows one from {} on", first,
                                   before);
            });
        } else if (first > chunks && track_.samples > 0) {
            add(Severity::Warning, "chunk-runs", table, row.at(), [=] {
                return fmt::format("an entry for the chunks from {} on, of which there are {}", first,
                                   chunks);
            });
        }
        if (row.u32(4) == 0) add(Severity::Warning, "empty-run", table, row.at(), "chunks without samples");
        if (description == 0 || description > tables_.descriptions.size()) {
            add(Severity::Error, "description-index", table, row.at(), [&] {
                return fmt::format("sample description {} of {}", description, tables_.descriptions.size());
            });
        }
    }

    static std::uint64_t plus(std::uint64_t sum, std::uint64_t from, std::uint64_t to,
                              std::uint64_t samples) {
        if (to <= from || samples == 0) return sum;
        constexpr std::uint64_t kMost = std::numeric_limits<std::uint64_t>::max();
        const std::uint64_t chunks = to - from; // both below 2^33
        return chunks > (kMost - sum) / samples ? kMost : sum + chunks * samples;
    }

    void checkOffsets() {
        const TablePlace table = tableOf(subject_, atom(fourCC("ctts")), kBeforeRows, 8);
        if (!table.atom) return;
        std::uint64_t samples = 0;
        Rows rows = table.rows(subject_.bytes);
        while (rows.next()) {
            samples += rows.u32(0);
            track_.latest = std::max<std::int64_t>(track_.latest, static_cast<int>(rows.u32(4)));
        }
        if (table.count > 0) compareSums(table, samples, "composition times");
    }

    void checkSync(const AtomPlace* atom) {
        const TablePlace table = tableOf(subject_, atom, kBeforeRows, 4);
        unsigned int before = 0;
        Rows rows = table.rows(subject_.bytes);
        while (rows.next()) {
            const unsigned int sample = rows.u32(0);
            if (sample == 0 || sample > track_.samples) {
                add(Severity::Error, "sync-range", table, rows.at(), [&] {
                    return fmt::format("there is no sample {}, only 1 to {}", sample, track_.samples);
                });
            } else if (sample <= before) {
                add(Severity::Warning, "sync-order", table, rows.at(),
                    [=] { return fmt::format("sample {} is listed behind sample {}", sample, before); });
            }
            before = sample;
        }
    }

    void checkDependencies() {
        constexpr unsigned int kBefore = 4;
        const AtomPlace* sdtp = atom(fourCC("sdtp"));
        if (!sdtp || sdtp->bodySize() < kBefore) return;
        const std::uint64_t samples = sdtp->bodySize() - kBefore;
        if (samples == track_.samples) return;
        subject_.findings.add(Severity::Warning, "table-sum", sdtp->path, sdtp->offset, [&] {
            return fmt::format("dependencies of {} samples, but sizes of {}", samples, track_.samples);
        });
    }

    const Subject& subject_;
    TrackHead& track_;
    TrackTables tables_;
};

} // namespace

TrackTables checkTables(const Subject& subject, TrackHead& track) {
    return TableCheck(subject, track).check();
}

} // namespace Ketra::Tool
