#include "MakePacketizer.h"

#include "../Atoms.h"
#include "../Text.h"
#include "../ToolError.h"
#include "AacPacketizer.h"
#include "AmrPacketizer.h"
#include "Configuration.h"
#include "NalPacketizer.h"
#include "PcmPacketizer.h"
#include "VisualPacketizer.h"

#include <qt/QTAtoms.h>

#include <fmt/format.h>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

constexpr unsigned int kVideoClock = 90000;
constexpr unsigned int kLittleEndian = fourCC("lit ");

using Made = std::unique_ptr<Packetizer>;

[[noreturn]] void refuse(const QT::QTTrack& track, const std::string& why) {
    throw ToolError(kNotAllowed, fmt::format("track {} cannot be hinted: {}", track.getID(), why));
}

StreamFormat videoFormat(const char* encoding, std::string parameters) {
    return {true, encoding, kVideoClock, 0, std::move(parameters)};
}

StreamFormat audioFormat(const char* encoding, const QT::QTAudioTrack& track, std::string parameters) {
    const double rate = track.getSampleRate();
    if (!(rate >= 1 && rate <= 1e6)) refuse(track, "it has no sample rate");
    return {false, encoding, static_cast<unsigned int>(rate + 0.5), std::max(1U, track.getChannels()),
            std::move(parameters)};
}

Made makeH264(const QT::QTTrack& track, std::size_t largest) {
    NalConfiguration found = configurationOfH264(track);
    return std::make_unique<NalPacketizer>(videoFormat("H264", std::move(found.parameters)), largest,
                                           NalKind::kH264, found.lengthSize);
}

Made makeH265(const QT::QTTrack& track, std::size_t largest) {
    NalConfiguration found = configurationOfH265(track);
    return std::make_unique<NalPacketizer>(videoFormat("H265", std::move(found.parameters)), largest,
                                           NalKind::kH265, found.lengthSize);
}

/// The profile stands in the header of the visual object sequence that the configuration begins with.
Made makeVisual(const QT::QTTrack& track, std::size_t largest) {
    const ByteView info = specificInfoOf(track);
    if (info.size == 0) refuse(track, "it has no decoder configuration");
    const bool begins = info.size > 4 && info[0] == 0 && info[1] == 0 && info[2] == 1 && info[3] == 0xB0;
    const unsigned int profile = begins ? info[4] : 1;
    return std::make_unique<VisualPacketizer>(
        videoFormat("MP4V-ES", fmt::format("profile-level-id={};config={}", profile, upperHex(info))),
        largest);
}

Made makeAac(const QT::QTTrack& track, std::size_t largest) {
    const ByteView info = specificInfoOf(track);
    const auto& audio = dynamic_cast<const QT::QTAudioTrack&>(track);
    const auto* config =
        audio.getESDS()
            ? dynamic_cast<const QT::DecoderConfigDescriptor*>(audio.getESDS()->getDescriptorTag(4))
            : nullptr;
    const unsigned int kind = config ? config->getObjectTypeIndication() : 0x40;
    if (info.size < 2 || (kind != 0x40 && (kind < 0x66 || kind > 0x68))) refuse(track, "it is not AAC");
    return std::make_unique<AacPacketizer>(
        audioFormat("mpeg4-generic", audio,
                    fmt::format("streamtype=5;profile-level-id=1;mode=AAC-hbr;sizelength=13;indexlength=3;"
                                "indexdeltalength=3;config={}",
                                upperHex(info))),
        largest);
}

Made makeAmr(const QT::QTTrack& track, std::size_t largest) {
    const bool wide = track.getDataFormat() == fourCC("sawb");
    StreamFormat format{false, wide ? "AMR-WB" : "AMR", wide ? 16000U : 8000U, 1, "octet-align=1"};
    return std::make_unique<AmrPacketizer>(std::move(format), largest, wide);
}

Made makePcm(const QT::QTTrack& track, std::size_t largest) {
    const auto& audio = dynamic_cast<const QT::QTAudioTrack&>(track);
    if (audio.getSampleSize() != 16) refuse(track, "its samples are not of 16 bits");
    const bool little = track.getDataFormat() == fourCC("sowt") ||
                        (track.getDataFormat() != fourCC("twos") && audio.getEndian() == kLittleEndian);
    return std::make_unique<PcmPacketizer>(audioFormat("L16", audio, {}), largest, little);
}

struct Row {
    unsigned int format;
    unsigned int type; // of the track
    Made (*make)(const QT::QTTrack& track, std::size_t largest);
};

// The parameter sets of "avc3" and "hev1" may change in the samples: those are sent as they are.
constexpr Row kRows[] = {
    {fourCC("avc1"), fourCC("vide"), makeH264}, {fourCC("avc3"), fourCC("vide"), makeH264},
    {fourCC("h264"), fourCC("vide"), makeH264}, {fourCC("hvc1"), fourCC("vide"), makeH265},
    {fourCC("hev1"), fourCC("vide"), makeH265}, {fourCC("mp4v"), fourCC("vide"), makeVisual},
    {fourCC("mp4a"), fourCC("audi"), makeAac},  {fourCC("samr"), fourCC("audi"), makeAmr},
    {fourCC("sawb"), fourCC("audi"), makeAmr},  {fourCC("sowt"), fourCC("audi"), makePcm},
    {fourCC("twos"), fourCC("audi"), makePcm},  {fourCC("lpcm"), fourCC("audi"), makePcm},
};

/// Hint samples take what one description promises, out of this file.
void requirePlainTrack(const QT::QTTrack& track) {
    constexpr unsigned int kInThisFile = 0x010000; // the flags are read with their last byte first
    QT::QTAtom* minf = atomAt<QT::QTAtom>(track.getTrak(), {fourCC("mdia"), fourCC("minf")});
    const auto* table = atomAt<QT::STSD>(minf, {fourCC("stbl"), fourCC("stsd")});
    if (!table || table->getSampleDescriptionTable().size() != 1) {
        refuse(track, "it has more than one sample description");
    }
    const auto* references = atomAt<QT::DREF>(minf, {fourCC("dinf"), fourCC("dref")});
    for (const QT::DREFEntry* entry :
         references ? references->getDataReferenceTable() : std::vector<QT::DREFEntry*>()) {
        if (entry && !(entry->getFlags() & kInThisFile)) refuse(track, "its media are in another file");
    }
}

} // namespace

std::unique_ptr<Packetizer> makePacketizer(const QT::QTTrack& track, std::size_t largestPayload) {
    const unsigned int type = const_cast<QT::QTTrack&>(track).getType();
    for (const Row& row : kRows) {
        if (row.format != track.getDataFormat() || row.type != type) continue;
        requirePlainTrack(track);
        return row.make(track, largestPayload);
    }
    refuse(track, fmt::format("there is no way to send {}", codeText(track.getDataFormat())));
}

} // namespace Ketra::Tool
