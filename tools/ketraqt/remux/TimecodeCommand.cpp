#include "Atoms.h"
#include "FrameWalk.h"
#include "Output.h"
#include "remux/CopiedTrack.h"
#include "remux/Extensions.h"
#include "remux/Remux.h"
#include "remux/TimecodeText.h"

#include <qt/QTAtoms.h>

#include <algorithm>
#include <fmt/format.h>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

/// The line for a timecode track, of whatever kind of file; empty when it does not count time.
std::string timecodeLine(QT::QTTrack& track) {
    constexpr unsigned int kDropFrame = 1;
    constexpr unsigned int kNegative = 4;
    constexpr unsigned int kCounter = 8;
    const auto* table =
        atomAt<QT::STSD>(track.getTrak(), {fourCC("mdia"), fourCC("minf"), fourCC("stbl"), fourCC("stsd")});
    const QT::STSDData* entry = table ? table->getSampleDescriptionData(0) : nullptr;
    constexpr unsigned int kFixed = 17;
    if (!entry || entry->getDataFormat() != fourCC("tmcd") || entry->getDataSize() < kFixed) return {};
    const Bytes body(entry->getData(), entry->getData() + entry->getDataSize());
    const auto flags = static_cast<unsigned int>(numberIn(body, 4, 4));
    const auto perSecond = static_cast<unsigned int>(numberIn(body, 16, 1));
    FramePlace place;
    const auto sample = FrameWalk(track).next(place);
    if (!sample || sample->getDataLength() < 4 || (flags & kCounter)) return {};
    const Bytes bytes(sample->getData(), sample->getData() + 4);
    const auto stored = static_cast<unsigned int>(numberIn(bytes, 0, 4));
    const std::int64_t frame =
        flags & kNegative ? static_cast<std::int64_t>(static_cast<int>(stored)) : stored;
    const double duration = static_cast<double>(numberIn(body, 12, 4));
    const double rate = duration > 0 ? static_cast<double>(numberIn(body, 8, 4)) / duration : perSecond;
    return fmt::format("{} {:.6g} fps (track {})\n",
                       timecodeText(frame, std::max(1U, perSecond), (flags & kDropFrame) != 0), rate,
                       track.getID());
}

} // namespace

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
        MediaKind kind = MediaKind::kVideo;
        if (mediaKindOf(*track, kind) && kind == MediaKind::kTimecode) output.write(timecodeLine(*track));
    }
    output.finish();
}

} // namespace Ketra::Tool
