// What is presented when: edits and chapters on the time line of the movie.
#include "report/Axis.h"
#include "report/Markup.h"
#include "report/Report.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>

namespace Ketra::Tool::Report {

namespace {

constexpr double kLane = 26;
constexpr std::size_t kMostEdits = 150;
constexpr std::size_t kMostChapters = 150;

/// An edit with its times in seconds.
struct Edit {
    double start;
    double duration;
    double media; ///< negative: nothing is presented
    double rate;
};

std::vector<Edit> editsOf(const MovieParts& movie, const TrackPart& track) {
    const double scale = std::max(1.0, movie.info["timescale"].get<double>());
    std::vector<Edit> edits;
    double start = 0;
    for (const auto& edit : (*track.info)["edits"]) {
        if (edits.size() == kMostEdits) break;
        const double duration = edit["duration"].get<double>() / scale;
        const double media = edit["media_time"].get<double>();
        edits.push_back(
            {start, duration, media < 0 ? -1 : media / track.graph.scale, edit["rate"].get<double>()});
        start += duration;
    }
    return edits;
}

void addBlock(std::string& page, const Edit& edit, double end, double top, const TrackPart& track,
              std::size_t number) {
    std::string what = edit.media < 0   ? "empty: nothing is presented"
                       : edit.rate == 0 ? "holds the media at " + timeText(edit.media)
                                        : "media from " + timeText(edit.media);
    if (edit.rate != 0 && edit.rate != 1) what += ", rate " + decimal(edit.rate);
    const double width = edit.duration / end;
    auto out = std::back_inserter(page);
    fmt::format_to(
        out,
        "<rect class=\"{} {}\" x=\"{}\" width=\"{}\" y=\"{}\" height=\"{}\" rx=\"2\"><title>Edit {}: {} to "
        "{}, {}</title></rect>",
        edit.media < 0 ? "empty" : "edit", track.colour, at(edit.start / end), at(width), decimal(top + 3),
        decimal(kLane - 7), number, timeText(edit.start), timeText(edit.start + edit.duration), what);
    const std::string label = edit.media < 0   ? "empty"
                              : edit.rate == 0 ? "hold"
                                               : "from " + timeText(edit.media);
    const double pixels = static_cast<double>(label.size()) * 7 + 8;
    if (width * 640 >= pixels) {
        fmt::format_to(out, "<text class=\"label{}\" x=\"{}\" y=\"{}\">{}</text>",
                       width * 264 >= pixels ? "" : " wide", at((edit.start + edit.duration / 2) / end),
                       decimal(top + kLane / 2 + 3), label);
    }
}

void addTrackLane(std::string& page, const MovieParts& movie, const TrackPart& track, double end,
                  double top) {
    fmt::format_to(std::back_inserter(page), "<text class=\"y\" x=\"-8\" y=\"{}\">{}</text>",
                   decimal(top + kLane / 2 + 3), track.lane);
    const std::vector<Edit> edits = editsOf(movie, track);
    if (edits.empty() && track.graph.seconds > 0) {
        addBlock(page, {0, std::min(end, track.graph.seconds), 0, 1}, end, top, track, 0);
        return;
    }
    std::size_t number = 0;
    for (const Edit& edit : edits) {
        ++number;
        if (edit.start >= end) break;
        addBlock(page, {edit.start, std::min(edit.duration, end - edit.start), edit.media, edit.rate}, end,
                 top, track, number);
    }
}

void addChapterLane(std::string& page, const Json& chapters, double end, double top) {
    auto out = std::back_inserter(page);
    fmt::format_to(out, "<text class=\"y\" x=\"-8\" y=\"{}\">chapters</text>", decimal(top + kLane / 2 + 3));
    std::size_t number = 0;
    for (const auto& chapter : chapters) {
        const double start = chapter["start"].get<double>();
        const double width = std::min(chapter["duration"].get<double>(), end - start) / end;
        if (++number > kMostChapters) break;
        if (!(start >= 0) || !(width >= 0)) continue;
        const std::string title = chapter["title"].is_string() ? chapter["title"].get<std::string>() : "";
        fmt::format_to(
            out,
            "<rect class=\"chapter p{}\" x=\"{}\" width=\"{}\" y=\"{}\" height=\"{}\"><title>Chapter {}: "
            "{}, {}</title></rect>",
            number % 2, at(start / end), at(width), decimal(top + 3), decimal(kLane - 7), number,
            escaped(title, 60), timeText(start));
        if (width * 640 >= 24) {
            fmt::format_to(out, "<text class=\"label{}\" x=\"{}\" y=\"{}\">{}</text>",
                           width * 264 >= 24 ? "" : " wide", at(start / end + width / 2),
                           decimal(top + kLane / 2 + 3), number);
        }
    }
}

/// Where the last of what is presented ends.
double endOf(const MovieParts& movie) {
    double end = movie.info["duration"].get<double>();
    for (const TrackPart& track : movie.tracks) {
        const std::vector<Edit> edits = editsOf(movie, track);
        end = std::max(end, edits.empty() ? track.graph.seconds : edits.back().start + edits.back().duration);
    }
    return end;
}

} // namespace

void addTimeline(std::string& page, const MovieParts& movie) {
    openSection(
        page, "timeline", "Timeline",
        "What each track presents at which time of the movie. An edit names the media time that it begins "
        "with; a hatched one is empty.");
    const double end = movie.info.is_object() ? endOf(movie) : 0;
    if (movie.tracks.empty() || !(end > 0)) {
        page += "<p>Nothing is presented.</p>";
        closeSection(page);
        return;
    }
    const Json& lists = movie.info["chapter_tracks"];
    const bool chapters = !lists.empty() && !lists[0]["chapters"].empty();
    page += "<figure><figcaption>Edits, by movie time</figcaption>";
    openGraph(page, kLane * static_cast<double>(movie.tracks.size() + (chapters ? 1 : 0)), timeAxis(end),
              "Edits of each track over the time of the movie");
    double top = 0;
    if (chapters) {
        addChapterLane(page, lists[0]["chapters"], end, top);
        top += kLane;
    }
    for (const TrackPart& track : movie.tracks) {
        addTrackLane(page, movie, track, end, top);
        top += kLane;
    }
    closeGraph(page);
    page += "</figure>";
    addComposition(page, movie);
    closeSection(page);
}

} // namespace Ketra::Tool::Report
