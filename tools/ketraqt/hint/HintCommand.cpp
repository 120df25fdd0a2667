#include "../Atoms.h"
#include "../Commands.h"
#include "../Source.h"
#include "../ToolError.h"
#include "HintTrackBuilder.h"
#include "MovieRewrite.h"
#include "PacketBytes.h"

#include <qt/QTAtoms.h>

#include <algorithm>
#include <fmt/format.h>

namespace Ketra::Tool {

using QT::fourCC;

namespace {

constexpr unsigned int kHeaders = 40; // IPv4, UDP and RTP in front of every payload
constexpr unsigned int kLargeHeader = 16;

using Builders = std::vector<std::unique_ptr<HintTrackBuilder>>;

bool asked(const HintOptions& options, unsigned int id) {
    return options.tracks.empty() ||
           std::find(options.tracks.begin(), options.tracks.end(), id) != options.tracks.end();
}

/// An empty movie that lends the hint tracks its time scale and its track IDs.
std::unique_ptr<QT::QTMovie> beginHints(MovieRewrite& rewrite) {
    std::unique_ptr<QT::QTMovie> movie(QT::QTMovie::beginMovie(rewrite.flavour(), true, false));
    movie->setTimeScale(rewrite.header().timeScale());
    auto* header = atomAt<QT::MVHD>(movie->getRoot(), {fourCC("moov"), fourCC("mvhd")});
    if (!header) throw ToolError(kMalformed, "no movie can be made");
    header->setNextTrackID(rewrite.header().nextTrackID());
    return movie;
}

Builders beginTracks(QT::QTMovie& source, QT::QTMovie& hints, const HintOptions& options) {
    const HintLimits limits{options.mtu - kHeaders, mostMediaBytes(*source.getStream())};
    for (const unsigned int id : options.tracks) {
        trackOf(source, id); // throws without it
    }
    Builders builders;
    std::string refused;
    for (QT::QTTrack* track : source.getTracks()) {
        if (!asked(options, track->getID())) continue;
        track->setMovieTimeScale(hints.getTimeScale());
        try {
            builders.push_back(std::make_unique<HintTrackBuilder>(*track, hints, limits));
        } catch (const ToolError& error) {
            // Other tracks can be hinted all the same, unless this one was asked for.
            if (error.code() != kNotAllowed || !options.tracks.empty()) throw;
            complain(options.file, error.what());
        }
    }
    if (builders.empty()) throw ToolError(kNotAllowed, "there is no track that can be hinted");
    return builders;
}

void saveChunk(QT::QTTrack& track, AtomicFile& out) {
    const std::unique_ptr<QT::QTFrame> chunk(track.saveChunk(out.position()));
    if (!chunk) throw ToolError(kCannotRead, "not enough memory");
    if (chunk->getDataLength()) out.write(chunk->getData(), chunk->getDataLength());
}

/// The hint samples of all tracks, interleaved by time.
void writeSamples(Builders& builders, AtomicFile& out) {
    const ChunkSink sink = [&out](QT::QTTrack& track) { saveChunk(track, out); };
    std::vector<HintTrackBuilder*> busy;
    for (const auto& builder : builders) {
        busy.push_back(builder.get());
    }
    while (!busy.empty()) {
        const auto next = std::min_element(busy.begin(), busy.end(),
                                           [](auto* a, auto* b) { return a->time() < b->time(); });
        if ((*next)->step(sink)) continue;
        (*next)->finish(sink);
        busy.erase(next);
    }
}

/// A media atom whose size is known at its end, and may be large.
void writeMedia(Builders& builders, AtomicFile& out) {
    const std::uint64_t start = out.position();
    unsigned char header[kLargeHeader] = {};
    store32(header, 1);
    store32(header + 4, fourCC("mdat"));
    out.write(header, sizeof header);
    writeSamples(builders, out);
    const std::uint64_t size = out.position() - start;
    store32(header + 8, static_cast<std::uint32_t>(size >> 32));
    store32(header + 12, static_cast<std::uint32_t>(size));
    out.patch(start, header, sizeof header);
}

ByteBlock bytesOf(QT::QTAtom& atom) {
    atom.updateSize();
    const std::unique_ptr<QT::QTFrame> frame(atom.serialize());
    if (!frame) throw ToolError(kMalformed, "the hints cannot be written");
    return ByteBlock(frame->getData(), frame->getData() + frame->getDataLength());
}

void addToHeader(MovieHeader& header, Builders& builders, QT::QTMovie& hints) {
    unsigned int bandwidth = 0;
    for (const auto& builder : builders) {
        bandwidth += builder->track().getSDPBandwidth();
        header.addTrack(bytesOf(*builder->track().getTrak()));
    }
    hints.setBitRate(bandwidth);
    hints.addBitRateToHint();
    auto* information = atomAt<QT::HNTI>(hints.getRoot(), {fourCC("moov"), fourCC("udta"), fourCC("hnti")});
    if (information) header.setHintInformation(bytesOf(*information));
}

} // namespace

void runHint(const HintOptions& options) {
    Source source(options.file);
    MovieRewrite rewrite(source.stream());
    if (rewrite.hasHints())
        throw ToolError(kNotAllowed, "has hint tracks already; hint --remove takes them out");
    const auto movie = openMovie(source);
    const auto hints = beginHints(rewrite);
    Builders builders = beginTracks(*movie, *hints, options);
    AtomicFile out(options.output, options.force);
    rewrite.copyParts(out);
    writeMedia(builders, out);
    addToHeader(rewrite.header(), builders, *hints);
    rewrite.writeHeader(out);
    source.close();
    out.commit();
}

void runHintRemoval(const HintOptions& options) {
    Source source(options.file);
    MovieRewrite rewrite(source.stream());
    if (!rewrite.hasHints()) throw ToolError(kNotAllowed, "has no hint tracks");
    rewrite.removeHints();
    AtomicFile out(options.output, options.force);
    rewrite.copyParts(out);
    rewrite.writeHeader(out);
    source.close();
    out.commit();
}

} // namespace Ketra::Tool
