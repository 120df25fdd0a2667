#include <qt/QTAtoms.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>
#include <qt/QTUtils.h>
#include <qt/wire/Access.h>
#include <qt/wire/Bytes.h>
#include <qt/wire/Numbers.h>
#include <qt/wire/Throw.h>

#include <algorithm>

namespace Ketra::QT {

namespace {

/// The last atom of the code and class in tree order, as the reader searches.
template <class Atom>
Atom* lastInTree(QTAtom& from, unsigned int type) {
    const std::vector<QTAtom*>& children = wire::Access::children(from);
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        if ((*child)->getType() == type) {
            if (auto* found = dynamic_cast<Atom*>(*child)) return found;
        }
        if (Atom* found = lastInTree<Atom>(**child, type)) return found;
    }
    return nullptr;
}

/// The first four bytes of a file whose first atom has a 64-bit size.
bool startsWithLargeHeader(QTStream& stream) {
    unsigned char bytes[4] = {};
    stream.lseek(0, 0);
    const bool read = stream.read(bytes, sizeof bytes) == static_cast<std::int64_t>(sizeof bytes);
    stream.lseek(0, 0);
    return read && wire::load32(bytes) == 1;
}

} // namespace

QTMovie::QTMovie(QTStream* stream, QTMovieConstructionFlags flags)
    : stream_(stream), flags_(flags), utils_(std::make_unique<QTUtils>(stream, nullptr)) {
    const unsigned char headerSize = startsWithLargeHeader(*stream) ? 16 : 8;
    const auto length = static_cast<std::uint64_t>(std::max<std::int64_t>(0, stream->size()));
    root_ = std::make_unique<ROOT>(new QTAtom(length, fourCC("root"), 0, headerSize, utils_.get(), true));
    utils_->setRoot(root_.get());
    root_->parse(); // whatever could be read stays
    if (const MVHD* header = lastInTree<MVHD>(*root_, fourCC("mvhd"))) {
        duration_ = wire::toSeconds(header->getDuration(), header->getTimeScale());
    }
}

QTMovie::QTMovie(QTMovieConstructionFlags flags) : flags_(flags), root_(std::make_unique<ROOT>()) {}

QTMovie::~QTMovie() {
    for (QTTrack* track : tracks_) {
        delete track;
    }
}

QTMovie* QTMovie::createNewQTMovieFromStream(QTStream* stream, QTMovieConstructionFlags flags) {
    if (!stream) return nullptr;
    std::unique_ptr<QTMovie> movie(new QTMovie(stream, flags));
    if (!lastInTree<MVHD>(*movie->root_, fourCC("mvhd"))) return nullptr;
    movie->initAtoms();
    return movie->parseMovie() == 0 && movie->createTracks() ? movie.release() : nullptr;
}

int QTMovie::parseMovie() { return 0; }

bool QTMovie::createTracks() {
    for (QTAtom* trak : utils_->getAtomsOfType(fourCC("trak"), nullptr)) {
        std::unique_ptr<QTTrack> track(QTTrack::createNewQTTrackFromTRAK(trak));
        if (!track) continue;
        tracks_.push_back(track.get());
        QTTrack& added = *track.release();
        added.initAtoms();
        added.setMovieTimeScale(getTimeScale());
    }
    return !tracks_.empty();
}

MOOV* QTMovie::movieAtom() const { return wire::child<MOOV>(root_.get(), fourCC("moov")); }

int QTMovie::initAtoms() {
    const MOOV* moov = movieAtom();
    ftyp_ = wire::child<FTYP>(root_.get(), fourCC("ftyp"));
    mvhd_ = wire::child<MVHD>(moov, fourCC("mvhd"));
    iods_ = wire::child<IODS>(moov, fourCC("iods"));
    udta_ = wire::child<UDTA>(moov, fourCC("udta"));
    return moov ? 0 : -1;
}

QTTrack* QTMovie::getTrackID(unsigned int id) const {
    const auto found = std::find_if(tracks_.begin(), tracks_.end(),
                                    [id](const QTTrack* track) { return track->getID() == id; });
    return found != tracks_.end() ? *found : nullptr;
}

QTTrack* QTMovie::getTrackOfType(unsigned int type) const {
    for (QTTrack* track : tracks_) {
        if (track->getType() == type || track->getMediaType() == type) return track;
        const QTAtom* mdia = wire::child<QTAtom>(track->getTrak(), fourCC("mdia"));
        const HDLR* handler = wire::child<HDLR>(mdia, fourCC("hdlr"));
        if (handler && handler->getComponentSubType() == type) return track;
    }
    return nullptr;
}

unsigned int QTMovie::getTimeScale() const { return mvhd_ ? mvhd_->getTimeScale() : 0; }
int QTMovie::setTimeScale(unsigned int scale) { return mvhd_ ? mvhd_->setTimeScale(scale) : -1; }
unsigned int QTMovie::getAtomTimeScale() const { return getTimeScale(); }
int QTMovie::setAtomTimeScale(unsigned int scale) { return setTimeScale(scale); }
unsigned int QTMovie::getAtomDuration() const { return mvhd_ ? mvhd_->getDuration() : 0; }
int QTMovie::setAtomDuration(unsigned int units) { return mvhd_ ? mvhd_->setDuration(units) : -1; }
std::uint64_t QTMovie::getBytesRead() const { return utils_ ? utils_->getBytesRead() : 0; }

InitialObjectDescriptor* QTMovie::getInitialObjectDescriptor() {
    if (!iods_) iods_ = wire::child<IODS>(movieAtom(), fourCC("iods"));
    return iods_ ? iods_->getInitialObjectDescriptor() : nullptr;
}

unsigned int QTMovie::getTimeCode() {
    if (timeCode_) return timeCode_;
    for (QTTrack* track : tracks_) {
        if (track->getType() != fourCC("tmcd")) continue;
        if (auto* timeCode = dynamic_cast<QTTimeCodeTrack*>(track))
            timeCode_ = timeCode->getTimeCode(stream_);
    }
    return timeCode_;
}

bool QTMovie::getAllowTranscoding() {
    const NSAV* marker = lastInTree<NSAV>(*root_, fourCC("nsav"));
    return !marker || marker->getAllowTranscoding() == 0;
}

unsigned int QTMovie::getNewTrackID() {
    constexpr char kFunction[] = "Ketra::QT::QTMovie::getNewTrackID";
    const MOOV* moov = movieAtom();
    if (!moov) QT_THROW(wire::area::kMovie, kFunction, "No moov atom exists. Aborting!");
    MVHD* header = wire::child<MVHD>(moov, fourCC("mvhd"));
    if (!header) QT_THROW(wire::area::kMovie, kFunction, "MOOV-atom doesn't have a headeratom. Aborting!");
    const unsigned int id = header->getNextTrackID();
    header->setNextTrackID(id + 1);
    return id;
}

int QTMovie::addTrack(QTTrack* track) {
    if (!track) return -1;
    tracks_.push_back(track);
    return 0;
}

int QTMovie::addMoovChild(QTAtom* child) {
    MOOV* moov = movieAtom();
    if (!moov) return -1;
    moov->addChild(child); // which takes no null; the caller hears nothing of it
    return 0;
}

int QTMovie::addUuidAtom(QTAtom* child) { return root_->addChild(child); }

std::uint64_t QTMovie::updateAtomSizes() { return root_->updateSize(); }

QTFrame* QTMovie::serializeRoot() { return root_->serialize(); }

} // namespace Ketra::QT
