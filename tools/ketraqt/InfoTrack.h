// What `info` says about a movie and its tracks.
#pragma once

#include "Json.h"

#include <qt/QTMovie.h>
#include <qt/QTTrack.h>

#include <cstdint>
#include <string>

namespace Ketra::Tool {

/// id, type, format, timescale, duration, samples, key_frames, bit_rate, width and height or sample_rate,
/// channels and bits, edits; then what only some tracks have.
Json trackJson(QT::QTTrack& track);

/// The bytes of all samples in chunks.
std::uint64_t payloadBytes(QT::QTTrack& track);

/// [{title, start, duration}] (seconds) of a text track.
Json chaptersJson(QT::QTTrack& track);

/// {start, rate, frames_per_second, drop_frame, frame} of a timecode track; null when its sample can't be
/// read.
Json timecodeJson(QT::QTTimeCodeTrack& track);

/// All that `info` says about a movie.
Json movieJson(const std::string& file, QT::QTMovie& movie);

} // namespace Ketra::Tool
