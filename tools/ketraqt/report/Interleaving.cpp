// How the tracks lie in the file between one another.
#include "Text.h"
#include "report/Axis.h"
#include "report/Markup.h"
#include "report/Report.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <iterator>

namespace Ketra::Tool::Report {

namespace {

constexpr double kPlot = 200;
constexpr double kLane = 18;
constexpr double kGap = 10;
constexpr double kWidth = kGrid / static_cast<double>(kColumns);

bool used(const FileColumn& column) { return column.end >= column.begin; }

std::vector<const TrackPart*> placedTracks(const MovieParts& movie) {
    std::vector<const TrackPart*> list;
    for (const TrackPart& track : movie.tracks) {
        if (std::any_of(track.graph.places.begin(), track.graph.places.end(), used)) list.push_back(&track);
    }
    return list;
}

double middle(const FileColumn& column) { return (column.begin + column.end) / 2; }

/// Time over place. Lines of tracks that go along together lie in one another, the heaviest below.
void addTimes(std::string& page, const MovieParts& movie, std::vector<const TrackPart*> tracks) {
    std::stable_sort(tracks.begin(), tracks.end(),
                     [](const TrackPart* a, const TrackPart* b) { return a->graph.bytes > b->graph.bytes; });
    auto out = std::back_inserter(page);
    openStretched(page, 0, kPlot);
    std::size_t depth = 0;
    for (const TrackPart* track : tracks) {
        fmt::format_to(out, "<path class=\"course w{} {}\" d=\"", std::min<std::size_t>(depth++, 3),
                       track->colour);
        const auto heightOf = [&movie](double seconds) {
            return decimal(kGrid * (1 - std::min(1.0, seconds / movie.seconds)), 0);
        };
        const auto& places = track->graph.places;
        const auto inUse = std::count_if(places.begin(), places.end(), used);
        char command = 'M';
        for (std::size_t i = 0; i < kColumns; ++i) {
            if (!used(places[i])) continue;
            const std::string x = decimal((static_cast<double>(i) + 0.5) * kWidth, 1);
            if (inUse == 1) { // all its times in one place
                fmt::format_to(out, "M{} {}V{}", x, heightOf(places[i].begin), heightOf(places[i].end));
            } else {
                fmt::format_to(out, "{}{} {}", command, x, heightOf(middle(places[i])));
            }
            command = 'L';
        }
        page += "\"/>";
    }
    closeStretched(page);
}

/// Blocks where the track has bytes, the higher the more of the bytes there are its own.
void addLane(std::string& page, const TrackPart& track, double fileSize, double top) {
    const double columnBytes = std::max(1.0, fileSize / static_cast<double>(kColumns));
    auto out = std::back_inserter(page);
    fmt::format_to(out, "<text class=\"y\" x=\"-8\" y=\"{}\">{}</text>", decimal(top + kLane - 5),
                   track.lane);
    fmt::format_to(out, "<line class=\"row\" x1=\"0\" x2=\"100%\" y1=\"{}\" y2=\"{}\"/>",
                   decimal(top + kLane - 3), decimal(top + kLane - 3));
    openStretched(page, top, kLane - 3);
    fmt::format_to(out, "<path class=\"block {}\" d=\"", track.colour);
    const auto levelOf = [&](std::size_t i) {
        constexpr int kLevels = 5;
        const FileColumn& column = track.graph.places[i];
        if (!used(column)) return 0;
        const double share = std::min(1.0, column.bytes / columnBytes);
        return 1 + static_cast<int>(std::lround(share * (kLevels - 1)));
    };
    for (std::size_t i = 0; i < kColumns;) {
        const int level = levelOf(i);
        std::size_t end = i + 1;
        while (end < kColumns && levelOf(end) == level) {
            ++end;
        }
        if (level > 0) {
            fmt::format_to(out, "M{} {}h{}v-{}h-{}z", decimal(static_cast<double>(i) * kWidth, 1), kGrid,
                           decimal(static_cast<double>(end - i) * kWidth, 1), level * 200,
                           decimal(static_cast<double>(end - i) * kWidth, 1));
        }
        i = end;
    }
    page += "\"/>";
    closeStretched(page);
}

void addAtomLane(std::string& page, const MovieParts& movie, double top) {
    auto out = std::back_inserter(page);
    fmt::format_to(out, "<text class=\"y\" x=\"-8\" y=\"{}\">atoms</text>", decimal(top + kLane - 5));
    constexpr int kMost = 200;
    int drawn = 0;
    for (const AtomRow& atom : movie.atoms) {
        if (atom.depth != 0 || !atom.placed || ++drawn > kMost) continue;
        const double size = static_cast<double>(movie.fileSize);
        const bool media = atom.type == QT::fourCC("mdat");
        const bool header = atom.type == QT::fourCC("moov");
        fmt::format_to(out,
                       "<rect class=\"atom {}\" x=\"{}\" width=\"{}\" y=\"{}\" height=\"{}\">"
                       "<title>{}, {}</title></rect>",
                       media    ? "media"
                       : header ? "header"
                                : "other",
                       at(static_cast<double>(atom.offset) / size),
                       at(static_cast<double>(std::min(atom.size, movie.fileSize - atom.offset)) / size),
                       decimal(top), decimal(kLane - 4), escaped(codeText(atom.type)),
                       plural(atom.size, "byte", "bytes"));
    }
}

/// The most that pictures and sound, read from front to back, are apart in time; negative without both.
double largestDistance(const std::vector<const TrackPart*>& tracks) {
    const auto isOf = [](const TrackPart* track, const char* type) { return (*track->info)["type"] == type; };
    const auto video = std::find_if(tracks.begin(), tracks.end(),
                                    [&](const TrackPart* track) { return isOf(track, "vide"); });
    const auto sound = std::find_if(tracks.begin(), tracks.end(),
                                    [&](const TrackPart* track) { return isOf(track, "soun"); });
    if (video == tracks.end() || sound == tracks.end()) return -1;
    const auto& pictures = (*video)->graph.places;
    const auto& tones = (*sound)->graph.places;
    double picture = 0;
    double tone = 0;
    double most = 0;
    const double end = std::min((*video)->graph.seconds, (*sound)->graph.seconds);
    for (std::size_t i = 0; i < kColumns; ++i) {
        if (used(pictures[i])) picture = std::min(end, pictures[i].end);
        if (used(tones[i])) tone = std::min(end, tones[i].end);
        most = std::max(most, std::max(picture - tone, tone - picture));
    }
    return most;
}

} // namespace

void addInterleaving(std::string& page, const MovieParts& movie) {
    openSection(
        page, "interleaving", "Interleaving",
        "From left to right the file, from bottom to top the media time that lies there: tracks that are "
        "stored for playing side by side rise together. Below, the places of each track; the higher a "
        "block, the more of the bytes there belong to it.");
    const std::vector<const TrackPart*> tracks = placedTracks(movie);
    if (tracks.empty() || movie.seconds <= 0 || movie.fileSize == 0) {
        page += "<p>No track has chunks in this file.</p>";
        closeSection(page);
        return;
    }
    const double fileSize = static_cast<double>(movie.fileSize);
    const double height = kPlot + kGap + kLane * static_cast<double>(tracks.size() + 1);
    page += "<figure>";
    addLegend(page, movie);
    openGraph(page, height, byteAxis(fileSize), "Media time over position in the file, for each track");
    addRows(page, kPlot, timeAxis(movie.seconds));
    addTimes(page, movie, tracks);
    double top = kPlot + kGap;
    for (const TrackPart* track : tracks) {
        addLane(page, *track, fileSize, top);
        top += kLane;
    }
    addAtomLane(page, movie, top);
    closeGraph(page);
    const double distance = largestDistance(tracks);
    page += "<figcaption>";
    if (distance >= 0)
        page += "Read from front to back, video and sound are at most " + timeText(distance) + " apart. ";
    for (const TrackPart& track : movie.tracks) {
        fmt::format_to(std::back_inserter(page), "Track {}: {}", track.id,
                       plural(track.graph.chunks, "chunk", "chunks"));
        if (track.graph.chunksOutside)
            page += ", " + grouped(track.graph.chunksOutside) + " of them behind the end of the file";
        page += ". ";
    }
    page += "</figcaption></figure>";
    closeSection(page);
}

} // namespace Ketra::Tool::Report
