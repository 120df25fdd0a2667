#include "remux/Plan.h"

#include "Atoms.h"
#include "Text.h"
#include "ToolError.h"
#include "remux/CopiedTrack.h"
#include "remux/Descriptions.h"
#include "remux/NewTracks.h"

#include <qt/QTAtoms.h>

#include <algorithm>
#include <fmt/format.h>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

constexpr unsigned int kMovieTimeScale = 600;

template <class List, class Value>
bool contains(const List& list, const Value& value) {
    return std::find(list.begin(), list.end(), value) != list.end();
}

/// Makes the plan for one movie.
class Planner {
public:
    Planner(const RemuxOptions& options, Plan& plan)
        : options_(options), plan_(plan), fromQuickTime_(flavourOf(plan.movie) == QT::kMOV) {}

    void plan();

private:
    void refuseFragments() const;
    bool isLeftOut(const QT::QTTrack& track, MediaKind kind) const;
    void consider(QT::QTTrack& track);
    void refuseOtherFiles(const QT::QTTrack& track) const;
    double seconds() const;
    void addNewTracks();
    void linkOld();
    void linkNew(std::size_t to, unsigned int type);
    bool replacesChapters() const { return options_.chapters != "keep"; }

    const RemuxOptions& options_;
    Plan& plan_;
    bool fromQuickTime_;
    std::vector<unsigned int> chapterIDs_;
};

void Planner::refuseFragments() const {
    const auto* moov = childOf<QT::QTAtom>(plan_.movie.getRoot(), fourCC("moov"));
    if (childOf<QT::QTAtom>(moov, fourCC("mvex")) ||
        childOf<QT::QTAtom>(plan_.movie.getRoot(), fourCC("moof"))) {
        throw ToolError(kMalformed, "the movie is in fragments, which are not read");
    }
}

bool Planner::isLeftOut(const QT::QTTrack& track, MediaKind kind) const {
    if (replacesChapters() && contains(chapterIDs_, track.getID())) return true;
    return kind == MediaKind::kTimecode && !options_.startTimecode.empty();
}

void Planner::refuseOtherFiles(const QT::QTTrack& track) const {
    // Flags that are read keep their first byte in the low bits.
    constexpr unsigned int kSameFile = 1U | 1U << 16;
    const auto* references =
        atomAt<QT::DREF>(track.getTrak(), {fourCC("mdia"), fourCC("minf"), fourCC("dinf"), fourCC("dref")});
    const unsigned int count = references ? references->getNumberOfEntries() : 0;
    for (unsigned int i = 0; i < count; ++i) {
        const QT::DREFEntry* entry = references->getDataReferenceEntry(i);
        if (!entry || (entry->getFlags() & kSameFile) != 0) continue;
        throw ToolError(kCannotRead, fmt::format("the media of track {} is in another file", track.getID()));
    }
}

void Planner::consider(QT::QTTrack& track) {
    const bool wanted = contains(options_.tracks, track.getID());
    if (!options_.tracks.empty() && !wanted) return;
    MediaKind kind = MediaKind::kVideo;
    const auto* sizes =
        atomAt<QT::STSZ>(track.getTrak(), {fourCC("mdia"), fourCC("minf"), fourCC("stbl"), fourCC("stsz")});
    if (!mediaKindOf(track, kind) || !sizes || sizes->getNumberOfEntries() == 0) {
        if (wanted) {
            throw ToolError(kUsage, fmt::format("track {} has no samples that are media", track.getID()));
        }
        plan_.notes.push_back(fmt::format("track {} is left out: no media", track.getID()));
        return;
    }
    if (isLeftOut(track, kind)) return;
    const unsigned int format = storedFormat(track);
    if (!isAllowed(plan_.flavour, kind, format)) {
        const std::string what = fmt::format("track {} is \"{}\", which has no place in {}", track.getID(),
                                             codeText(format), flavourName(plan_.flavour));
        const bool media = kind == MediaKind::kVideo || kind == MediaKind::kSound;
        if (wanted || media) throw ToolError(kNotAllowed, what);
        plan_.notes.push_back(what);
        return;
    }
    refuseOtherFiles(track);
    plan_.tracks.push_back(std::make_unique<CopiedTrack>(track, kind, plan_.source.stream(), fromQuickTime_));
}

