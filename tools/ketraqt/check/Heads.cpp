#include "check/Heads.h"

#include "Text.h"

#include <qt/QTTypes.h>

#include <algorithm>
#include <fmt/format.h>
#include <limits>
#include <unordered_map>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

constexpr unsigned int kVersion = 4; // version and flags

/// A header with times of 32 or, in version 1, of 64 bits.
struct TimedHeader {
    const AtomPlace* atom;
    bool wide;

    unsigned int timeSize() const { return wide ? 8 : 4; }
    std::uint64_t afterDates() const { return atom->body() + kVersion + 2 * std::uint64_t{timeSize()}; }
};

std::optional<std::uint64_t> durationAt(Bytes& bytes, std::uint64_t at, bool wide) {
    const std::uint64_t value = wide ? bytes.u64(at) : bytes.u32(at);
    const std::uint64_t unknown =
        wide ? std::numeric_limits<std::uint64_t>::max() : std::numeric_limits<unsigned int>::max();
    if (value == unknown) return std::nullopt;
    return value;
}

/// None when the atom is missing, or too short for what it should hold.
std::optional<TimedHeader> timedHeader(const Subject& subject, const AtomPlace* atom, unsigned int narrowSize,
                                       unsigned int wideSize) {
    if (!atom) return std::nullopt;
    const TimedHeader header{atom, subject.bytes.u8(atom->body()) == 1};
    const unsigned int needed = header.wide ? wideSize : narrowSize;
    if (atom->bodySize() >= needed) return header;
    subject.findings.add(Severity::Error, "short-atom", atom->path, atom->offset, [&] {
        return fmt::format("{} bytes where {} are needed", atom->bodySize(), needed);
    });
    return std::nullopt;
}

void checkScale(const Subject& subject, const AtomPlace& atom, unsigned int scale) {
    if (scale != 0) return;
    subject.findings.add(Severity::Error, "time-scale", atom.path, atom.offset, "its time scale is 0");
}

void readMovie(const Subject& subject, MovieHead& movie) {
    const auto header = timedHeader(subject, subject.movie.child(fourCC("mvhd")), 100, 112);
    if (!header) return;
    movie.header = header->atom;
    const std::uint64_t at = header->afterDates();
    movie.timeScale = subject.bytes.u32(at);
    movie.duration = durationAt(subject.bytes, at + 4, header->wide);
    movie.nextTrack = subject.bytes.u32(header->atom->body() + (header->wide ? 108 : 96));
    checkScale(subject, *movie.header, movie.timeScale);
}

void readTrackHeader(const Subject& subject, TrackHead& track) {
    const auto header = timedHeader(subject, track.trak->child(fourCC("tkhd")), 84, 96);
    if (!header) return;
    track.header = header->atom;
    const std::uint64_t at = header->afterDates();
    track.id = subject.bytes.u32(at);
    track.duration = durationAt(subject.bytes, at + 8, header->wide);
    if (track.id == 0) {
        subject.findings.add(Severity::Error, "track-id", track.header->path, at, "the track has the ID 0");
    }
}

void readMedia(const Subject& subject, TrackHead& track) {
    const AtomPlace* mdia = track.trak->child(fourCC("mdia"));
    if (!mdia) return;
    if (const auto header = timedHeader(subject, mdia->child(fourCC("mdhd")), 24, 36)) {
        track.media = header->atom;
        const std::uint64_t at = header->afterDates();
        track.timeScale = subject.bytes.u32(at);
        track.mediaDuration = durationAt(subject.bytes, at + 4, header->wide);
        checkScale(subject, *track.media, track.timeScale);
    }
    if (const AtomPlace* handler = mdia->child(fourCC("hdlr"))) {
        constexpr unsigned int kNeeded = 20;
        if (handler->bodySize() < kNeeded) {
            subject.findings.add(Severity::Error, "short-atom", handler->path, handler->offset,
                                 "it ends before the kind of media");
        }
        track.handler = subject.bytes.u32(handler->body() + 8);
    }
    if (const AtomPlace* minf = mdia->child(fourCC("minf"))) track.tables = minf->child(fourCC("stbl"));
}

