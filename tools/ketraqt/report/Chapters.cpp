// Chapter titles and timecode.
#include "report/Markup.h"
#include "report/Report.h"

#include <fmt/format.h>
#include <iterator>

namespace Ketra::Tool::Report {

namespace {

constexpr std::size_t kMostRows = 200;
constexpr std::size_t kMostLists = 4;

void addList(std::string& page, const Json& list, std::size_t& rows) {
    auto out = std::back_inserter(page);
    fmt::format_to(out,
                   "<table class=\"chapters\"><caption>Chapters of track {}</caption><thead><tr>"
                   "<th scope=\"col\">No.</th><th scope=\"col\">Start</th><th scope=\"col\">Duration</th>"
                   "<th scope=\"col\">Title</th></tr></thead><tbody>",
                   list["track"].dump());
    std::size_t number = 0;
    for (const auto& chapter : list["chapters"]) {
        if (rows == kMostRows) break;
        ++rows;
        const std::string title = chapter["title"].is_string() ? chapter["title"].get<std::string>() : "";
        fmt::format_to(
            out,
            "<tr><td class=\"num\">{}</td><td class=\"num\">{}</td><td class=\"num\">{}</td><td>{}</td></tr>",
            ++number, timeText(chapter["start"].get<double>()), timeText(chapter["duration"].get<double>()),
            title.empty() ? "<em>no title</em>" : foreign(title));
    }
    page += "</tbody></table>";
    if (list["chapters"].size() > number)
        page += "<p>" + plural(list["chapters"].size() - number, "more chapter is", "more chapters are") +
                " not shown.</p>";
}

void addTimecode(std::string& page, const Json& track) {
    page += "<h3>Timecode of track " + track["id"].dump() + "</h3>";
    const Json& timecode = track["timecode"];
    if (!timecode.is_object()) {
        page += "<p>Its sample cannot be read.</p>";
        return;
    }
    page += "<dl class=\"facts\">";
    if (timecode["start"].is_string()) {
        addFact(page, "First frame", escaped(timecode["start"].get<std::string>()));
    } else {
        addFact(page, "Counter starts at", timecode["frame"].dump());
    }
    addFact(page, "Frames a second",
            timecode["rate"].is_number() ? decimal(timecode["rate"].get<double>(), 3) : "not known");
    addFact(page, "Counted as", timecode["frames_per_second"].dump() + " a second");
    addFact(page, "Drop frame", timecode["drop_frame"].get<bool>() ? "yes" : "no");
    page += "</dl>";
}

} // namespace

void addChapters(std::string& page, const MovieParts& movie) {
    openSection(page, "chapters", "Chapters and timecode", {});
    bool any = false;
    std::size_t rows = 0;
    if (movie.info.is_object()) {
        std::size_t lists = 0;
        for (const auto& list : movie.info["chapter_tracks"]) {
            if (++lists > kMostLists) break;
            if (!list["chapters"].empty()) addList(page, list, rows);
            any = any || !list["chapters"].empty();
        }
        for (const TrackPart& track : movie.tracks) {
            if (!track.info->contains("timecode")) continue;
            addTimecode(page, *track.info);
            any = true;
        }
    }
    if (!any) page += "<p>The movie has neither.</p>";
    closeSection(page);
}

} // namespace Ketra::Tool::Report
