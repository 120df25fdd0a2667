// Decoder configurations out of sample descriptions.
#pragma once

#include "Packetizer.h"

#include <qt/QTTrack.h>

#include <optional>

namespace Ketra::Tool {

/// What a decoder has to know before the first sample.
struct NalConfiguration {
    unsigned int lengthSize = 4;
    std::string parameters; ///< for the session description
};

/// The payload of the extension of the track's only sample description, which lies behind `fixedBytes` of it.
std::optional<ByteView> extensionOf(const QT::QTTrack& track, std::size_t fixedBytes, unsigned int type);

/// From "avcC" and "hvcC". Throw ToolError when there is none that makes sense.
NalConfiguration configurationOfH264(const QT::QTTrack& track);
NalConfiguration configurationOfH265(const QT::QTTrack& track);

/// The decoder's own configuration, empty without one.
ByteView specificInfoOf(const QT::QTTrack& track);

std::string base64(ByteView bytes);
std::string upperHex(ByteView bytes);

} // namespace Ketra::Tool
