// The command line.
#include "Arguments.h"
#include "Commands.h"
#include "ToolError.h"
#include "remux/Flavours.h"
#include "remux/Remux.h"

#include <CLI/CLI.hpp>

namespace {

using namespace Ketra::Tool;

struct CommandLine {
    CLI::App app{"Looks into QuickTime, MPEG-4, 3GPP and 3GPP2 movie files, and writes them anew.",
                 "ketraqt"};
    std::vector<std::string> infoFiles;
    bool infoJson = false;
    std::string treeFile;
    bool treeJson = false;
    SamplesOptions samples;
    ExtractOptions extract;
    HintOptions hint;
    std::string sdpFile;
    CLI::App* info = nullptr;
    CLI::App* tree = nullptr;
    CLI::App* listing = nullptr;
    CLI::App* extraction = nullptr;
    CLI::App* hinting = nullptr;
    CLI::App* sdp = nullptr;
    RemuxOptions remuxing;
    ChapterOptions chapterList;
    TimecodeOptions startCode;
    CLI::App* remux = nullptr;
    CLI::App* chapters = nullptr;
    CLI::App* timecode = nullptr;

    CommandLine() {
        app.set_version_flag("--version", std::string("ketraqt ") + KETRAQT_VERSION);
        app.require_subcommand(1);
        app.footer(
            "Exit codes: 0 done, 2 wrong usage, 3 a file cannot be opened, read or written, 4 not a movie "
            "or damaged, 5 not allowed there or not supported, 7 what was written reads back differently.");

        info = app.add_subcommand("info", "Brands, duration and tracks of each file");
        info->add_option("FILE", infoFiles)->required();
        info->add_flag("--json", infoJson, "One JSON object a file, each on a line of its own");

        tree = app.add_subcommand("tree", "Every atom with its place, size and fields");
        tree->add_option("FILE", treeFile)->required();
        tree->add_flag("--json", treeJson, "One JSON object: the root with its children");

        listing = app.add_subcommand("samples",
                                     "The frames of a track: place, size and times, no edit list applied");
        listing->add_option("FILE", samples.file)->required();
        listing->add_option("--track", samples.track, "ID of the track")->required();
        auto* time = listing->add_option("--from-time", samples.fromTime,
                                         "Start at the key frame at or before this decode time (seconds)");
        listing->add_option("--from-sample", samples.fromSample, "Start at this sample, counted from 1")
            ->excludes(time);
        listing->add_option("--count", samples.count, "List that many frames at most");
        listing->add_flag("--json", samples.json, "One JSON object a line");

        extraction = app.add_subcommand("extract", "The bytes of all frames of a track, one after the other");
        extraction->add_option("FILE", extract.file)->required();
        extraction->add_option("--track", extract.track, "ID of the track")->required();
        extraction->add_option("-o,--output", extract.output, "Where to; - is standard output")->required();
        addHinting();
        addWritingCommands();
    }

    void addHinting() {
        constexpr unsigned int kLeastMtu = 128;
        constexpr unsigned int kMostMtu = 65535;
        hinting =
            app.add_subcommand("hint", "Copies a movie and adds hint tracks, by which servers stream it");
        hinting->add_option("FILE", hint.file)->required();
        auto* output = hinting->add_option("-o,--output", hint.output, "Where to");
        auto* mtu = hinting->add_option("--mtu", hint.mtu, "Largest packet in bytes, all headers included")
                        ->check(CLI::Range(kLeastMtu, kMostMtu))
                        ->capture_default_str();
        auto* tracks = hinting->add_option("--tracks", hint.tracks, "IDs of the tracks to hint, with commas")
                           ->delimiter(',');
        auto* force = hinting->add_flag("--force", hint.force, "Replace the output if it exists");
        auto* remove = hinting->add_flag("--remove", hint.remove, "Take the hint tracks out instead")
                           ->excludes(mtu)
                           ->excludes(tracks);
        hinting->add_flag("--dump", hint.dump, "Print the packets instead, one JSON object a line")
            ->excludes(output)
            ->excludes(mtu)
            ->excludes(tracks)
            ->excludes(force)
            ->excludes(remove);
        hinting->callback([this] {
            if (hint.output.empty() && !hint.dump) throw CLI::RequiredError("--output");
        });

        sdp = app.add_subcommand("sdp", "The session description of a movie with hint tracks");
        sdp->add_option("FILE", sdpFile)->required();
    }

