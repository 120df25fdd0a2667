// Chapters and timecode: what has to be read out of samples.
#include "FrameWalk.h"
#include "InfoTrack.h"
#include "UserText.h"

#include <base/CException.h>

#include <algorithm>
#include <fmt/format.h>

namespace Ketra::Tool {

namespace {

/// Drop-frame counting leaves out numbers at the start of each minute but every tenth, so that 29.97 frames a
/// second keep step with the clock.
std::uint64_t withDroppedNumbers(std::uint64_t frame, unsigned int perSecond) {
    const std::uint64_t dropped = perSecond / 15;
    const std::uint64_t perMinute = perSecond * 60ULL - dropped;
    const std::uint64_t perTenMinutes = perSecond * 600ULL - dropped * 9;
    if (dropped == 0) return frame;
    const std::uint64_t tens = frame / perTenMinutes;
    const std::uint64_t rest = frame % perTenMinutes;
    const std::uint64_t minutes = rest < perSecond * 60ULL ? 0 : (rest - dropped) / perMinute;
    return frame + dropped * (tens * 9 + minutes);
}

std::string timecodeText(std::int64_t frame, unsigned int perSecond, bool dropFrame) {
    auto number = static_cast<std::uint64_t>(frame < 0 ? -frame : frame);
    if (dropFrame) number = withDroppedNumbers(number, perSecond);
    const std::uint64_t seconds = number / perSecond;
    return fmt::format("{}{:02}:{:02}:{:02}{}{:02}", frame < 0 ? "-" : "", seconds / 3600, seconds / 60 % 60,
                       seconds % 60, dropFrame ? ';' : ':', number % perSecond);
}

} // namespace

Json chaptersJson(QT::QTTrack& track) {
    Json chapters = Json::array();
    try {
        FrameWalk walk(track);
        FramePlace place;
        while (const auto frame = walk.next(place)) {
            chapters.push_back({{"title", sampleText(frame->getData(), frame->getDataLength())},
                                {"start", frame->getTime()},
                                {"duration", frame->getDuration()}});
        }
    } catch (const std::exception&) {
        // The chapters up to the damaged one are worth showing.
    }
    return chapters;
}

Json timecodeJson(QT::QTTimeCodeTrack& track) {
    constexpr unsigned int kSampleSize = 4;
    try {
        FrameWalk walk(track);
        FramePlace place;
        const auto sample = walk.next(place);
        if (!sample || sample->getDataLength() < kSampleSize) return nullptr;
        unsigned char* cursor = sample->getData();
        const unsigned int stored = QT::QTTrack::getUInt32(&cursor);
        const bool dropFrame = track.getDropFrameFlag() != 0;
        const std::int64_t frame =
            track.getNegativeTimesOKFlag() ? static_cast<std::int64_t>(static_cast<int>(stored)) : stored;
        const unsigned int perSecond = std::max(1U, track.getNumberOfFrames());
        Json json{{"start", nullptr},
                  {"rate", track.getFrameDuration()
                               ? Json(static_cast<double>(track.getTimeScale()) / track.getFrameDuration())
                               : Json()},
                  {"frames_per_second", track.getNumberOfFrames()},
                  {"drop_frame", dropFrame},
                  {"frame", frame}};
        // A counter counts something else than time.
        if (!track.getCounterFlag()) json["start"] = timecodeText(frame, perSecond, dropFrame);
        return json;
    } catch (const std::exception&) {
        return nullptr; // the rest of the file can be told nevertheless
    }
}

} // namespace Ketra::Tool
