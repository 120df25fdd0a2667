#include "Commands.h"
#include "FrameWalk.h"
#include "Output.h"
#include "Progress.h"
#include "Source.h"
#include "ToolError.h"

#include <fmt/format.h>
#include <system_error>

namespace Ketra::Tool {

namespace {

/// Creating the output would empty the movie.
void keepApart(const ExtractOptions& options) {
    std::error_code error;
    if (std::filesystem::equivalent(nativePath(options.file), nativePath(options.output), error) && !error) {
        throw ToolError(kUsage, "is to be read and written at once");
    }
}

void copyFrames(FrameWalk& walk, Output& output, std::uint64_t& missing) {
    Progress progress(walk.storedSamples());
    FramePlace place;
    try {
        while (const auto frame = walk.next(place)) {
            output.write({reinterpret_cast<const char*>(frame->getData()), frame->getDataLength()});
            missing += place.missing;
            progress.update(place.sample);
        }
    } catch (const ToolError& error) {
        if (error.code() == kMalformed) output.finish(); // what came before the damage is worth having
        throw;
    }
    output.finish();
}

} // namespace

void runExtract(const ExtractOptions& options) {
    Source source(options.file);
    const auto movie = openMovie(source);
    FrameWalk walk(trackOf(*movie, options.track));
    std::uint64_t missing = 0;
    if (options.output == "-") {
        Output output;
        copyFrames(walk, output, missing);
    } else {
        keepApart(options);
        Output output(options.output);
        copyFrames(walk, output, missing);
    }
    if (missing) {
        throw TrackError(options.track, fmt::format("the file ends early: {} bytes of track {} are missing",
                                                    missing, options.track));
    }
}

} // namespace Ketra::Tool