    void addWritingCommands() {
        remux = app.add_subcommand("remux", "Write the tracks of a movie anew, in the flavour asked for");
        remux->add_option("FILE", remuxing.file)->required();
        auto* output = remux->add_option("-o,--output", remuxing.output, "Where to");
        remux->add_option("--flavour", remuxing.flavour, "mov, mp4, m4a, m4v, 3gp, 3g2, amc or psp")
            ->required()
            ->check(CLI::IsMember(flavourNames()));
        remux->add_option("--tracks", remuxing.tracks, "IDs of the tracks to write, with commas between them")
            ->delimiter(',');
        remux->add_flag("--fast-start", remuxing.fastStart, "Put the header in front of the media");
        remux->add_option("--chunk-duration", remuxing.chunkDuration, "Seconds of a chunk (0.5)")
            ->check(CLI::Range(0.001, 3600.0));
        remux->add_option("--chunk-size", remuxing.chunkSize, "Bytes after which a chunk is closed (1048576)")
            ->check(CLI::Range(1U, 1U << 30));
        remux->add_option("--chapters", remuxing.chapters,
                          "keep, drop, or a file of lines HH:MM:SS.mmm Title");
        auto* rate = remux->add_option("--rate", remuxing.rate, "Frames a second of the timecode");
        remux
            ->add_option("--start-timecode", remuxing.startTimecode,
                         "HH:MM:SS:FF of the first frame; HH:MM:SS;FF counts with drop frames")
            ->needs(rate);
        auto* dry = remux->add_flag("--dry-run", remuxing.dryRun, "Print what would be written");
        remux->add_flag("--force", remuxing.force, "Replace a file that exists");
        remux->callback([output, dry] {
            if (!output->count() && !dry->count()) throw CLI::RequiredError("--output");
        });

        chapters = app.add_subcommand("chapters", "List the chapters, or write the movie with others");
        chapters->add_option("FILE", chapterList.file)->required();
        auto* to = chapters->add_option("-o,--output", chapterList.output, "Where the movie goes to");
        auto* from =
            chapters->add_option("--import", chapterList.importFrom, "A file of lines HH:MM:SS.mmm Title")
                ->needs(to);
        to->needs(from);
        chapters->add_option("--export", chapterList.exportTo, "Where the list goes to")->excludes(from);
        chapters->add_flag("--force", chapterList.force, "Replace a file that exists");

        timecode =
            app.add_subcommand("timecode", "Print the start timecode, or write the movie with another");
        timecode->add_option("FILE", startCode.file)->required();
        auto* target = timecode->add_option("-o,--output", startCode.output, "Where the movie goes to");
        auto* codeRate = timecode->add_option("--rate", startCode.rate, "Frames a second");
        auto* set = timecode->add_option("--set", startCode.start, "HH:MM:SS:FF of the first frame")
                        ->needs(target)
                        ->needs(codeRate);
        target->needs(set);
        timecode->add_flag("--force", startCode.force, "Replace a file that exists");
    }

    int run() const {
        if (info->parsed()) return runInfo(infoFiles, infoJson);
        if (tree->parsed()) return guarded(treeFile, [this] { runTree(treeFile, treeJson); });
        if (listing->parsed()) return guarded(samples.file, [this] { runSamples(samples); });
        if (sdp->parsed()) return guarded(sdpFile, [this] { runSdp(sdpFile); });
        if (hinting->parsed()) return guarded(hint.file, [this] { runHinting(); });
        if (remux->parsed()) return guarded(remuxing.file, [this] { runRemux(remuxing); });
        if (chapters->parsed()) return guarded(chapterList.file, [this] { runChapters(chapterList); });
        if (timecode->parsed()) return guarded(startCode.file, [this] { runTimecode(startCode); });
        return guarded(extract.file, [this] { runExtract(extract); });
    }

    void runHinting() const {
        if (hint.dump) return runHintDump(hint.file);
        if (hint.remove) return runHintRemoval(hint);
        runHint(hint);
    }
};

} // namespace

int main(int argc, char** argv) try {
    CommandLine line;
    try {
        std::vector<std::string> given = arguments(argc, argv);
        line.app.parse(std::vector<std::string>(given.rbegin(), given.rend())); // it takes them last first
    } catch (const CLI::ParseError& error) {
        return line.app.exit(error) == 0 ? kSuccess : kUsage;
    }
    return line.run();
} catch (const std::exception& error) { // memory, for one, may be out at any time
    std::fprintf(stderr, "ketraqt: %s\n", error.what());
    return kCannotRead;
}
