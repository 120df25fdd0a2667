#include "Commands.h"
#include "Json.h"
#include "Output.h"
#include "Source.h"
#include "Terminal.h"
#include "Text.h"
#include "ToolError.h"
#include "check/Check.h"

#include <algorithm>
#include <fmt/format.h>

namespace Ketra::Tool {

namespace {

bool isAgainstRules(const Finding& finding) { return finding.severity != Severity::Note; }

bool hasMovieHeader(const std::vector<Finding>& findings) {
    return std::none_of(findings.begin(), findings.end(),
                        [](const Finding& f) { return f.rule == "missing-atom" && f.path == "moov"; });
}

Colour colourOf(Severity severity) {
    return severity == Severity::Error     ? Colour::kRed
           : severity == Severity::Warning ? Colour::kYellow
                                           : Colour::kCyan;
}

Json findingsJson(const std::string& file, const std::vector<Finding>& findings) {
    Json list = Json::array();
    for (const Finding& f : findings) {
        list.push_back({{"severity", severityName(f.severity)},
                        {"rule", f.rule},
                        {"path", f.path},
                        {"offset", f.offset},
                        {"text", f.text},
                        {"count", f.count}});
    }
    return {{"schema", kSchema}, {"file", validUtf8(file)}, {"findings", std::move(list)}};
}

std::string findingsText(const std::string& file, const std::vector<Finding>& findings) {
    const std::string name = oneLine(validUtf8(file));
    if (findings.empty()) return name + ": nothing found\n";
    const bool colours = wantsColours(stdout);
    std::string out;
    for (const Finding& f : findings) {
        out += fmt::format("{}: {}: {} [{}]\n", name,
                           coloured(severityName(f.severity), colourOf(f.severity), colours),
                           oneLine(findingText(f)), f.rule);
    }
    return out;
}

} // namespace

int runCheck(const CheckOptions& options) {
    int worst = kSuccess;
    for (const std::string& file : options.files) {
        bool wrong = false;
        const int code = guarded(file, [&] {
            Source source(file);
            const std::vector<Finding> findings = checkMovie(source);
            if (!hasMovieHeader(findings))
                throw ToolError(kMalformed, "not a movie: there is no movie header");
            wrong = std::any_of(findings.begin(), findings.end(), isAgainstRules);
            Output output;
            output.write(options.json ? jsonLine(findingsJson(file, findings))
                                      : findingsText(file, findings));
            output.finish();
        });
        worst = std::max({worst, code, wrong ? int{kFindings} : int{kSuccess}});
    }
    return worst;
}

} // namespace Ketra::Tool
