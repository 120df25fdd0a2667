// Chapters and timecode: what has to be read out of samples.
#include "FrameWalk.h"
#include "InfoTrack.h"
#include "UserText.h"
#include "remux/TimecodeText.h"

#include <base/CException.h>

#include <algorithm>

namespace Ketra::Tool {

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
