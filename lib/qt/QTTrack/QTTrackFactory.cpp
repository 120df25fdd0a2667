// Which class a track is, and the empty atom tree of a new one.
#include <qt/QTAtoms.h>
#include <qt/QTTrack/QTAudioHintTrack.h>
#include <qt/QTTrack/QTAudioTrack.h>
#include <qt/QTTrack/QTDescriptionTrack.h>
#include <qt/QTTrack/QTTextTrack.h>
#include <qt/QTTrack/QTTimeCodeTrack.h>
#include <qt/QTTrack/QTTrack.h>
#include <qt/QTTrack/QTVideoHintTrack.h>
#include <qt/QTTrack/QTVideoTrack.h>
#include <qt/wire/Access.h>
#include <qt/wire/Throw.h>

#include <algorithm>
#include <iterator>
#include <memory>

namespace Ketra::QT {

namespace {

using TrackPtr = std::unique_ptr<QTTrack>;

template <class Track>
TrackPtr over(QTAtom* trak) {
    return std::make_unique<Track>(trak);
}

template <class Track>
TrackPtr fresh() {
    return std::make_unique<Track>();
}

// --- reading

/// A base media header serves timecode, text and, in QuickTime movies, hints: what is in it tells.
TrackPtr overBaseMedia(QTAtom* trak);

struct HeaderClass {
    unsigned int header;
    TrackPtr (*make)(QTAtom* trak);
};

constexpr HeaderClass kMediaHeaders[] = {
    {fourCC("vmhd"), over<QTVideoTrack>},     {fourCC("smhd"), over<QTAudioTrack>},
    {fourCC("gmhd"), overBaseMedia},          {fourCC("hmhd"), over<QTVideoHintTrack>},
    {fourCC("nmhd"), over<QTVideoHintTrack>},
};

constexpr HeaderClass kBaseMedia[] = {
    {fourCC("tmcd"), over<QTTimeCodeTrack>},
    {fourCC("tcmi"), over<QTTimeCodeTrack>}, // as it stands in a tree that has just been made for writing
    {fourCC("text"), over<QTTextTrack>},
};

constexpr HeaderClass kHandlers[] = {
    {fourCC("vide"), over<QTVideoTrack>},
    {fourCC("soun"), over<QTAudioTrack>},
};

QTAtom* childOf(const QTAtom* parent, unsigned int type) { return wire::child<QTAtom>(parent, type); }

TrackPtr overBaseMedia(QTAtom* trak) {
    const QTAtom* gmhd = childOf(childOf(childOf(trak, fourCC("mdia")), fourCC("minf")), fourCC("gmhd"));
    for (const HeaderClass& row : kBaseMedia) {
        if (childOf(gmhd, row.header)) return row.make(trak);
    }
    return over<QTVideoHintTrack>(trak);
}

/// Without media information the handler alone tells.
TrackPtr byHandler(QTAtom* trak, const QTAtom& mdia) {
    const HDLR* handler = wire::child<HDLR>(&mdia, fourCC("hdlr"));
    if (!handler) return nullptr;
    for (const HeaderClass& row : kHandlers) {
        if (handler->getComponentSubType() == row.header) return row.make(trak);
    }
    return over<QTVideoHintTrack>(trak);
}

TrackPtr byMediaHeader(QTAtom* trak, const QTAtom& minf) {
    constexpr std::size_t kFewestTables = 5; // a sample table with fewer describes no samples
    const auto* row =
        std::find_if(std::begin(kMediaHeaders), std::end(kMediaHeaders),
                     [&minf](const HeaderClass& r) { return childOf(&minf, r.header) != nullptr; });
    if (row == std::end(kMediaHeaders)) return nullptr;
    TrackPtr track = row->make(trak);
    const QTAtom* stbl = childOf(&minf, fourCC("stbl"));
    return stbl && wire::Access::children(*stbl).size() >= kFewestTables ? std::move(track) : nullptr;
}

// --- writing

enum class Kind { kMedia, kHint, kOther };

struct MediaClass {
    unsigned int type;
    TrackPtr (*make)();
    Kind kind;
    unsigned int payloadType;  // of a hint track
    const char* hintTrackName; // 18 characters, or null
};

constexpr MediaClass kMediaTypes[] = {
    {fourCC("vide"), fresh<QTVideoTrack>, Kind::kMedia, 0, nullptr},
    {fourCC("audi"), fresh<QTAudioTrack>, Kind::kMedia, 0, nullptr},
    {fourCC("text"), fresh<QTTextTrack>, Kind::kMedia, 0, nullptr},
    {fourCC("tmcd"), fresh<QTTimeCodeTrack>, Kind::kOther, 0, nullptr},
    {fourCC("vihi"), fresh<QTVideoHintTrack>, Kind::kHint, 96, "Hinted Video Track"},
    {fourCC("auhi"), fresh<QTAudioHintTrack>, Kind::kHint, 97, "Hinted Audio Track"},
    {fourCC("odsm"), fresh<QTDescriptionTrack>, Kind::kOther, 0, nullptr},
    {fourCC("sdsm"), fresh<QTDescriptionTrack>, Kind::kOther, 0, nullptr},
};

template <class Atom, class... Arguments>
Atom& add(QTAtom& parent, Arguments... arguments) {
    auto child = std::make_unique<Atom>(arguments...);
    Atom& added = *child;
    if (parent.addChild(child.get()) == 0) static_cast<void>(child.release());
    return added;
}

bool isDescription(unsigned int type) { return type == fourCC("odsm") || type == fourCC("sdsm"); }

void addHintUserData(QTAtom& trak, const char* name) {
    constexpr unsigned int kNameSize = 26;
    auto& udta = add<UDTA>(trak);
    auto* text = reinterpret_cast<unsigned char*>(const_cast<char*>(name));
    udta.addDataAtom(new QTDataAtom(kNameSize, fourCC("name"), text));
    add<HNTI>(udta);
    add<HINF>(udta);
}

/// Filled when the track is prepared.
void addApertures(QTAtom& trak) {
    auto& tapt = add<TAPT>(trak);
    add<CLEF>(tapt);
    add<PROF>(tapt);
    add<ENOF>(tapt);
}

void addMediaHeader(QTAtom& minf, unsigned int type, bool quickTime) {
    if (type == fourCC("vide")) {
        add<VMHD>(minf);
    } else if (type == fourCC("audi")) {
        add<SMHD>(minf);
    } else if (isDescription(type)) {
        add<NMHD>(minf);
    } else if (!quickTime) {
        add<HMHD>(minf);
    } else {
        auto& gmhd = add<GMHD>(minf);
        if (type == fourCC("tmcd")) {
            add<TCMI>(gmhd);
        } else {
            add<GMIN>(gmhd);
            if (type == fourCC("text")) add<TEXTA>(gmhd);
        }
    }
}

void addSampleTable(QTAtom& minf, unsigned int type) {
    auto& stbl = add<STBL>(minf);
    add<STSD>(stbl, type);
    add<STTS>(stbl);
    add<CTTS>(stbl);
    add<STSS>(stbl);
    add<STPS>(stbl);
    add<SDTP>(stbl);
    add<STSC>(stbl);
    add<STSZ>(stbl);
    add<STCO>(stbl);
}

/// The whole tree of an empty track, children in the order in which they are written.
std::unique_ptr<TRAK> makeTree(const MediaClass& media, unsigned int trackID, bool quickTime) {
    auto trak = std::make_unique<TRAK>();
    add<TKHD>(*trak, trackID);
    if (quickTime && media.type == fourCC("vide")) addApertures(*trak);
    if (media.kind != Kind::kOther) add<ELST>(add<EDTS>(*trak));
    if (isDescription(media.type)) add<TREF>(*trak);
    if (media.kind == Kind::kHint) {
        add<HINT>(add<TREF>(*trak), 0U);
        addHintUserData(*trak, media.hintTrackName);
    }
    auto& mdia = add<MDIA>(*trak);
    add<MDHD>(mdia);
    add<HDLR>(mdia, media.type);
    auto& minf = add<MINF>(mdia);
    addMediaHeader(minf, media.type, quickTime);
    add<DREF>(add<DINF>(minf));
    if (quickTime) add<HDLR>(minf, media.type);
    addSampleTable(minf, media.type);
    trak->QTAtom::updateSize();
    return trak;
}

} // namespace

QTTrack* QTTrack::createNewQTTrackFromTRAK(QTAtom* trak) {
    if (!trak || trak->getType() != fourCC("trak")) return nullptr;
    const QTAtom* mdia = childOf(trak, fourCC("mdia"));
    if (!mdia) return nullptr;
    const QTAtom* minf = childOf(mdia, fourCC("minf"));
    TrackPtr track = minf ? byMediaHeader(trak, *minf) : byHandler(trak, *mdia);
    if (!track || !track->getSTSDValid()) return nullptr;
    track->setTrak(trak);
    return track.release();
}

QTTrack* QTTrack::createNewQTTrackFromType(unsigned int trackID, unsigned int mediaType,
                                           QTMovieConstructionFlags movieType) {
    const auto* media = std::find_if(std::begin(kMediaTypes), std::end(kMediaTypes),
                                     [mediaType](const MediaClass& m) { return m.type == mediaType; });
    if (media == std::end(kMediaTypes)) {
        QT_THROW(wire::area::kTrack, "Ketra::QT::QTTrack::createNewQTTrackFromType",
                 CString::createWithFormat("Unknown media type: %c%c%c%c", static_cast<char>(mediaType >> 24),
                                           static_cast<char>(mediaType >> 16),
                                           static_cast<char>(mediaType >> 8), static_cast<char>(mediaType)));
    }
    TrackPtr track = media->make();
    track->setMovieType(movieType);
    track->setMediaType(media->kind == Kind::kHint ? fourCC("hint") : mediaType);
    track->setID(trackID);
    track->setIsMediaTrack(media->kind == Kind::kMedia);
    track->setIsHintTrack(media->kind == Kind::kHint);
    if (auto* hint = dynamic_cast<QTHintTrack*>(track.get())) hint->setPayloadType(media->payloadType);
    std::unique_ptr<TRAK> trak = makeTree(*media, trackID, movieType == kMOV);
    track->setTrak(trak.get());
    track->setSampleCount(0);
    track->initAtoms();
    static_cast<void>(trak.release()); // the movie adopts the tree, or whoever asked for the track
    return track.release();
}

} // namespace Ketra::QT
