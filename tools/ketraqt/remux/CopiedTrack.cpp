#include "remux/CopiedTrack.h"

#include "Atoms.h"
#include "ToolError.h"
#include "remux/Descriptions.h"
#include "remux/RawAtom.h"
#include "remux/TablePackets.h"
#include "remux/UserData.h"

#include <qt/QTAtoms.h>

#include <algorithm>
#include <fmt/format.h>
#include <memory>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

using Removed = std::vector<std::unique_ptr<QT::QTAtom>>;

QT::QTAtom* tablesOf(const QT::QTTrack& track) {
    return atomAt<QT::QTAtom>(track.getTrak(), {fourCC("mdia"), fourCC("minf"), fourCC("stbl")});
}

/// Packed letters in files of the newer kind, a Macintosh number below them in QuickTime files.
unsigned short languageFor(unsigned short code, bool quickTime) {
    constexpr unsigned short kFirstPacked = 0x400;
    constexpr unsigned short kEnglish = 0x15C7;
    constexpr unsigned short kUndetermined = 0x55C4;
    if (quickTime || code >= kFirstPacked) return code;
    return code == 0 ? kEnglish : kUndetermined;
}

/// Flags that are read keep their first byte in the low bits, flags that are written their last.
unsigned int flagsToWrite(unsigned int read) {
    return (read & 0xFF) << 16 | (read & 0xFF00) | (read >> 16 & 0xFF);
}

void addTo(QT::QTAtom& parent, Bytes bytes) {
    if (bytes.empty()) return;
    auto raw = std::make_unique<RawAtom>(std::move(bytes));
    if (parent.addChild(raw.get()) == 0) static_cast<void>(raw.release());
}

} // namespace

bool mediaKindOf(QT::QTTrack& track, MediaKind& kind) {
    const auto* handler = atomAt<QT::HDLR>(track.getTrak(), {fourCC("mdia"), fourCC("hdlr")});
    const unsigned int subType = handler ? handler->getComponentSubType() : 0;
    const unsigned int type = track.getType();
    if (type == fourCC("vide")) {
        kind = MediaKind::kVideo;
    } else if (type == fourCC("audi")) {
        kind = MediaKind::kSound;
    } else if (subType == fourCC("text") || subType == fourCC("sbtl")) {
        kind = MediaKind::kText;
    } else if (subType == fourCC("tmcd")) {
        kind = MediaKind::kTimecode;
    } else {
        return false;
    }
    return true;
}

template <class Atom>
Atom* CopiedTrack::table(const QT::QTTrack& track, unsigned int type) const {
    return childOf<Atom>(tablesOf(track), type);
}

CopiedTrack::CopiedTrack(QT::QTTrack& track, MediaKind kind, QT::QTStream& stream, bool fromQuickTime)
    : source_(track), kind_(kind), stream_(stream), fromQuickTime_(fromQuickTime),
      byTables_(wantsTables(track)), hasSync_(table<QT::STSS>(track, fourCC("stss")) != nullptr),
      hasOffsets_(table<QT::CTTS>(track, fourCC("ctts")) != nullptr) {
    if (const auto* offsets = table<QT::CTTS>(track, fourCC("ctts"))) {
        for (const QT::CTTSData* entry : offsets->getCompositionTimeTable()) {
            shift_ = std::max<std::int64_t>(shift_, -std::int64_t{entry->getSampleOffset()});
        }
    }
    if (const auto* list = atomAt<QT::ELST>(track.getTrak(), {fourCC("edts"), fourCC("elst")}))
        edits_ = editsOf(stream, *list);
    if (auto* header = childOf<QT::TKHD>(track.getTrak(), fourCC("tkhd")))
        header_ = trackHeader(stream, *header);
    if (timeScale() == 0) {
        throw ToolError(kMalformed, fmt::format("track {} has no time scale", track.getID()));
    }
}

std::unique_ptr<PacketSource> CopiedTrack::packets(double longest) { return packetsOf(source_, longest); }

std::unique_ptr<PacketSource> CopiedTrack::packetsOf(QT::QTTrack& written, double longest) const {
    if (byTables_) return std::make_unique<TablePackets>(written, longest);
    return std::make_unique<FramePackets>(written, longest);
}

std::uint64_t CopiedTrack::bytes() const {
    auto* sizes = table<QT::STSZ>(source_, fourCC("stsz"));
    return sizes ? sizes->getCalculatedSize() : 0;
}

void CopiedTrack::configure(QT::QTTrack& track) {
    grouped_ = false;
    stored_ = 0;
    track.setAtomMediaTimeScale(timeScale());
    configureDescription(source_, track);
}

void CopiedTrack::add(QT::QTTrack& track, Packet& packet) {
    grouped_ = grouped_ || packet.samples > 1;
    stored_ += packet.samples;
    if (packet.partialKey) {
        track.addPartialSyncSample(packet.frame.get());
    } else if (hasSync_ && packet.key) {
        track.addSyncSample(packet.frame.get());
    } else {
        track.addSample(packet.frame.get());
    }
    if (hasOffsets_ && kind_ != MediaKind::kVideo) { // pictures get theirs from their times
        const std::int64_t offset = packet.presentation - packet.decode;
        track.addAtomCodingTimeToSample(new QT::CTTSData(packet.samples, static_cast<unsigned int>(offset)));
    }
}

