// Durations against each other, and edit lists against the media.
#include "check/Heads.h"

#include <qt/QTTypes.h>

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

/// Durations are rounded to the ticks of the movie, up or down.
constexpr double kRounding = 1.01;

struct Edits {
    TablePlace table;
    bool wide = false;
    double duration = 0; // in the movie's time scale
};

struct Edit {
    double duration;
    std::int64_t mediaTime; // -1: empty
    int rate;               // 16.16
};

Edit editOf(const Rows& row, bool wide) {
    if (wide)
        return {static_cast<double>(row.u64(0)), static_cast<std::int64_t>(row.u64(8)),
                static_cast<int>(row.u32(16))};
    return {static_cast<double>(row.u32(0)), static_cast<int>(row.u32(4)), static_cast<int>(row.u32(8))};
}

TablePlace editTable(const Subject& subject, const TrackHead& track, bool& wide) {
    constexpr unsigned int kBefore = 8;
    constexpr unsigned int kNarrow = 12;
    constexpr unsigned int kWide = 20;
    const AtomPlace* edts = track.trak->child(fourCC("edts"));
    const AtomPlace* elst = edts ? edts->child(fourCC("elst")) : nullptr;
    wide = elst && subject.bytes.u8(elst->body()) == 1;
    return tableOf(subject, elst, kBefore, wide ? kWide : kNarrow);
}

class TrackTimes {
public:
    TrackTimes(const Subject& subject, const MovieHead& movie, TrackHead& track)
        : subject_(subject), movie_(movie), track_(track) {}

    void check() {
        const TablePlace edits = editTable(subject_, track_, wide_);
        if (movie_.timeScale == 0 || track_.timeScale == 0) return;
        readEdits(edits);
        checkMedia();
        checkTrack(edits.count);
    }

private:
    void readEdits(const TablePlace& edits) {
        Rows rows = edits.rows(subject_.bytes);
        bool started = false;
        while (rows.next()) {
            const Edit edit = editOf(rows, wide_);
            sum_ += edit.duration;
            if (!started && edit.mediaTime < 0) {
                track_.shift += edit.duration / movie_.timeScale;
            } else if (!started) {
                started = true;
                track_.shift -= static_cast<double>(edit.mediaTime) / track_.timeScale;
            }
            checkEdit(*edits.atom, rows.at(), edit);
        }
    }

    void checkEdit(const AtomPlace& elst, std::uint64_t at, const Edit& edit) {
        if (edit.mediaTime < -1) {
            subject_.findings.add(Severity::Error, "edit-time", elst.path, at, [&] {
                return fmt::format("the edit starts at the media time {}", edit.mediaTime);
            });
        }
        if (edit.mediaTime < 0 || subject_.fragmented) return;
        // A rate of 0 shows one picture all the time.
        const double played = edit.duration * track_.timeScale / movie_.timeScale * (edit.rate / 65536.0);
        const double end = static_cast<double>(edit.mediaTime) + std::max(0.0, played);
        const auto least = static_cast<double>(std::max(track_.ticks, track_.mediaDuration.value_or(0)));
        const double room = least + static_cast<double>(std::max<std::int64_t>(0, track_.latest));
        const double tick = kRounding * std::max(1.0, double(track_.timeScale) / movie_.timeScale);
        if (end <= room + tick) return;
        // Writers that leave priming samples of sound out are off by one.
        const bool little = end <= room + tick + track_.longest;
        subject_.findings.add(little ? Severity::Note : Severity::Warning, "edit-beyond-media", elst.path, at,
                              [&] {
                                  return fmt::format("the edit ends {:.6f} s behind the media",
                                                     (end - room) / track_.timeScale);
                              });
    }

    void checkMedia() {
        if (!track_.mediaDuration || subject_.fragmented || !track_.tables) return;
        const std::uint64_t told = *track_.mediaDuration;
        if (told == track_.ticks) return;
        subject_.findings.add(
            Severity::Warning, "media-duration", track_.media->path, track_.media->offset,
            [&] { return fmt::format("it says {} ticks, the samples last {}", told, track_.ticks); });
    }

    void checkTrack(std::uint64_t edits) {
        if (!track_.duration || subject_.fragmented) return;
        const double told = static_cast<double>(*track_.duration);
        const double media = static_cast<double>(track_.mediaDuration.value_or(track_.ticks)) *
                             movie_.timeScale / track_.timeScale;
        const double expected = edits ? sum_ : media;
        const double rounding = kRounding * static_cast<double>(std::max<std::uint64_t>(1, edits));
        if (std::abs(told - expected) <= rounding) return;
        // Common writers tell that of the media, which a player that goes by the edits does not mind.
        const bool common = std::abs(told - media) <= rounding;
        subject_.findings.add(common ? Severity::Note : Severity::Warning, "track-duration",
                              track_.header->path, track_.header->offset, [&] {
                                  return fmt::format("it says {:.6f} s, {} {:.6f}", told / movie_.timeScale,
                                                     edits ? "the edits last" : "the media last",
                                                     expected / movie_.timeScale);
                              });
    }

    const Subject& subject_;
    const MovieHead& movie_;
    TrackHead& track_;
    bool wide_ = false;
    double sum_ = 0;
};

} // namespace

void checkTimes(const Subject& subject, MovieHead& movie) {
    std::uint64_t longest = 0;
    for (TrackHead& track : movie.tracks) {
        TrackTimes(subject, movie, track).check();
        // What a server sends is not shown.
        if (track.handler != fourCC("hint")) longest = std::max(longest, track.duration.value_or(0));
    }
    if (!movie.duration || movie.tracks.empty() || subject.fragmented || movie.timeScale == 0) return;
    const double told = static_cast<double>(*movie.duration);
    if (std::abs(told - static_cast<double>(longest)) <= kRounding) return;
    subject.findings.add(Severity::Warning, "movie-duration", movie.header->path, movie.header->offset, [&] {
        return fmt::format("it says {:.6f} s, the longest track lasts {:.6f}", told / movie.timeScale,
                           static_cast<double>(longest) / movie.timeScale);
    });
}

} // namespace Ketra::Tool