/// How long the tracks last that are carried over.
double Planner::seconds() const {
    double longest = 0;
    for (const auto& input : plan_.tracks) {
        const QT::QTTrack* track = plan_.movie.getTrackID(input->sourceID());
        if (!track) continue;
        double lasts = track->getDuration();
        if (const auto* list = atomAt<QT::ELST>(track->getTrak(), {fourCC("edts"), fourCC("elst")})) {
            std::uint64_t units = 0;
            for (const Edit& edit : editsOf(plan_.source.stream(), *list)) {
                units += edit.duration;
            }
            if (units) lasts = static_cast<double>(units) / plan_.times.timeScale;
        }
        longest = std::max(longest, lasts);
    }
    return longest;
}

void Planner::linkNew(std::size_t to, unsigned int type) {
    for (std::size_t i = 0; i < plan_.tracks.size(); ++i) {
        const MediaKind kind = plan_.tracks[i]->kind();
        const bool names = kind == MediaKind::kVideo || (type == fourCC("chap") && kind == MediaKind::kSound);
        if (names) plan_.references.push_back({i, type, to});
    }
}

void Planner::addNewTracks() {
    const double lasts = seconds();
    if (replacesChapters() && options_.chapters != "drop") {
        const std::vector<Chapter> chapters = readChapters(options_.chapters);
        if (!chapters.empty()) {
            if (!isAllowed(plan_.flavour, MediaKind::kText, fourCC("text")))
                throw ToolError(kNotAllowed,
                                fmt::format("chapters have no place in {}", flavourName(plan_.flavour)));
            // In front: there are readers that take the last "chap" that they meet for the reference, even
            // the mark in the user data of the chapter track.
            plan_.tracks.insert(plan_.tracks.begin(), std::make_unique<ChapterTrack>(chapters, lasts));
            linkNew(0, fourCC("chap"));
        }
    }
    if (!options_.startTimecode.empty()) {
        if (!isAllowed(plan_.flavour, MediaKind::kTimecode, fourCC("tmcd")))
            throw ToolError(kNotAllowed,
                            fmt::format("a timecode has no place in {}", flavourName(plan_.flavour)));
        const FrameRate rate = parseRate(options_.rate);
        plan_.tracks.push_back(
            std::make_unique<TimecodeTrack>(parseTimecode(options_.startTimecode, rate), rate, lasts));
        linkNew(plan_.tracks.size() - 1, fourCC("tmcd"));
    }
}

/// References between tracks that are carried over.
void Planner::linkOld() {
    for (std::size_t i = 0; i < plan_.tracks.size(); ++i) {
        const QT::QTTrack* track = plan_.movie.getTrackID(plan_.tracks[i]->sourceID());
        const auto* references = track ? childOf<QT::TREF>(track->getTrak(), fourCC("tref")) : nullptr;
        if (!references) continue;
        for (QT::QTAtom* child : references->getChildren()) {
            const auto* one = dynamic_cast<QT::TrackReference*>(child);
            if (!one || one->getType() == fourCC("hint")) continue;
            for (std::size_t to = 0; to < plan_.tracks.size(); ++to) {
                if (one->getTrackID() && plan_.tracks[to]->sourceID() == one->getTrackID())
                    plan_.references.push_back({i, one->getType(), to});
            }
        }
    }
}

void Planner::plan() {
    refuseFragments();
    for (const unsigned int id : options_.tracks) {
        trackOf(plan_.movie, id); // throws without it
    }
    chapterIDs_ = chapterTracks(plan_.movie);
    if (replacesChapters()) plan_.userDataLeftOut.push_back(fourCC("chpl"));
    for (QT::QTTrack* track : plan_.movie.getTracks()) {
        consider(*track);
    }
    if (plan_.tracks.empty()) throw ToolError(kMalformed, "there is no track with samples to be written");
    addNewTracks();
    linkOld();
}

} // namespace

std::uint64_t Plan::bytes() const {
    std::uint64_t sum = 0;
    for (const auto& track : tracks) {
        sum += track->bytes();
    }
    return sum;
}

Plan makePlan(const RemuxOptions& options, QT::QTMovie& movie, Source& source) {
    const auto* header = atomAt<QT::MVHD>(movie.getRoot(), {fourCC("moov"), fourCC("mvhd")});
    Plan plan{movie,
              source,
              options.flavour.empty() ? flavourOf(movie) : flavourOf(options.flavour),
              header ? movieTimes(source.stream(), *header) : MovieTimes(),
              options.chunkDuration,
              options.chunkSize,
              {},
              {},
              {},
              {}};
    if (plan.times.timeScale == 0) plan.times.timeScale = kMovieTimeScale;
    Planner(options, plan).plan();
    return plan;
}

} // namespace Ketra::Tool
