// Where every atom lies, to scale, and the same as a table.
#include "Text.h"
#include "report/Axis.h"
#include "report/Markup.h"
#include "report/Report.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>

namespace Ketra::Tool::Report {

using QT::fourCC;

namespace {

constexpr double kBar = 34;
constexpr double kLevel = 24;
constexpr std::size_t kMostDrawn = 300;

std::string kindOf(const AtomRow& atom, const MovieParts& movie) {
    if (atom.track >= 0 && static_cast<std::size_t>(atom.track) < movie.tracks.size())
        return movie.tracks[static_cast<std::size_t>(atom.track)].colour;
    switch (atom.type) {
    case fourCC("mdat"):
        return "media";
    case fourCC("moov"):
        return "header";
    case fourCC("free"):
    case fourCC("skip"):
    case fourCC("wide"):
        return "unused";
    default:
        return "other";
    }
}

void drawAtom(std::string& page, const MovieParts& movie, std::size_t index, std::uint64_t begin,
              std::uint64_t length, double top, double height) {
    const AtomRow& atom = movie.atoms[index];
    const double from = static_cast<double>(atom.offset - begin) / static_cast<double>(length);
    const double width =
        static_cast<double>(std::min(atom.size, begin + length - atom.offset)) / static_cast<double>(length);
    const std::string name = codeText(atom.type);
    auto out = std::back_inserter(page);
    // Keys go to what is wide enough to be seen; the table has all of them.
    fmt::format_to(out,
                   "<a href=\"#a{}\"{}><rect class=\"atom {}\" x=\"{}\" width=\"{}\" y=\"{}\" height=\"{}\">",
                   index, width < 0.02 ? " tabindex=\"-1\"" : "", kindOf(atom, movie), at(from), at(width),
                   decimal(top), decimal(height - 2));
    fmt::format_to(out, "<title>{} at {} ({:#x}), {}</title></rect>", escaped(name), grouped(atom.offset),
                   atom.offset, plural(atom.size, "byte", "bytes"));
    const double pixels = static_cast<double>(name.size()) * 8 + 8;
    constexpr double kNarrowPlot = 300; // of a phone
    constexpr double kWidePlot = 640;
    if (width * kWidePlot >= pixels) {
        fmt::format_to(out, "<text class=\"label{}\" x=\"{}\" y=\"{}\">{}</text>",
                       width * kNarrowPlot >= pixels ? "" : " wide", at(from + width / 2),
                       decimal(top + height / 2 + 3), escaped(name));
    }
    page += "</a>";
}

/// The largest ones, in their order.
std::vector<std::size_t> worthDrawing(const MovieParts& movie, std::vector<std::size_t> list) {
    if (list.size() <= kMostDrawn) return list;
    const auto larger = [&movie](std::size_t a, std::size_t b) {
        return movie.atoms[a].size > movie.atoms[b].size;
    };
    std::nth_element(list.begin(), list.begin() + kMostDrawn, list.end(), larger);
    list.resize(kMostDrawn);
    std::sort(list.begin(), list.end());
    return list;
}

/// The lines of the ticks would shine through.
void addGround(std::string& page, double height) {
    fmt::format_to(std::back_inserter(page), "<rect class=\"ground\" width=\"100%\" height=\"{}\"/>",
                   decimal(height));
}

void addFileBar(std::string& page, const MovieParts& movie) {
    std::vector<std::size_t> top;
    for (std::size_t i = 0; i < movie.atoms.size(); ++i) {
        if (movie.atoms[i].depth == 0 && movie.atoms[i].placed) top.push_back(i);
    }
    page += "<figure class=\"flush\"><figcaption>The whole file</figcaption>";
    openGraph(page, kBar, byteAxis(static_cast<double>(movie.fileSize)), "The top-level atoms of the file",
              true);
    addGround(page, kBar);
    for (const std::size_t i : worthDrawing(movie, std::move(top))) {
        drawAtom(page, movie, i, 0, movie.fileSize, 0, kBar);
    }
    closeGraph(page);
    page += "</figure>";
}

void addHeaderBar(std::string& page, const MovieParts& movie) {
    const auto header = std::find_if(movie.atoms.begin(), movie.atoms.end(), [](const AtomRow& atom) {
        return atom.depth == 0 && atom.placed && atom.type == fourCC("moov");
    });
    if (header == movie.atoms.end() || header->size == 0) return;
    constexpr unsigned int kMostLevels = 7;
    unsigned int levels = 1;
    std::vector<std::size_t> inside;
    for (auto atom = header; atom != movie.atoms.end() && (atom == header || atom->depth > 0); ++atom) {
        if (!atom->placed || atom->depth >= kMostLevels) continue;
        inside.push_back(static_cast<std::size_t>(atom - movie.atoms.begin()));
        levels = std::max(levels, atom->depth + 1);
    }
    const std::uint64_t length = std::min(header->size, movie.fileSize - header->offset);
    fmt::format_to(
        std::back_inserter(page),
        "<figure class=\"flush\"><figcaption>The movie header enlarged: {} of the file, each level "
        "below the one that holds it</figcaption>",
        percentText(static_cast<double>(length) / static_cast<double>(movie.fileSize)));
    openGraph(page, levels * kLevel, byteAxis(static_cast<double>(length)), "The atoms of the movie header",
              true);
    addGround(page, levels * kLevel);
    for (const std::size_t i : worthDrawing(movie, std::move(inside))) {
        drawAtom(page, movie, i, header->offset, length, movie.atoms[i].depth * kLevel, kLevel);
    }
    closeGraph(page);
    page += "</figure>";
}

void addMapLegend(std::string& page, const MovieParts& movie) {
    page += "<ul class=\"legend\"><li class=\"media\"><i></i>media data</li>"
            "<li class=\"header\"><i></i>movie header</li><li class=\"unused\"><i></i>free space</li>"
            "<li class=\"other\"><i></i>other atoms</li>";
    for (const TrackPart& track : movie.tracks) {
        fmt::format_to(std::back_inserter(page), "<li class=\"{}\"><i></i>track {}</li>", track.colour,
                       track.name);
    }
    page += "</ul>";
}

void addTable(std::string& page, const MovieParts& movie) {
    auto out = std::back_inserter(page);
    fmt::format_to(out,
                   "<details><summary>{} as a table</summary><table class=\"atoms\"><thead><tr>"
                   "<th scope=\"col\">Atom</th><th scope=\"col\">Offset</th><th scope=\"col\">Bytes</th>"
                   "</tr></thead><tbody>",
                   plural(movie.atomCount, "atom", "atoms"));
    constexpr unsigned int kDeepest = 9;
    for (std::size_t i = 0; i < movie.atoms.size(); ++i) {
        const AtomRow& atom = movie.atoms[i];
        fmt::format_to(out, "<tr id=\"a{}\"><td class=\"d{}\">{}</td><td>{}</td><td>{}</td></tr>", i,
                       std::min(atom.depth, kDeepest), foreign(codeText(atom.type)),
                       atom.placed ? grouped(atom.offset) : "\xE2\x80\x94", grouped(atom.size));
    }
    page += "</tbody></table>";
    if (movie.atomCount > movie.atoms.size())
        page += "<p>" + plural(movie.atomCount - movie.atoms.size(), "more atom is", "more atoms are") +
                " not shown.</p>";
    page += "</details>";
}

} // namespace

void addAtomMap(std::string& page, const MovieParts& movie) {
    openSection(
        page, "atoms", "Atom map",
        "Every atom where it lies, as long as it is. Point at one for its offset and size; choose it to "
        "go to its line in the table.");
    if (movie.fileSize > 0) {
        addFileBar(page, movie);
        addHeaderBar(page, movie);
        addMapLegend(page, movie);
    }
    addTable(page, movie);
    closeSection(page);
}

} // namespace Ketra::Tool::Report
