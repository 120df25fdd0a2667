#include "InfoTrack.h"
#include "Output.h"
#include "ToolError.h"
#include "remux/CopiedTrack.h"
#include "remux/Remux.h"
#include "remux/TimecodeText.h"

#include <fmt/format.h>

namespace Ketra::Tool {

void runTimecode(const TimecodeOptions& options) {
    if (!options.start.empty()) {
        RemuxOptions remux;
        remux.file = options.file;
        remux.output = options.output;
        remux.startTimecode = options.start;
        remux.rate = options.rate;
        remux.force = options.force;
        runRemux(remux);
        return;
    }
    Source source(options.file);
    const auto movie = openMovie(source);
    Output output;
    for (QT::QTTrack* track : movie->getTracks()) {
        auto* code = dynamic_cast<QT::QTTimeCodeTrack*>(track);
        const Json json = code ? timecodeJson(*code) : Json();
        if (json.is_null() || json["start"].is_null()) continue;
        const std::string rate =
            json["rate"].is_null() ? "?" : fmt::format("{:.6g}", json["rate"].get<double>());
        output.write(
            fmt::format("{} {} fps (track {})\n", json["start"].get<std::string>(), rate, track->getID()));
    }
    output.finish();
}

} // namespace Ketra::Tool
