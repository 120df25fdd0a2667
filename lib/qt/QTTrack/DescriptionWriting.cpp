// Writing an MPEG-4 systems track.
#include <qt/QTAtoms/media/DREFEntry.h>
#include <qt/QTAtoms/systems/MPOD.h>
#include <qt/QTAtoms/track/TrackReferences.h>
#include <qt/QTTrack/QTDescriptionTrack.h>
#include <qt/QTTrack/detail/MediaWriting.h>
#include <qt/wire/Throw.h>

#include <cstring>

namespace Ketra::QT {

namespace {

constexpr unsigned int kDuration = 600;
constexpr unsigned int kSelfContained = 1;
constexpr unsigned char kSceneInfo[] = {0x00, 0x00, 0x40};

/// The two kinds of systems streams.
struct Kind {
    unsigned int mediaType;
    unsigned char streamType;
    unsigned int specificInfoSize;
};
constexpr Kind kKinds[] = {{fourCC("odsm"), 1, 0}, {fourCC("sdsm"), 3, sizeof kSceneInfo}};

void addReference(QTAtom* tref, std::unique_ptr<QTAtom> reference) {
    if (tref && reference && tref->addChild(reference.get()) == 0) static_cast<void>(reference.release());
}

} // namespace

/// The scene names its object descriptor stream, which names the streams of the objects.
void QTDescriptionTrack::writeReferences() {
    if (getMediaType() == fourCC("sdsm")) {
        addReference(tref(), std::make_unique<DPND>(odsmTrackID_));
    } else if (mpod_->data()) {
        wire::Block copy(*mpod_); // the atom keeps its own
        const auto count = static_cast<unsigned int>(copy.size() / sizeof(unsigned int));
        addReference(tref(), std::make_unique<MPOD>(reinterpret_cast<unsigned int*>(copy.release()), count));
    }
}

int QTDescriptionTrack::prepareForWriting() {
    const auto* kind = std::find_if(std::begin(kKinds), std::end(kKinds),
                                    [this](const Kind& k) { return k.mediaType == getMediaType(); });
    setAtomHeaderDuration(kDuration);
    setAtomMediaDuration(kDuration);
    auto data = std::make_unique<DREFEntry>(fourCC("url "), kSelfContained);
    if (addAtomDataReference(data.get()) == 0) static_cast<void>(data.release());
    STSDData* entry = getCurrentAtomSampleDescriptionData();
    if (entry) entry->setDataFormat(fourCC("mp4s"));
    if (kind == std::end(kKinds)) {
        QT_THROW(wire::area::kTrack, "Ketra::QT::QTDescriptionTrack::prepareForWriting",
                 "Unknown description media type.");
    }
    writeReferences();
    wire::StreamConfiguration stream;
    stream.objectTypeIndication = 2;
    stream.streamType = kind->streamType;
    stream.streamPriority = 1;
    stream.specificInfo = kSceneInfo;
    stream.specificInfoSize = kind->specificInfoSize;
    if (entry) {
        if (!extensions_) extensions_ = std::make_shared<wire::ExtensionList>();
        extensions_->begin(*entry);
        extensions_->add(wire::makeESDS(stream));
    }
    return QTTrack::prepareForWriting();
}

} // namespace Ketra::QT
