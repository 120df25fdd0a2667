// Bit rate over time, and where the key frames are.
#include "report/Axis.h"
#include "report/Markup.h"
#include "report/Report.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <iterator>

namespace Ketra::Tool::Report {

namespace {

constexpr double kPlot = 96;
constexpr double kKeysTop = 106;
constexpr double kKeys = 9;

/// The outline of the columns as far as the media goes.
void addColumns(std::string& page, const TrackGraph& graph, double columnSeconds, double top) {
    constexpr double kWidth = kGrid / static_cast<double>(kColumns);
    auto out = std::back_inserter(page);
    fmt::format_to(out, "<path class=\"area\" d=\"M0 {}", kGrid);
    double drawn = kGrid;
    std::size_t last = kColumns;
    while (last > 0 && graph.bits[last - 1] <= 0) {
        --last;
    }
    for (std::size_t i = 0; i < last; ++i) {
        const double height = std::clamp(graph.bits[i] / columnSeconds / top, 0.0, 1.0);
        const double y = std::round(kGrid * (1 - height));
        if (y != drawn || i == 0) {
            if (i > 0) fmt::format_to(out, "H{}", decimal(static_cast<double>(i) * kWidth, 1));
            fmt::format_to(out, "V{}", y);
        }
        drawn = y;
    }
    fmt::format_to(out, "H{}V{}Z\"/>", decimal(static_cast<double>(last) * kWidth, 1), kGrid);
}

void addKeys(std::string& page, const TrackGraph& graph) {
    constexpr double kWidth = kGrid / static_cast<double>(kColumns);
    openStretched(page, kKeysTop, kKeys);
    page += "<path class=\"key\" d=\"";
    for (std::size_t i = 0; i < kColumns; ++i) {
        if (graph.keys[i])
            fmt::format_to(std::back_inserter(page), "M{} 0V{}",
                           decimal((static_cast<double>(i) + 0.5) * kWidth, 2), kGrid);
    }
    page += "\"/>";
    closeStretched(page);
    fmt::format_to(std::back_inserter(page), "<text class=\"y\" x=\"-8\" y=\"{}\">keys</text>",
                   decimal(kKeysTop + kKeys));
}

std::string keysText(const TrackGraph& graph) {
    if (!graph.keysListed) return "every sample is a key frame";
    if (graph.keyCount == 0) return "no key frames";
    if (graph.keyCount == 1) return "one key frame";
    return fmt::format(
        "{}, {} apart on average, {} at most", plural(graph.keyCount, "key frame", "key frames"),
        timeText(graph.seconds / static_cast<double>(graph.keyCount)), timeText(graph.longestKeyGap));
}

void addTrackGraph(std::string& page, const MovieParts& movie, const TrackPart& track) {
    const TrackGraph& graph = track.graph;
    const double columnSeconds = movie.seconds / static_cast<double>(kColumns);
    const double most = *std::max_element(graph.bits.begin(), graph.bits.end()) / columnSeconds;
    const double mean = graph.seconds > 0 ? graph.bytes * 8 / graph.seconds : 0;
    const Axis up = rateAxis(most);
    const auto stored = (*track.info)["samples"].get<std::uint64_t>();
    std::string remarks;
    if (stored > graph.samples)
        remarks += fmt::format("; {} of {} samples are in no chunk", grouped(stored - graph.samples),
                               grouped(stored));
    if (graph.cutShort) remarks += "; the tables are longer than what is drawn";
    fmt::format_to(
        std::back_inserter(page),
        "<figure class=\"{}\"><figcaption><b><i></i>{}</b> {} on average, {} at most; {}{}</figcaption>",
        track.colour, track.name, rateText(mean), rateText(most), keysText(graph), remarks);
    const bool keys = graph.keysListed && graph.keyCount > 0;
    openGraph(page, keys ? kKeysTop + kKeys : kPlot, timeAxis(movie.seconds),
              fmt::format("Bit rate of track {} over time", track.id));
    addRows(page, kPlot, up);
    openStretched(page, 0, kPlot);
    addColumns(page, graph, columnSeconds, up.end);
    closeStretched(page);
    const std::string y = decimal(kPlot * (1 - std::min(1.0, mean / up.end)), 1);
    fmt::format_to(std::back_inserter(page), "<line class=\"mean\" x1=\"0\" x2=\"{}\" y1=\"{}\" y2=\"{}\"/>",
                   at(std::min(1.0, graph.seconds / movie.seconds)), y, y);
    if (keys) addKeys(page, graph);
    closeGraph(page);
    page += "</figure>";
}

} // namespace

void addBitRates(std::string& page, const MovieParts& movie) {
    openSection(
        page, "rate", "Bit rate",
        "By the media time at which samples are decoded, before any edits. The dashes are the average, "
        "the strokes below are key frames.");
    bool any = false;
    if (movie.seconds > 0) {
        fmt::format_to(std::back_inserter(page), "<p class=\"note\">One column stands for {}.</p>",
                       timeText(movie.seconds / static_cast<double>(kColumns)));
        for (const TrackPart& track : movie.tracks) {
            if (track.graph.chunks == 0) continue;
            addTrackGraph(page, movie, track);
            any = true;
        }
    }
    if (!any) page += "<p>No track has samples in its tables.</p>";
    closeSection(page);
}

} // namespace Ketra::Tool::Report
