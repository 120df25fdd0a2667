// The writing sequence: an empty movie, its tracks, and what is settled at the end.
#include <qt/QTAtoms.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>
#include <qt/QTTrack/detail/UserData.h>
#include <qt/wire/Access.h>
#include <qt/wire/Numbers.h>

#include <algorithm>
#include <memory>

namespace Ketra::QT {

namespace {

constexpr unsigned int kMovieTimeScale = 600;
// Times of a movie that nobody has told where it starts and ends.
constexpr double kNoStart = -1.0;
constexpr double kNoEnd = 0;

bool isHint(unsigned int type) { return type == fourCC("vihi") || type == fourCC("auhi"); }

} // namespace

QTMovie* QTMovie::beginMovie(QTMovieConstructionFlags type, bool hinted, bool ftypForMov) {
    std::unique_ptr<QTMovie> movie(new QTMovie(type));
    QTAtom* root = movie->root_.get();
    if (type != kMOV || ftypForMov) wire::requireChild<FTYP>(root, fourCC("ftyp"));
    QTAtom* moov = wire::requireChild<MOOV>(root, fourCC("moov"));
    if (type == kMP4) wire::requireChild<IODS>(moov, fourCC("iods"));
    wire::requireChild<MVHD>(moov, fourCC("mvhd"));
    if (hinted) wire::requireChild<HNTI>(wire::requireChild<UDTA>(moov, fourCC("udta")), fourCC("hnti"));
    root->updateSize();
    movie->useFtypForMov_ = ftypForMov;
    movie->startTime_ = kNoStart;
    movie->endTime_ = kNoEnd;
    movie->initAtoms();
    movie->setTimeScale(kMovieTimeScale);
    return movie.release();
}

QTTrack* QTMovie::beginTrack(unsigned int type, QTMovieConstructionFlags flags) {
    const unsigned int id = getNewTrackID(); // throws without "moov"
    std::unique_ptr<QTTrack> track(QTTrack::createNewQTTrackFromType(id, type, flags));
    std::unique_ptr<QTAtom> tree(track->getTrak());
    hasHintTracks_ = hasHintTracks_ || isHint(type);
    track->setMovieTimeScale(getTimeScale());
    tracks_.push_back(track.get());
    QTTrack* added = track.release();
    adoptIntoMoov(std::move(tree));
    return added;
}

int QTMovie::endTrack(unsigned int trackID) {
    QTTrack* track = getTrackID(trackID);
    return track ? track->endTrack() : -1;
}

int QTMovie::endMovie() {
    if (!std::all_of(tracks_.begin(), tracks_.end(), [](QTTrack* track) { return track->getIsClosed(); })) {
        return -1;
    }
    ended_ = true;
    return 0;
}

/// A movie without a duration of its own lasts from its start to its end; one that was given neither, as long
/// as its longest track.
void QTMovie::settleDuration() {
    double seconds = duration_;
    if (seconds == 0) {
        double longest = 0;
        for (const QTTrack* track : tracks_) {
            longest = std::max(longest, track->getDuration());
        }
        const bool untold = startTime_ == kNoStart && endTime_ == kNoEnd;
        seconds = untold && longest > 0 ? longest : endTime_ - startTime_;
    }
    setAtomDuration(wire::toUnsigned32(seconds * getTimeScale() + 0.5));
}

/// What a player of the movie's object descriptor must be able to do; players of today do not ask.
void QTMovie::settleProfileLevels() {
    constexpr unsigned char kNoneRequired = 0xFE;
    InitialObjectDescriptor* descriptor = getInitialObjectDescriptor();
    if (!descriptor) return;
    descriptor->setURLFlag(0);
    descriptor->setIncludeInlineProfileLevelFlag(0);
    descriptor->setODProfileLevelIndication(kNoneRequired);
    descriptor->setSceneProfileLevelIndication(1);
    descriptor->setAudioProfileLevelIndication(1);
    descriptor->setVisualProfileLevelIndication(3);
    descriptor->setGraphicsProfileLevelIndication(1);
}

int QTMovie::prepareForWriting() {
    // Tracks first: their bit rates go into the profiles. A second preparation would double what they add.
    for (QTTrack* track : tracks_) {
        if (!wire::Access::isPrepared(*track)) track->prepareForWriting();
    }
    settleDuration();
    if (bitRate_ != 0) addBitRateToHint();
    settleBrands();
    if (flags_ == kPSP) addHandheldProfiles();
    if (flags_ != kMOV) settleProfileLevels();
    return 0;
}

int QTMovie::addToAtomStcoOffsets(std::uint64_t delta) {
    int result = 0;
    for (QTTrack* track : tracks_) {
        if (track->addToAtomStcoOffsets(delta) != 0) result = -1;
    }
    return result;
}

int QTMovie::adoptIntoMoov(std::unique_ptr<QTAtom> child) {
    if (addMoovChild(child.get()) != 0) return -1;
    static_cast<void>(child.release());
    return 0;
}

int QTMovie::adoptIntoRoot(std::unique_ptr<QTAtom> child) {
    if (addUuidAtom(child.get()) != 0) return -1;
    static_cast<void>(child.release());
    return 0;
}

} // namespace Ketra::QT
