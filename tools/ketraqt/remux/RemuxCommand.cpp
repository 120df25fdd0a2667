#include "AtomicFile.h"
#include "Atoms.h"
#include "Output.h"
#include "Progress.h"
#include "Text.h"
#include "ToolError.h"
#include "remux/Descriptions.h"
#include "remux/Interrupt.h"
#include "remux/Layout.h"
#include "remux/Remux.h"
#include "remux/Verify.h"

#include <qt/QTAtoms.h>

#include <fmt/format.h>

namespace Ketra::Tool {

namespace {

/// As its tables count them: of sound, more than packets.
unsigned int samplesOf(const QT::QTTrack& track) {
    const auto* sizes = atomAt<QT::STSZ>(
        track.getTrak(), {QT::fourCC("mdia"), QT::fourCC("minf"), QT::fourCC("stbl"), QT::fourCC("stsz")});
    return sizes ? sizes->getNumberOfEntries() : 0;
}

/// What the movie would be, without writing it.
void printPlan(Plan& plan, const RemuxOptions& options) {
    MovieBuild build(plan);
    std::uint64_t chunks = 0;
    plan.source.leaveMediaOut(true);
    const std::uint64_t media = build.addMedia(0, [&chunks](const QT::QTFrame&) { ++chunks; });
    plan.source.leaveMediaOut(false);
    build.finish();
    const Bytes header = build.header();
    Output output;
    output.write(fmt::format("{}: {}, {} header\n", options.output.empty() ? "-" : oneLine(options.output),
                             flavourName(plan.flavour), options.fastStart ? "first" : "last"));
    for (std::size_t i = 0; i < plan.tracks.size(); ++i) {
        const QT::QTTrack& track = build.track(i);
        const TrackInput& input = *plan.tracks[i];
        output.write(fmt::format("  track {}{}: {}, {} samples, {} bytes, {} s\n", track.getID(),
                                 input.sourceID() ? fmt::format(" (from {})", input.sourceID()) : " (new)",
                                 codeText(storedFormat(track)), samplesOf(track), track.getTotalDataSize(),
                                 secondsText(static_cast<std::int64_t>(track.getAtomMediaDuration()),
                                             track.getAtomMediaTimeScale())));
    }
    output.write(
        fmt::format("  {} chunks, {} bytes of media, {} bytes of header\n", chunks, media, header.size()));
    output.finish();
}

void writeMovie(Plan& plan, const RemuxOptions& options) {
    InterruptGuard interrupts;
    AtomicFile file(options.output, options.force);
    const Layout layout = planLayout(plan, options.fastStart);
    Progress progress(2 * layout.mediaSize, Progress::kBytes); // written, then read back

    // The header of a fast start is known but for its times of creation, so its place is kept.
    MovieBuild build(plan);
    file.write(layout.front.data(), layout.front.size());
    std::uint64_t done = 0;
    const std::uint64_t media = build.addMedia(layout.frontSize, [&](const QT::QTFrame& chunk) {
        file.write(chunk.getData(), chunk.getDataLength());
        done += chunk.getDataLength();
        progress.update(done);
    });
    build.finish();
    const Bytes header = build.header();
    if (media != layout.mediaSize || frontOf(header, media, options.fastStart).size() != layout.frontSize)
        throw ToolError(kMalformed, "the file changed while it was read");
    const Bytes back = backOf(header, options.fastStart);
    file.write(back.data(), back.size());
    verify(plan, file.flush(), progress, done);
    plan.source.close();
    file.commit();
}

} // namespace

void runRemux(const RemuxOptions& options) {
    Source source(options.file);
    const auto movie = openMovie(source);
    Plan plan = makePlan(options, *movie, source);
    for (const std::string& note : plan.notes) {
        complain(options.file, note);
    }
    if (options.dryRun) {
        printPlan(plan, options);
    } else {
        writeMovie(plan, options);
    }
}

} // namespace Ketra::Tool
