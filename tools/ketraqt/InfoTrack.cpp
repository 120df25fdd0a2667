#include "InfoTrack.h"

#include "Atoms.h"
#include "Text.h"
#include "UserText.h"

#include <qt/QTAtoms.h>
#include <qt/QTChunk.h>

#include <cmath>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

/// The atoms of a track that are asked more than once; any may be null.
struct Parts {
    QT::HDLR* handler;
    QT::QTAtom* stbl;
    QT::STSD* stsd;
    QT::STSZ* stsz;
    QT::STSS* stss;
    QT::ELST* elst;
    QT::TREF* tref;
    QT::UDTA* udta;

    explicit Parts(const QT::QTTrack& track)
        : handler(atomAt<QT::HDLR>(track.getTrak(), {fourCC("mdia"), fourCC("hdlr")})),
          stbl(atomAt<QT::QTAtom>(track.getTrak(), {fourCC("mdia"), fourCC("minf"), fourCC("stbl")})),
          stsd(childOf<QT::STSD>(stbl, fourCC("stsd"))), stsz(childOf<QT::STSZ>(stbl, fourCC("stsz"))),
          stss(childOf<QT::STSS>(stbl, fourCC("stss"))),
          elst(atomAt<QT::ELST>(track.getTrak(), {fourCC("edts"), fourCC("elst")})),
          tref(childOf<QT::TREF>(track.getTrak(), fourCC("tref"))),
          udta(childOf<QT::UDTA>(track.getTrak(), fourCC("udta"))) {}
};

/// The number of frames that lie in chunks. Halving finds it: a frame beyond the last has no chunk.
unsigned int framesOf(QT::QTChunk& chunk, unsigned int stored) {
    unsigned int low = 0;
    unsigned int high = stored;
    while (low < high) {
        const unsigned int middle = low + (high - low) / 2 + 1;
        if (chunk.findChunkNumber(middle) != 0) {
            low = middle;
        } else {
            high = middle - 1;
        }
    }
    return low;
}

/// All bytes of the track. A constant sample size may count samples instead of bytes, so there the cursor,
/// which knows the real size of a frame, is asked.
std::uint64_t payloadBytes(QT::QTTrack& track, const Parts& parts) {
    if (!parts.stsz) return 0;
    if (parts.stsz->getSampleSize() == 0) return parts.stsz->getCalculatedSize();
    QT::QTChunk* chunk = track.getChunk();
    if (!chunk || chunk->reset() != 0) return 0;
    return static_cast<std::uint64_t>(chunk->findSampleSize(1)) *
           framesOf(*chunk, parts.stsz->getNumberOfEntries());
}

Json editsJson(const QT::ELST* elst) {
    Json edits = Json::array();
    if (!elst) return edits;
    for (const QT::ELSTData* edit : elst->getEditListTable()) {
        edits.push_back({{"duration", edit->getDuration()},
                         {"media_time", edit->getMediaTime()},
                         {"rate", edit->getMediaRate()}});
    }
    return edits;
}

Json referencesJson(const QT::TREF* tref) {
    Json references = Json::array();
    for (QT::QTAtom* child : tref ? tref->getChildren() : std::vector<QT::QTAtom*>()) {
        if (!child) continue;
        Json tracks = Json::array();
        if (const auto* one = dynamic_cast<QT::TrackReference*>(child)) {
            tracks.push_back(one->getTrackID());
        } else if (const auto* many = dynamic_cast<QT::MPOD*>(child)) {
            for (unsigned int i = 0; i < many->getTrackRefCount(); ++i) {
                // The list is held as the file has it, most significant byte first.
                auto* cursor = reinterpret_cast<unsigned char*>(many->getTrackRefs() + i);
                tracks.push_back(QT::QTTrack::getUInt32(&cursor));
            }
        }
        references.push_back({{"type", codeText(child->getType())}, {"tracks", std::move(tracks)}});
    }
    return references;
}

