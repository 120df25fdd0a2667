#include "remux/MovieBuild.h"

#include "Atoms.h"
#include "ToolError.h"
#include "remux/Interrupt.h"
#include "remux/UserData.h"

#include <base/CException.h>
#include <qt/QTAtoms.h>

#include <algorithm>
#include <iterator>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

template <class Reference>
std::unique_ptr<QT::TrackReference> make(unsigned int id) {
    return std::make_unique<Reference>(id);
}

struct ReferenceType {
    unsigned int type;
    std::unique_ptr<QT::TrackReference> (*make)(unsigned int id);
};

constexpr ReferenceType kReferences[] = {
    {fourCC("tmcd"), make<QT::TMCD>}, {fourCC("chap"), make<QT::CHAP>}, {fourCC("sync"), make<QT::SYNC>},
    {fourCC("scpt"), make<QT::SCPT>}, {fourCC("ssrc"), make<QT::SSRC>}, {fourCC("dpnd"), make<QT::DPND>},
    {fourCC("ipir"), make<QT::IPIR>},
};

std::unique_ptr<QT::TrackReference> makeReference(unsigned int type, unsigned int id) {
    const auto* row = std::find_if(std::begin(kReferences), std::end(kReferences),
                                   [type](const ReferenceType& r) { return r.type == type; });
    return row == std::end(kReferences) ? nullptr : row->make(id);
}

} // namespace

double MovieBuild::Track::pendingSeconds() const {
    return static_cast<double>(pending.decode) / input->timeScale();
}

MovieBuild::MovieBuild(Plan& plan) : plan_(plan), movie_(QT::QTMovie::beginMovie(plan.flavour, false, true)) {
    movie_->setTimeScale(plan.times.timeScale);
    for (const auto& input : plan.tracks) {
        begin(*input);
    }
}

void MovieBuild::begin(TrackInput& input) {
    Track track{&input, movie_->beginTrack(trackType(input.kind()), plan_.flavour), nullptr, {}, false, {},
                0};
    input.configure(*track.track);
    track.track->setChunkFullTime(plan_.chunkDuration);
    track.track->setChunkFullMaxSize(plan_.chunkSize);
    track.track->beginChunk();
    track.packets = input.packets(plan_.chunkDuration);
    tracks_.push_back(std::move(track));
}

void MovieBuild::advance(Track& track) { track.ended = !track.packets->next(track.pending); }

MovieBuild::Track* MovieBuild::earliest() {
    Track* found = nullptr;
    for (Track& track : tracks_) {
        if (!track.ended && (!found || track.pendingSeconds() < found->pendingSeconds())) found = &track;
    }
    return found;
}

void MovieBuild::addPending(Track& track) {
    Packet& packet = track.pending;
    const double scale = track.input->timeScale();
    const auto seconds = [&](std::int64_t ticks) {
        return static_cast<double>(ticks + track.input->shift()) / scale;
    };
    packet.frame->setTime(seconds(packet.presentation));
    packet.frame->setDecodeTime(seconds(packet.decode));
    packet.frame->setDuration(static_cast<double>(packet.duration) / scale);
    packet.frame->setSamplesInFrame(packet.samples);
    track.description = packet.description;
    track.input->add(*track.track, packet);
}

void MovieBuild::save(Track& track, const Sink& sink) {
    const std::unique_ptr<QT::QTFrame> chunk(track.track->saveChunk(position_));
    if (!chunk) throw ToolError(kCannotRead, "a chunk is larger than files can hold");
    if (track.description) track.descriptions.push_back(track.description);
    track.description = 0;
    position_ += chunk->getDataLength();
    sink(*chunk);
}

std::uint64_t MovieBuild::addMedia(std::uint64_t start, const Sink& sink) {
    position_ = start;
    for (Track& track : tracks_) {
        advance(track);
    }
    while (Track* track = earliest()) {
        InterruptGuard::check();
        // A chunk has one description for all of its samples.
        if (track->description && track->description != track->pending.description) save(*track, sink);
        addPending(*track);
        advance(*track);
        if (track->track->getChunkFull()) save(*track, sink);
    }
    for (Track& track : tracks_) {
        if (track.description) save(track, sink);
    }
    return position_ - start;
}

void MovieBuild::finish() {
    double longest = 0;
    for (Track& track : tracks_) {
        movie_->endTrack(track.track->getID());
    }
    movie_->endMovie();
    for (Track& track : tracks_) {
        track.input->beforePreparing(*track.track);
        longest = std::max(longest,
                           static_cast<double>(track.track->getAtomHeaderDuration()) / plan_.times.timeScale);
    }
    movie_->setDuration(longest);
    try {
        movie_->prepareForWriting();
    } catch (const CException& error) {
        throw ToolError(kNotAllowed, error.what()); // a codec that the flavour forbids
    }
    for (Track& track : tracks_) {
        track.input->settle(*track.track, removed_);
        settleChunkDescriptions(track);
    }
    link();
    auto* moov = childOf<QT::QTAtom>(movie_->getRoot(), fourCC("moov"));
    const auto* from = childOf<QT::QTAtom>(plan_.movie.getRoot(), fourCC("moov"));
    if (from) carryUserData(plan_.source.stream(), *from, *moov, plan_.userDataLeftOut);
    if (auto* header = childOf<QT::MVHD>(moov, fourCC("mvhd"));
        plan_.times.creation && plan_.times.creation <= 0xFFFFFFFF) {
        header->setCreationTime(static_cast<unsigned int>(plan_.times.creation));
    }
    movie_->updateAtomSizes();
}

/// Chunks are written as of the first description.
void MovieBuild::settleChunkDescriptions(const Track& track) {
    const bool single = std::all_of(track.descriptions.begin(), track.descriptions.end(),
                                    [](unsigned int description) { return description == 1; });
    auto* chunks = atomAt<QT::STSC>(track.track->getTrak(),
                                    {fourCC("mdia"), fourCC("minf"), fourCC("stbl"), fourCC("stsc")});
    if (single || !chunks) return;
    for (unsigned int i = 0; i < track.descriptions.size(); ++i) {
        if (QT::STSCData* chunk = chunks->getSampleToChunkData(i))
            chunk->setSampleDescriptionID(track.descriptions[i]);
    }
}

void MovieBuild::link() {
    for (const Reference& reference : plan_.references) {
        QT::QTAtom* trak = tracks_[reference.from].track->getTrak();
        QT::QTAtom* list = childOf<QT::TREF>(trak, fourCC("tref"));
        if (!list) {
            auto fresh = std::make_unique<QT::TREF>();
            list = fresh.get();
            if (trak->addChild(fresh.get()) == 0) static_cast<void>(fresh.release());
        }
        auto one = makeReference(reference.type, tracks_[reference.to].track->getID());
        if (one && list->addChild(one.get()) == 0) static_cast<void>(one.release());
    }
}

void MovieBuild::moveChunks(std::uint64_t delta) {
    movie_->addToAtomStcoOffsets(delta);
    movie_->updateAtomSizes();
}

Bytes MovieBuild::header() {
    const std::unique_ptr<QT::QTFrame> frame(movie_->serializeRoot());
    if (!frame || !frame->getData()) throw ToolError(kCannotRead, "the header is larger than memory");
    return Bytes(frame->getData(), frame->getData() + frame->getDataLength());
}

} // namespace Ketra::Tool