/// The edits of the source, before others would be made up. Their times need no change: media times are in
/// units of the media, which stay, and the movie keeps its time scale.
void CopiedTrack::beforePreparing(QT::QTTrack& track) {
    std::uint64_t length = 0;
    for (const Edit& edit : edits_) {
        if (edit.duration > 0xFFFFFFFF || edit.mediaTime > 0x7FFFFFFF || edit.mediaTime < -1) {
            throw ToolError(kNotAllowed, fmt::format("track {} has edits beyond 32 bits", source_.getID()));
        }
        length += edit.duration;
        auto entry = std::make_unique<QT::ELSTData>(static_cast<unsigned int>(edit.duration),
                                                    static_cast<int>(edit.mediaTime), edit.rate);
        if (track.addAtomEditListEntry(entry.get()) == 0) static_cast<void>(entry.release());
    }
    if (length > 0) {
        track.setAtomHeaderDuration(static_cast<unsigned int>(std::min<std::uint64_t>(length, 0xFFFFFFFF)));
    }
}

void CopiedTrack::settle(QT::QTTrack& track, Removed& removed) {
    carryDescriptions(source_, track, kind_, fromQuickTime_);
    if (edits_.empty()) dropEdits(track, removed);
    settleHeader(track);
    settleTables(track, removed);
    if (grouped_) settleDurations(track);
    if (grouped_ || byTables_) settleSizes(track);
    carryUserData(stream_, *source_.getTrak(), *track.getTrak());
    track.initAtoms();
}

void CopiedTrack::settleHeader(QT::QTTrack& track) {
    const bool quickTime = track.getMovieType() == QT::kMOV;
    auto* header = childOf<QT::TKHD>(track.getTrak(), fourCC("tkhd"));
    if (header && header_) {
        const unsigned int duration = header->getDuration();
        *header = *header_;
        header->setTrackID(track.getID());
        header->setDuration(duration);
        header->setFlags(flagsToWrite(header_->getFlags()));
    }
    track.setAtomMediaLanguage(languageFor(source_.getAtomMediaLanguage(), quickTime));
    const auto* from = atomAt<QT::MDHD>(source_.getTrak(), {fourCC("mdia"), fourCC("mdhd")});
    auto* to = atomAt<QT::MDHD>(track.getTrak(), {fourCC("mdia"), fourCC("mdhd")});
    if (from && to && from->getCreationTime() <= 0xFFFFFFFF) to->setCreationTime(from->getCreationTime());
}

void CopiedTrack::settleTables(QT::QTTrack& track, Removed& removed) {
    QT::QTAtom* tables = tablesOf(track);
    // Which samples can be left out is known only if the source says so.
    if (QT::QTAtom* guessed = tables->getAtomOfType(fourCC("sdtp"))) {
        tables->removeAtomOfType(fourCC("sdtp"));
        removed.emplace_back(guessed);
    }
    for (const unsigned int type : {fourCC("sdtp"), fourCC("sgpd"), fourCC("sbgp"), fourCC("subs")}) {
        for (QT::QTAtom* child : tablesOf(source_)->getChildren()) {
            if (child->getType() == type) addTo(*tables, bytesOf(*child));
        }
    }
    auto* offsets = childOf<QT::CTTS>(tables, fourCC("ctts"));
    if (offsets && shift_ > 0 && track.getMovieType() != QT::kMOV) offsets->setVersion(1); // signed offsets
}

/// Packets are cut where the chunks end, which the durations of the source need not respect.
void CopiedTrack::settleDurations(QT::QTTrack& track) {
    const auto* from = table<QT::STTS>(source_, fourCC("stts"));
    auto* to = table<QT::STTS>(track, fourCC("stts"));
    if (!from || !to) return;
    std::uint64_t count = 0;
    std::vector<QT::STTSData*> copies;
    for (const QT::STTSData* entry : from->getTimeToSampleTable()) {
        count += entry->getSampleCount();
        copies.push_back(new QT::STTSData(entry->getSampleCount(), entry->getDuration()));
    }
    if (count == stored_) {
        to->setTimeToSampleTable(copies);
    } else {
        std::for_each(copies.begin(), copies.end(), [](QT::STTSData* entry) { delete entry; });
    }
}

/// Sizes as the source has them, for what its tables tell; plain PCM has been given its own.
void CopiedTrack::settleSizes(QT::QTTrack& track) {
    const auto* from = table<QT::STSZ>(source_, fourCC("stsz"));
    auto* to = table<QT::STSZ>(track, fourCC("stsz"));
    if (!from || !to || (!byTables_ && to->getSampleSize() != 0)) return;
    std::vector<QT::STSZData*> copies;
    if (from->getSampleSize() == 0) {
        for (const QT::STSZData* entry : from->getSampleSizeTable()) {
            if (copies.size() < stored_) copies.push_back(new QT::STSZData(entry->getSize()));
        }
    }
    to->setSampleSizeTable(copies);
    to->setSampleSize(from->getSampleSize());
    to->setNumberOfEntries(static_cast<unsigned int>(stored_));
}

} // namespace Ketra::Tool