/// Payload type and session description, as the hint information has them.
Json hintJson(const QT::UDTA* udta) {
    Json hint{{"payload_type", nullptr}, {"sdp", nullptr}};
    if (const auto* hinf = childOf<QT::HINF>(udta, fourCC("hinf"))) {
        for (const QT::QTDataAtom* entry : hinf->getDataAtoms()) {
            if (entry->getType() != fourCC("payt") || entry->getSize() < 12 || !entry->getData()) continue;
            unsigned char* cursor = entry->getData();
            hint["payload_type"] = QT::QTTrack::getUInt32(&cursor);
        }
    }
    if (const auto* hnti = childOf<QT::HNTI>(udta, fourCC("hnti"))) {
        for (const QT::QTDataAtom* entry : hnti->getDataAtoms()) {
            if (entry->getType() == fourCC("sdp ")) hint["sdp"] = userText(*entry);
        }
    }
    return hint;
}

Json switchGroupJson(const QT::TSEL& group) {
    Json attributes = Json::array();
    for (const unsigned int attribute : group.getAttributeList()) {
        attributes.push_back(codeText(attribute));
    }
    return {{"group", group.getSwitchGroup()}, {"attributes", std::move(attributes)}};
}

void addPicture(Json& json, QT::QTTrack& track) {
    if (const auto* video = dynamic_cast<QT::QTVideoTrack*>(&track)) {
        json["width"] = video->getWidth();
        json["height"] = video->getHeight();
    } else if (const auto* audio = dynamic_cast<QT::QTAudioTrack*>(&track)) {
        json["sample_rate"] = audio->getSampleRate();
        json["channels"] = audio->getChannels();
        json["bits"] = audio->getSampleSize();
    }
}

void addRest(Json& json, QT::QTTrack& track, const Parts& parts) {
    if (const auto* video = dynamic_cast<QT::QTVideoTrack*>(&track)) {
        json["display_width"] = video->getDisplayWidth();
        json["display_height"] = video->getDisplayHeight();
    }
    // Some codecs hide behind the code of another; the configuration in the description tells.
    if (const auto codec = track.getDataFormat(); codec && codeText(codec) != json["format"]) {
        json["codec"] = codeText(codec);
    }
    json["language"] = languageText(track.getAtomMediaLanguage());
    json["handler"] = parts.handler ? handlerName(*parts.handler) : std::string();
    json["references"] = referencesJson(parts.tref);
    if (track.getAlternateGroup()) json["alternate_group"] = track.getAlternateGroup();
    if (const auto* group = childOf<QT::TSEL>(parts.udta, fourCC("tsel")))
        json["switch_group"] = switchGroupJson(*group);
    const bool hints = parts.handler && parts.handler->getComponentSubType() == fourCC("hint");
    if (hints) json["hint"] = hintJson(parts.udta);
    if (auto* timecode = dynamic_cast<QT::QTTimeCodeTrack*>(&track))
        json["timecode"] = timecodeJson(*timecode);
    json["user_data"] =
        userDataJson(parts.udta ? parts.udta->getDataAtoms() : std::vector<QT::QTDataAtom*>());
}

} // namespace

std::uint64_t payloadBytes(QT::QTTrack& track) { return payloadBytes(track, Parts(track)); }

Json trackJson(QT::QTTrack& track) {
    const Parts parts(track);
    const auto* entry = parts.stsd ? parts.stsd->getSampleDescriptionData(0) : nullptr;
    const unsigned int samples = parts.stsz ? parts.stsz->getNumberOfEntries() : 0;
    const double duration = track.getDuration();
    const double rate = duration > 0 ? static_cast<double>(payloadBytes(track, parts)) * 8 / duration : 0;
    Json json{{"id", track.getID()},
              {"type", codeText(parts.handler ? parts.handler->getComponentSubType() : 0)},
              {"format", entry ? codeText(entry->getDataFormat()) : std::string()},
              {"timescale", track.getAtomMediaTimeScale()},
              {"duration", duration},
              {"samples", samples},
              {"key_frames", parts.stss ? parts.stss->getNumberOfEntries() : samples},
              {"bit_rate", rate < 0x1p62 ? std::llround(rate) : 0}};
    addPicture(json, track);
    json["edits"] = editsJson(parts.elst);
    addRest(json, track, parts);
    return json;
}

} // namespace Ketra::Tool
