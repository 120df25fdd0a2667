// Decoding against presentation of tracks whose frames are stored in another order than they are shown.
#include "report/Axis.h"
#include "report/Markup.h"
#include "report/Report.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>

namespace Ketra::Tool::Report {

namespace {

constexpr double kDecodeRow = 16;
constexpr double kPresentRow = 84;
constexpr double kHeight = 100;
constexpr double kPlot = 60;

/// The first samples one by one: a line from each decode time to the time of presentation.
void addFirstSamples(std::string& page, const TrackPart& track) {
    const std::vector<FirstSample>& first = track.graph.first;
    double begin = first.front().decode;
    double end = begin;
    for (const FirstSample& sample : first) {
        begin = std::min({begin, sample.decode, sample.presentation});
        end = std::max({end, sample.decode, sample.presentation});
    }
    const double span = end > begin ? end - begin : 1;
    // A little room at both ends keeps the marks whole.
    const auto place = [&](double time) { return at(0.02 + 0.96 * (time - begin) / span); };
    Axis axis = timeAxis(span);
    for (Tick& tick : axis.ticks) {
        tick.place = 0.02 + 0.96 * tick.place;
        if (begin != 0) tick.label = timeText(begin + tick.place * span);
    }
    if (begin != 0) {
        axis.ticks = {{0.02, timeText(begin)}, {0.98, timeText(end)}};
    }
    fmt::format_to(
        std::back_inserter(page),
        "<figure class=\"{}\"><figcaption><b><i></i>{}</b> the first {}: from the time of decoding "
        "(above) to that of presentation (below); the numbers are the order of decoding</figcaption>",
        track.colour, track.name, plural(first.size(), "sample", "samples"));
    openGraph(page, kHeight, axis,
              fmt::format("Decode and presentation times of the first samples of track {}", track.id));
    auto out = std::back_inserter(page);
    fmt::format_to(
        out,
        "<text class=\"y\" x=\"-8\" y=\"{}\">decode</text><text class=\"y\" x=\"-8\" y=\"{}\">present</text>",
        decimal(kDecodeRow + 4), decimal(kPresentRow + 4));
    std::size_t number = 0;
    for (const FirstSample& sample : first) {
        const std::string from = place(sample.decode);
        const std::string to = place(sample.presentation);
        fmt::format_to(out, "<line class=\"order{}\" x1=\"{}\" x2=\"{}\" y1=\"{}\" y2=\"{}\"/>",
                       sample.key ? " isKey" : "", from, to, decimal(kDecodeRow), decimal(kPresentRow));
        fmt::format_to(
            out,
            "<circle class=\"dot{}\" cx=\"{}\" cy=\"{}\" r=\"{}\"><title>Sample {}{}: decoded at {}, "
            "presented at {}</title></circle>",
            sample.key ? " isKey" : "", to, decimal(kPresentRow), sample.key ? "5" : "3.5", ++number,
            sample.key ? ", a key frame" : "", timeText(sample.decode), timeText(sample.presentation));
        fmt::format_to(out, "<circle class=\"dot{}\" cx=\"{}\" cy=\"{}\" r=\"{}\"/>",
                       sample.key ? " isKey" : "", from, decimal(kDecodeRow), sample.key ? "5" : "3.5");
        fmt::format_to(out, "<text class=\"order-number{}\" x=\"{}\" y=\"9\">{}</text>",
                       number % 4 == 1 ? "" : " wide", from, number);
    }
    closeGraph(page);
    page += "</figure>";
}

/// How far presentation is behind decoding, over the whole media.
void addOffsets(std::string& page, const MovieParts& movie, const TrackPart& track) {
    const TrackGraph& graph = track.graph;
    const double low = std::min(0.0, graph.leastOffset);
    const double high = std::max(0.0, graph.mostOffset);
    const double span = high > low ? high - low : 1;
    Axis up;
    up.ticks = {{0, timeText(low)}, {1, timeText(high)}};
    if (low < 0 && high > 0) up.ticks.push_back({-low / span, "0 s"});
    fmt::format_to(std::back_inserter(page),
                   "<figure class=\"{}\"><figcaption><b><i></i>{}</b> presentation comes {} to {} after "
                   "decoding; the band reaches from the least to the greatest offset</figcaption>",
                   track.colour, track.name, timeText(graph.leastOffset), timeText(graph.mostOffset));
    openGraph(page, kPlot, timeAxis(movie.seconds),
              fmt::format("Offsets from decoding to presentation of track {}", track.id));
    addRows(page, kPlot, up);
    openStretched(page, 0, kPlot);
    constexpr double kWidth = kGrid / static_cast<double>(kColumns);
    constexpr double kThinnest = 20;
    page += "<path class=\"area\" d=\"";
    for (std::size_t i = 0; i < kColumns;) {
        const OffsetColumn& column = graph.offsets[i];
        std::size_t end = i + 1;
        while (end < kColumns && graph.offsets[end].used == column.used &&
               graph.offsets[end].least == column.least && graph.offsets[end].most == column.most) {
            ++end;
        }
        if (column.used) {
            const double height = std::max(kThinnest, kGrid * (column.most - column.least) / span);
            const double top = std::min(kGrid - height, kGrid * (high - column.most) / span);
            const std::string width = decimal(static_cast<double>(end - i) * kWidth, 1);
            fmt::format_to(std::back_inserter(page), "M{} {}h{}v{}h-{}z",
                           decimal(static_cast<double>(i) * kWidth, 1), decimal(top, 0), width,
                           decimal(height, 0), width);
        }
        i = end;
    }
    page += "\"/>";
    closeStretched(page);
    closeGraph(page);
    page += "</figure>";
}

} // namespace

void addComposition(std::string& page, const MovieParts& movie) {
    bool any = false;
    for (const TrackPart& track : movie.tracks) {
        if (!track.graph.composed || track.graph.first.empty()) continue;
        if (!any) page += "<h3>Decoding and presentation</h3>";
        any = true;
        addFirstSamples(page, track);
        if (movie.seconds > 0) addOffsets(page, movie, track);
    }
    if (!any) page += "<p>In all tracks, samples are presented when they are decoded.</p>";
}

} // namespace Ketra::Tool::Report
