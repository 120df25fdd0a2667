// What `check` finds, the worst first.
#include "check/Check.h"
#include "report/Markup.h"
#include "report/Report.h"

#include <algorithm>
#include <fmt/format.h>
#include <iterator>

namespace Ketra::Tool::Report {

namespace {

struct Look {
    const char* word;
    const char* style;
    const char* icon; ///< in a square of 16 units
};

/// The word and the shape tell as much as the colour.
const Look& lookOf(Severity severity) {
    static constexpr Look kError = {"Error", "error", "M5 1h6l4 4v6l-4 4H5l-4-4V5z"};
    static constexpr Look kWarning = {"Warning", "warning", "M8 1l7.5 14H.5z"};
    static constexpr Look kNote = {"Note", "noted", "M8 1a7 7 0 1 0 .01 0z"};
    return severity == Severity::Error ? kError : severity == Severity::Warning ? kWarning : kNote;
}

void addCounts(std::string& page, const std::vector<Finding>& findings) {
    std::uint64_t counts[3] = {0, 0, 0};
    for (const Finding& finding : findings) {
        counts[static_cast<std::size_t>(finding.severity)] += std::max<std::uint64_t>(1, finding.count);
    }
    page += "<p>" + plural(counts[2], "error", "errors") + ", " + plural(counts[1], "warning", "warnings") +
            ", " + plural(counts[0], "note", "notes") + ".</p>";
}

void addFinding(std::string& page, const Finding& finding) {
    const Look& look = lookOf(finding.severity);
    auto out = std::back_inserter(page);
    fmt::format_to(
        out,
        "<li class=\"{}\"><svg width=\"16\" height=\"16\" viewBox=\"0 0 16 16\" aria-hidden=\"true\">"
        "<path d=\"{}\"/></svg><div><b>{}</b> {}{}",
        look.style, look.icon, look.word, foreign(finding.text, 200),
        finding.count > 1 ? " <em>(" + plural(finding.count, "time", "times") + ")</em>" : "");
    fmt::format_to(out, "<p><code>{}</code> at {} ({:#x}) <span>{}</span></p></div></li>",
                   finding.path.empty() ? "the file" : foreign(finding.path, 100), grouped(finding.offset),
                   finding.offset, escaped(finding.rule, 60));
}

} // namespace

void addFindings(std::string& page, Source& source) {
    constexpr std::size_t kMost = 100;
    std::vector<Finding> findings = checkMovie(source);
    std::stable_sort(findings.begin(), findings.end(),
                     [](const Finding& a, const Finding& b) { return a.severity > b.severity; });
    openSection(page, "findings", "Findings", {});
    if (findings.empty()) {
        page += "<p>No rule is broken, as far as it is checked.</p>";
    } else {
        addCounts(page, findings);
        page += "<ul class=\"findings\">";
        for (std::size_t i = 0; i < std::min(findings.size(), kMost); ++i) {
            addFinding(page, findings[i]);
        }
        page += "</ul>";
        if (findings.size() > kMost)
            page += "<p>" + plural(findings.size() - kMost, "more is", "more are") + " not shown.</p>";
    }
    closeSection(page);
}

} // namespace Ketra::Tool::Report
