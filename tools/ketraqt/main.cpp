// The command line.
#include "Arguments.h"
#include "CommandLine.h"
#include "ToolError.h"

#include <cstdio>

namespace {

using namespace Ketra::Tool;

void addCommands(CLI::App& app, Action& action) {
    addInfo(app, action);
    addTree(app, action);
    addSamples(app, action);
    addExtract(app, action);
    addCheck(app, action);
    addDiff(app, action);
    addReport(app, action);
    addRemux(app, action);
    addChapters(app, action);
    addTimecode(app, action);
    addHint(app, action);
    addSdp(app, action);
}

} // namespace

int main(int argc, char** argv) try {
    CLI::App app{"Looks into QuickTime, MPEG-4, 3GPP and 3GPP2 movie files, and writes them anew.",
                 "ketraqt"};
    app.allow_windows_style_options(false); // what begins with a slash is a path there, too
    app.set_version_flag("--version", std::string("ketraqt ") + KETRAQT_VERSION);
    app.require_subcommand(1);
    app.footer("Exit codes: 0 done, 1 findings or differences, 2 wrong usage, 3 a file cannot be opened, "
               "read or written, 4 not a movie or damaged, 5 not allowed there or not supported, 7 what was "
               "written reads back differently.");
    Action action;
    addCommands(app, action);
    try {
        std::vector<std::string> given = arguments(argc, argv);
        app.parse(std::vector<std::string>(given.rbegin(), given.rend())); // it takes them last first
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kSuccess : kUsage;
    }
    return action();
} catch (const std::exception& error) { // memory, for one, may be out at any time
    std::fprintf(stderr, "ketraqt: %s\n", error.what());
    return kCannotRead;
}
