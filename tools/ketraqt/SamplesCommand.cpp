#include "Commands.h"
#include "FrameWalk.h"
#include "Output.h"
#include "Progress.h"
#include "Source.h"
#include "Text.h"
#include "ToolError.h"
#include "check/Check.h"

#include <fmt/format.h>
#include <iterator>
#include <limits>

namespace Ketra::Tool {

namespace {

double seconds(std::int64_t ticks, unsigned int scale) {
    return scale ? static_cast<double>(ticks) / scale : 0.0;
}

std::string textLine(const FramePlace& place, const QT::QTFrame& frame, unsigned int scale) {
    const Ticks ticks = ticksOf(frame, scale);
    return fmt::format("{:8} {:12} {:9} {:>14} {:>14} {:>12} {:>3} {:7}\n", place.sample, place.offset,
                       place.size, secondsText(ticks.decode, scale), secondsText(ticks.presentation, scale),
                       secondsText(ticks.duration, scale), frame.getIsKeyFrame() ? "key" : "-",
                       frame.getSamplesInFrame());
}

/// Written directly: there are millions of these lines, and numbers need no escapes.
std::string jsonLine(const FramePlace& place, const QT::QTFrame& frame, unsigned int scale) {
    const Ticks ticks = ticksOf(frame, scale);
    return fmt::format(R"({{"sample":{},"chunk":{},"offset":{},"size":{},"dts":{},"pts":{},"duration":{},)"
                       R"("dts_ticks":{},"pts_ticks":{},"key":{},"samples":{}}})"
                       "\n",
                       place.sample, place.chunk, place.offset, place.size, seconds(ticks.decode, scale),
                       seconds(ticks.presentation, scale), seconds(ticks.duration, scale), ticks.decode,
                       ticks.presentation, frame.getIsKeyFrame(), frame.getSamplesInFrame());
}

bool endsBeyond(const FramePlace& place, std::uint64_t fileSize) {
    return place.offset > fileSize || place.size > fileSize - place.offset;
}

} // namespace

void runSamples(const SamplesOptions& options) {
    Source source(options.file);
    const auto movie = openMovie(source);
    QT::QTTrack& track = trackOf(*movie, options.track);
    const unsigned int scale = track.getAtomMediaTimeScale();

    source.leaveMediaOut();
    FrameWalk walk(track);
    if (options.fromSample) walk.startAtSample(*options.fromSample);
    if (options.fromTime) walk.startAtTime(*options.fromTime);

    Output output;
    if (!options.json) {
        output.write(fmt::format("{:>8} {:>12} {:>9} {:>14} {:>14} {:>12} {:>3} {:>7}\n", "sample", "offset",
                                 "size", "decode s", "presentation s", "duration s", "key", "samples"));
    }
    Progress progress(walk.storedSamples());
    FramePlace place;
    std::uint64_t cutShort = 0;
    for (auto left = options.count.value_or(std::numeric_limits<unsigned int>::max()); left > 0; --left) {
        const auto frame = walk.next(place);
        if (!frame) break;
        output.write(options.json ? jsonLine(place, *frame, scale) : textLine(place, *frame, scale));
        if (endsBeyond(place, source.fileSize())) ++cutShort;
        progress.update(place.sample);
    }
    output.finish();
    if (!cutShort) return;
    const std::string text = fmt::format("{} of these frames end beyond the end of the file", cutShort);
    complain(options.file, withPlace(source, text, options.track));
}

} // namespace Ketra::Tool
