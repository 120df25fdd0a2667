#include "remux/TrackInput.h"

namespace Ketra::Tool {

using QT::fourCC;

TrackInput::~TrackInput() = default;

void TrackInput::add(QT::QTTrack& track, Packet& packet) { track.addSample(packet.frame.get()); }

std::unique_ptr<PacketSource> TrackInput::packetsOf(QT::QTTrack& written, double longest) const {
    return std::make_unique<FramePackets>(written, longest);
}

void TrackInput::beforePreparing(QT::QTTrack&) {}

unsigned int trackType(MediaKind kind) {
    switch (kind) {
    case MediaKind::kVideo:
        return fourCC("vide");
    case MediaKind::kSound:
        return fourCC("audi");
    case MediaKind::kText:
        return fourCC("text");
    case MediaKind::kTimecode:
        return fourCC("tmcd");
    }
    return 0;
}

void dropEdits(QT::QTTrack& track, std::vector<std::unique_ptr<QT::QTAtom>>& removed) {
    QT::QTAtom* trak = track.getTrak();
    if (QT::QTAtom* edits = trak->getAtomOfType(fourCC("edts"))) {
        trak->removeAtomOfType(fourCC("edts"));
        removed.emplace_back(edits);
        track.initAtoms();
    }
}

} // namespace Ketra::Tool
