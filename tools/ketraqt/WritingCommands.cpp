// The options of the commands that write movies.
#include "CommandLine.h"
#include "Commands.h"
#include "ToolError.h"
#include "remux/Flavours.h"
#include "remux/Remux.h"

#include <memory>

namespace Ketra::Tool {

namespace {

constexpr const char* kForceHelp = "Replace a file that exists";

void runHinting(const HintOptions& options) {
    if (options.dump) return runHintDump(options.file);
    if (options.remove) return runHintRemoval(options);
    runHint(options);
}

} // namespace

void addHint(CLI::App& app, Action& action) {
    constexpr unsigned int kLeastMtu = 128;
    constexpr unsigned int kMostMtu = 65535;
    auto given = std::make_shared<HintOptions>();
    CLI::App* hint =
        addCommand(app, "hint", "Copies a movie and adds hint tracks, by which servers stream it",
                   {"hint movie.mp4 -o hinted.mp4", "hint movie.mp4 -o hinted.mp4 --tracks 1,2 --mtu 1200",
                    "hint hinted.mp4 --dump"});
    hint->add_option("FILE", given->file)->required();
    auto* output = hint->add_option("-o,--output", given->output, "Where to");
    auto* mtu = hint->add_option("--mtu", given->mtu, "Largest packet in bytes, all headers included")
                    ->check(CLI::Range(kLeastMtu, kMostMtu))
                    ->capture_default_str();
    auto* tracks =
        hint->add_option("--tracks", given->tracks, "IDs of the tracks to hint, with commas between them")
            ->delimiter(',');
    auto* force = hint->add_flag("--force", given->force, kForceHelp);
    auto* remove = hint->add_flag("--remove", given->remove, "Take the hint tracks out instead")
                       ->excludes(mtu)
                       ->excludes(tracks);
    hint->add_flag("--dump", given->dump, "Print the packets instead, one JSON object a line")
        ->excludes(output)
        ->excludes(mtu)
        ->excludes(tracks)
        ->excludes(force)
        ->excludes(remove);
    hint->callback([given, &action] {
        if (given->output.empty() && !given->dump) throw CLI::RequiredError("--output");
        action = [given] { return guarded(given->file, [given] { runHinting(*given); }); };
    });
}

void addRemux(CLI::App& app, Action& action) {
    auto given = std::make_shared<RemuxOptions>();
    CLI::App* remux = addCommand(app, "remux", "Write the tracks of a movie anew, in the flavour asked for",
                                 {"remux movie.mov -o movie.mp4 --flavour mp4",
                                  "remux movie.mp4 -o sound.m4a --flavour m4a --tracks 2 --fast-start",
                                  "remux camera.mov --flavour mp4 --dry-run"});
    remux->add_option("FILE", given->file)->required();
    auto* output = remux->add_option("-o,--output", given->output, "Where to");
    remux->add_option("--flavour", given->flavour, "mov, mp4, m4a, m4v, 3gp, 3g2, amc or psp")
        ->required()
        ->check(CLI::IsMember(flavourNames()));
    remux->add_option("--tracks", given->tracks, "IDs of the tracks to write, with commas between them")
        ->delimiter(',');
    remux->add_flag("--fast-start", given->fastStart, "Put the header in front of the media");
    remux->add_option("--chunk-duration", given->chunkDuration, "Seconds of a chunk (0.5)")
        ->check(CLI::Range(0.001, 3600.0));
    remux->add_option("--chunk-size", given->chunkSize, "Bytes after which a chunk is closed (1048576)")
        ->check(CLI::Range(1U, 1U << 30));
    remux->add_option("--chapters", given->chapters, "keep, drop, or a file of lines HH:MM:SS.mmm Title");
    auto* rate = remux->add_option("--rate", given->rate, "Frames a second of the timecode");
    remux
        ->add_option("--start-timecode", given->startTimecode,
                     "HH:MM:SS:FF of the first frame; HH:MM:SS;FF counts with drop frames")
        ->needs(rate);
    auto* dry = remux->add_flag("--dry-run", given->dryRun, "Print what would be written");
    remux->add_flag("--force", given->force, kForceHelp);
    remux->callback([given, output, dry, &action] {
        if (!output->count() && !dry->count()) throw CLI::RequiredError("--output");
        action = [given] { return guarded(given->file, [given] { runRemux(*given); }); };
    });
}

void addChapters(CLI::App& app, Action& action) {
    auto given = std::make_shared<ChapterOptions>();
    CLI::App* chapters = addCommand(app, "chapters", "List the chapters, or write the movie with others",
                                    {"chapters movie.mp4", "chapters movie.mp4 --export titles.txt",
                                     "chapters movie.mp4 --import titles.txt -o out.mp4"});
    chapters->add_option("FILE", given->file)->required();
    auto* to = chapters->add_option("-o,--output", given->output, "Where the movie goes to");
    auto* from =
        chapters->add_option("--import", given->importFrom, "A file of lines HH:MM:SS.mmm Title")->needs(to);
    to->needs(from);
    chapters->add_option("--export", given->exportTo, "Where the list goes to")->excludes(from);
    chapters->add_flag("--force", given->force, kForceHelp);
    chapters->callback([given, &action] {
        action = [given] { return guarded(given->file, [given] { runChapters(*given); }); };
    });
}

void addTimecode(CLI::App& app, Action& action) {
    auto given = std::make_shared<TimecodeOptions>();
    CLI::App* timecode =
        addCommand(app, "timecode", "Print the start timecode, or write the movie with another",
                   {"timecode movie.mov", "timecode movie.mov --set 10:00:00:00 --rate 25 -o out.mov"});
    timecode->add_option("FILE", given->file)->required();
    auto* target = timecode->add_option("-o,--output", given->output, "Where the movie goes to");
    auto* rate = timecode->add_option("--rate", given->rate, "Frames a second");
    auto* set = timecode->add_option("--set", given->start, "HH:MM:SS:FF of the first frame")
                    ->needs(target)
                    ->needs(rate);
    target->needs(set);
    timecode->add_flag("--force", given->force, kForceHelp);
    timecode->callback([given, &action] {
        action = [given] { return guarded(given->file, [given] { runTimecode(*given); }); };
    });
}

} // namespace Ketra::Tool
