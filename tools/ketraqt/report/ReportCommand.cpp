#include "report/ReportCommand.h"

#include "AtomicFile.h"
#include "Output.h"
#include "ToolError.h"
#include "report/Collect.h"
#include "report/Markup.h"

#include <fmt/format.h>
#include <iterator>
#include <system_error>

namespace Ketra::Tool {

namespace Report {

namespace {

struct Section {
    const char* id;
    const char* title;
};
constexpr Section kSections[] = {
    {"summary", "Summary"},           {"findings", "Findings"}, {"atoms", "Atom map"},   {"rate", "Bit rate"},
    {"interleaving", "Interleaving"}, {"timeline", "Timeline"}, {"chapters", "Chapters"}};

std::string fileName(const std::string& path) {
    const std::u8string name = nativePath(path).filename().u8string();
    return {name.begin(), name.end()};
}

void openPage(std::string& page, const MovieParts& movie) {
    const std::string name = fileName(movie.file);
    auto out = std::back_inserter(page);
    // Nothing may be loaded or run, whatever a file smuggled in.
    fmt::format_to(
        out,
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src '{}'; "
        "base-uri 'none'; form-action 'none'\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<meta name=\"color-scheme\" content=\"light dark\">\n"
        "<meta name=\"generator\" content=\"ketraqt {}\">\n<title>{}</title>\n<style>{}</style>\n"
        "</head>\n<body>\n",
        styleHash(), KETRAQT_VERSION, escaped(name), styleSheet());
    // What fills an empty edit, for all graphs.
    page += "<svg width=\"0\" height=\"0\" class=\"shapes\" aria-hidden=\"true\"><defs><pattern id=\"gap\" "
            "width=\"6\" "
            "height=\"6\" patternUnits=\"userSpaceOnUse\"><path d=\"M0 6L6 0M-1 1L1 -1M5 7L7 "
            "5\"/></pattern></defs>"
            "</svg>\n";
    fmt::format_to(
        out, "<a class=\"skip\" href=\"#main\">Skip to the report</a>\n<header><h1>{}</h1><p>{}, {}</p>\n",
        foreign(name), bytesText(static_cast<double>(movie.fileSize)),
        movie.info.is_object() ? timeText(movie.info["duration"].get<double>()) + ", " +
                                     plural(movie.info["tracks"].size(), "track", "tracks")
                               : "no movie that can be read");
    page += "<nav aria-label=\"Sections\"><ul>";
    for (const Section& section : kSections) {
        fmt::format_to(out, "<li><a href=\"#{}\">{}</a></li>", section.id, section.title);
    }
    page += "</ul></nav></header>\n<main id=\"main\">\n";
}

std::string pageOf(const std::string& file, Source& source, QT::QTAtom& root, QT::QTMovie* tracks) {
    MovieParts movie(file);
    collect(movie, source, root, tracks);
    std::string page;
    openPage(page, movie);
    addSummary(page, movie);
    addFindings(page, source);
    addAtomMap(page, movie);
    addBitRates(page, movie);
    addInterleaving(page, movie);
    addTimeline(page, movie);
    addChapters(page, movie);
    fmt::format_to(std::back_inserter(page),
                   "</main>\n<footer>Made by ketraqt {}.</footer>\n</body>\n</html>\n", KETRAQT_VERSION);
    return page;
}

/// Replacing the movie by what is told of it would be a loss.
void keepApart(const ReportOptions& options) {
    std::error_code error;
    if (std::filesystem::equivalent(nativePath(options.file), nativePath(options.output), error) && !error) {
        throw ToolError(kUsage, "is to be read and written at once");
    }
}

void write(const ReportOptions& options, const std::string& page) {
    if (options.output == "-") {
        Output output;
        output.write(page);
        output.finish();
        return;
    }
    AtomicFile file(options.output, options.force);
    file.write(page.data(), page.size());
    file.commit();
}

} // namespace

void addLegend(std::string& page, const MovieParts& movie) {
    page += "<ul class=\"legend\">";
    for (const TrackPart& track : movie.tracks) {
        fmt::format_to(std::back_inserter(page), "<li class=\"{}\"><i></i>{}</li>", track.colour, track.name);
    }
    page += "</ul>";
}

void openSection(std::string& page, std::string_view id, std::string_view title, std::string_view intro) {
    fmt::format_to(std::back_inserter(page),
                   "<section id=\"{}\" aria-labelledby=\"{}-title\"><h2 id=\"{}-title\">{}</h2>", id, id, id,
                   title);
    if (!intro.empty()) fmt::format_to(std::back_inserter(page), "<p class=\"intro\">{}</p>", intro);
    page += "\n";
}

void closeSection(std::string& page) { page += "</section>\n"; }

} // namespace Report

void runReport(const ReportOptions& options) {
    if (options.output != "-") Report::keepApart(options);
    Source source(options.file);
    if (const auto movie = readMovie(source)) {
        Report::write(options, Report::pageOf(options.file, source, *movie->getRoot(), movie.get()));
        return;
    }
    // What atoms there are may tell why it is no movie.
    AtomTree tree(source.stream());
    if (!tree.root().getChildren().empty())
        Report::write(options, Report::pageOf(options.file, source, tree.root(), nullptr));
    refuse(tree);
}

} // namespace Ketra::Tool
