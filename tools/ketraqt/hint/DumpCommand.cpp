#include "../Atoms.h"
#include "../Commands.h"
#include "../Json.h"
#include "../Output.h"
#include "../Source.h"
#include "../ToolError.h"
#include "HintReader.h"
#include "HintTracks.h"

#include <fmt/format.h>

namespace Ketra::Tool {

namespace {

std::string hexDigits(const ByteBlock& bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    text.reserve(2 * bytes.size());
    for (const unsigned char byte : bytes) {
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

Json packetJson(const HintedPacket& packet, unsigned int track, unsigned int media, double scale) {
    Json json{{"track", track},
              {"media_track", media},
              {"sample", packet.sample},
              {"time", packet.time},
              {"send_time", scale > 0 ? packet.time + packet.transmission / scale : packet.time},
              {"timestamp_offset", packet.offset},
              {"sequence", packet.sequence},
              {"payload_type", packet.payloadType},
              {"marker", packet.marker},
              {"size", packet.payload.size()},
              {"payload", hexDigits(packet.payload)}};
    if (packet.padding) json["padding"] = true;
    if (packet.extension) json["extension"] = true;
    if (packet.repeated) json["repeated"] = true;
    if (packet.disposable) json["disposable"] = true;
    if (packet.missing) json["missing"] = packet.missing;
    return json;
}

} // namespace

void runHintDump(const std::string& file) {
    Source source(file);
    const auto movie = openMovie(source);
    const auto tracks = hintTracksOf(*movie);
    if (tracks.empty()) throw ToolError(kNotAllowed, "has no hint tracks");
    Output output;
    std::uint64_t missing = 0;
    for (QT::QTTrack* track : tracks) {
        HintReader reader(*movie, *track);
        std::vector<HintedPacket> packets;
        while (reader.next(packets)) {
            for (const HintedPacket& packet : packets) {
                output.write(jsonLine(packetJson(packet, track->getID(), reader.mediaTrackID(),
                                                 track->getAtomMediaTimeScale())));
                missing += packet.missing;
            }
        }
    }
    output.finish();
    if (missing) throw ToolError(kMalformed, fmt::format("{} bytes of payloads are missing", missing));
}

} // namespace Ketra::Tool
