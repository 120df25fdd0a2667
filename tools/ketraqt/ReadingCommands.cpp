// The options of the commands that look into movies.
#include "CommandLine.h"
#include "Commands.h"
#include "ToolError.h"
#include "report/ReportCommand.h"

#include <memory>

namespace Ketra::Tool {

void addInfo(CLI::App& app, Action& action) {
    struct Options {
        std::vector<std::string> files;
        bool json = false;
    };
    auto given = std::make_shared<Options>();
    CLI::App* info = addCommand(app, "info", "Brands, duration and tracks of each file",
                                {"info movie.mp4", "info --json *.mov"});
    info->add_option("FILE", given->files)->required();
    info->add_flag("--json", given->json, "One JSON object a file, each on a line of its own");
    info->callback([given, &action] { action = [given] { return runInfo(given->files, given->json); }; });
}

void addTree(CLI::App& app, Action& action) {
    struct Options {
        std::string file;
        bool json = false;
    };
    auto given = std::make_shared<Options>();
    CLI::App* tree = addCommand(app, "tree", "Every atom with its place, size and fields",
                                {"tree movie.mp4", "tree --json movie.mp4"});
    tree->add_option("FILE", given->file)->required();
    tree->add_flag("--json", given->json, "One JSON object: the root with its children");
    tree->callback([given, &action] {
        action = [given] { return guarded(given->file, [given] { runTree(given->file, given->json); }); };
    });
}

void addSamples(CLI::App& app, Action& action) {
    auto given = std::make_shared<SamplesOptions>();
    CLI::App* samples =
        addCommand(app, "samples", "The frames of a track: place, size and times, no edit list applied",
                   {"samples movie.mp4 --track 1", "samples movie.mp4 --track 1 --from-time 12.5 --count 20",
                    "samples --json movie.mp4 --track 2"});
    samples->add_option("FILE", given->file)->required();
    samples->add_option("--track", given->track, "ID of the track")->required();
    auto* time = samples->add_option("--from-time", given->fromTime,
                                     "Start at the key frame at or before this decode time (seconds)");
    samples->add_option("--from-sample", given->fromSample, "Start at this sample, counted from 1")
        ->excludes(time);
    samples->add_option("--count", given->count, "List that many frames at most");
    samples->add_flag("--json", given->json, "One JSON object a line");
    samples->callback([given, &action] {
        action = [given] { return guarded(given->file, [given] { runSamples(*given); }); };
    });
}

void addExtract(CLI::App& app, Action& action) {
    auto given = std::make_shared<ExtractOptions>();
    CLI::App* extract =
        addCommand(app, "extract", "The bytes of all frames of a track, one after the other",
                   {"extract movie.mp4 --track 1 -o video.bin", "extract movie.mov --track 2 -o - | play"});
    extract->add_option("FILE", given->file)->required();
    extract->add_option("--track", given->track, "ID of the track")->required();
    extract->add_option("-o,--output", given->output, "Where to; - is standard output")->required();
    extract->callback([given, &action] {
        action = [given] { return guarded(given->file, [given] { runExtract(*given); }); };
    });
}

void addReport(CLI::App& app, Action& action) {
    auto given = std::make_shared<ReportOptions>();
    CLI::App* report =
        addCommand(app, "report", "A page about a movie: atoms, bit rates, interleaving, times, findings",
                   {"report movie.mp4 -o movie.html", "report movie.mp4 -o movie.html --force"});
    report->add_option("FILE", given->file)->required();
    report->add_option("-o,--output", given->output, "Where to; - is standard output")->required();
    report->add_flag("--force", given->force, "Replace a file that exists");
    report->callback([given, &action] {
        action = [given] { return guarded(given->file, [given] { runReport(*given); }); };
    });
}

void addCheck(CLI::App& app, Action& action) {
    auto given = std::make_shared<CheckOptions>();
    CLI::App* check =
        addCommand(app, "check", "What each file does against the rules of its format, and where",
                   {"check movie.mp4", "check --json *.mov"});
    check->add_option("FILE", given->files)->required();
    check->add_flag("--json", given->json, "One JSON object a file, each on a line of its own");
    check->callback([given, &action] { action = [given] { return runCheck(*given); }; });
}

void addDiff(CLI::App& app, Action& action) {
    auto given = std::make_shared<DiffOptions>();
    CLI::App* diff = addCommand(app, "diff", "How two movies differ: atoms, fields, tracks and samples",
                                {"diff movie.mov copy.mov", "diff --ignore-times movie.mov copy.mov",
                                 "diff --json movie.mov copy.mov"});
    diff->add_option("A", given->a)->required();
    diff->add_option("B", given->b)->required();
    diff->add_flag("--ignore-times", given->ignoreTimes, "Leave out when they were made and changed");
    diff->add_flag("--json", given->json, "One JSON object");
    diff->callback([given, &action] { action = [given] { return runDiff(*given); }; });
}

void addSdp(CLI::App& app, Action& action) {
    auto file = std::make_shared<std::string>();
    CLI::App* sdp = addCommand(app, "sdp", "The session description of a movie with hint tracks",
                               {"sdp hinted.mp4", "sdp hinted.mp4 > hinted.sdp"});
    sdp->add_option("FILE", *file)->required();
    sdp->callback([file, &action] { action = [file] { return guarded(*file, [file] { runSdp(*file); }); }; });
}

} // namespace Ketra::Tool