/// Media of these kinds have a header of their own.
void checkMediaHeader(const Subject& subject, const TrackHead& track) {
    struct Kind {
        unsigned int handler;
        unsigned int header;
    };
    constexpr Kind kKinds[] = {
        {fourCC("vide"), fourCC("vmhd")}, {fourCC("soun"), fourCC("smhd")}, {fourCC("hint"), fourCC("hmhd")}};
    const AtomPlace* mdia = track.trak->child(fourCC("mdia"));
    const AtomPlace* minf = mdia ? mdia->child(fourCC("minf")) : nullptr;
    if (!minf) return;
    for (const Kind& kind : kKinds) {
        const AtomPlace* found = minf->child(kind.header);
        if (track.handler == kind.handler && !found && !minf->child(fourCC("gmhd"))) {
            subject.findings.add(Severity::Warning, "media-header", minf->path, minf->offset, [&] {
                return fmt::format("media of the kind {} have a {}", codeText(kind.handler),
                                   codeText(kind.header));
            });
        }
        // That of hints serves for other things that are neither seen nor heard.
        if (kind.header != fourCC("hmhd") && track.handler != kind.handler && track.handler != 0 && found) {
            subject.findings.add(Severity::Warning, "media-header", found->path, found->offset, [&] {
                return fmt::format("it is not that of the kind {}", codeText(track.handler));
            });
        }
    }
}

using Owners = std::unordered_map<unsigned int, const AtomPlace*>;

void checkIds(const Subject& subject, const MovieHead& movie, Owners& owners) {
    for (const TrackHead& track : movie.tracks) {
        if (!track.header || track.id == 0) continue;
        const auto owner = owners.emplace(track.id, track.trak);
        if (!owner.second) {
            subject.findings.add(Severity::Error, "track-id", track.header->path, track.header->offset, [&] {
                return fmt::format("{} has the ID {} already", owner.first->second->path, track.id);
            });
        }
        if (movie.header && track.id >= movie.nextTrack) {
            // Only who adds a track goes by it, which nobody does to fragments.
            subject.findings.add(subject.fragmented ? Severity::Note : Severity::Warning, "next-track-id",
                                 movie.header->path, movie.header->offset, [&] {
                                     return fmt::format("the next track ID is {}, but there is a track {}",
                                                        movie.nextTrack, track.id);
                                 });
        }
    }
}

void checkReferences(const Subject& subject, const TrackHead& track, const Owners& owners) {
    const AtomPlace* tref = track.trak->child(fourCC("tref"));
    if (!tref) return;
    for (const AtomPlace& kind : tref->children) {
        Rows ids(subject.bytes, kind.body(), kind.bodySize() / 4, 4);
        while (ids.next()) {
            const unsigned int id = ids.u32(0);
            if (id == 0 || owners.count(id)) continue; // 0 is a reference taken back
            subject.findings.add(Severity::Warning, "track-reference", kind.path, ids.at(),
                                 [&] { return fmt::format("there is no track {}", id); });
        }
    }
}

} // namespace

TablePlace tableOf(const Subject& subject, const AtomPlace* atom, unsigned int before, unsigned int rowSize) {
    if (!atom) return {};
    if (atom->bodySize() < before) {
        subject.findings.add(Severity::Error, "short-atom", atom->path, atom->offset,
                             "it ends before its number of entries");
        return {};
    }
    TablePlace table{atom, atom->body() + before, subject.bytes.u32(atom->body() + before - 4), rowSize};
    const std::uint64_t room = atom->bodySize() - before;
    if (table.count > room / rowSize) {
        subject.findings.add(Severity::Error, "table-size", atom->path, atom->offset, [&] {
            return fmt::format("{} entries do not fit, {} do", table.count, room / rowSize);
        });
        table.count = room / rowSize;
    } else if (room > table.count * rowSize) {
        subject.findings.add(Severity::Note, "table-room", atom->path, table.at + table.count * rowSize, [&] {
            return fmt::format("{} bytes behind the last entry", room - table.count * rowSize);
        });
    }
    return table;
}

MovieHead readHeads(const Subject& subject) {
    MovieHead movie;
    readMovie(subject, movie);
    for (const AtomPlace& child : subject.movie.children) {
        if (child.type != fourCC("trak")) continue;
        TrackHead track;
        track.trak = &child;
        readTrackHeader(subject, track);
        readMedia(subject, track);
        checkMediaHeader(subject, track);
        movie.tracks.push_back(track);
    }
    Owners owners;
    checkIds(subject, movie, owners);
    for (const TrackHead& track : movie.tracks) {
        checkReferences(subject, track, owners);
    }
    return movie;
}

} // namespace Ketra::Tool
