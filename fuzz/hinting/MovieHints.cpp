#include "ToolError.h"
#include "hint/HintReader.h"
#include "hint/HintTrackBuilder.h"
#include "hint/HintTracks.h"
#include "hint/MovieRewrite.h"
#include "hinting/HintHarness.h"

#include <base/CException.h>
#include <base/CMemoryStream.h>
#include <base/Ferro.h>
#include <qt/QTCMStream.h>

#include <cstdlib>

namespace hinting {

using namespace Ketra;
using namespace Ketra::Tool;

namespace {

constexpr unsigned int kSteps = 4000;        // samples of a track that are hinted, or read back
constexpr unsigned int kPackets = 20000;     // packets that are read back
constexpr std::size_t kLargestPayload = 100; // small, so that there are fragments
constexpr std::size_t kTracks = 8;

template <class Action>
void attempt(Action action) {
    try {
        action();
    } catch (const CException&) {
    } catch (const ToolError&) {
    }
}

/// A movie in memory.
struct Memory {
    Memory(const void* bytes, std::size_t size)
        : holder(new Ferro::CMemoryStream(bytes, static_cast<std::int64_t>(size))) {}

    Ferro::RStream holder;
    QT::QTCMStream stream{&holder};
};

unsigned int readBack(QT::QTMovie& movie, QT::QTTrack& track, std::uint64_t& missing) {
    HintReader reader(movie, track);
    std::vector<HintedPacket> packets;
    unsigned int count = 0;
    for (unsigned int step = 0; step < kSteps && count < kPackets && reader.next(packets); ++step) {
        for (const HintedPacket& packet : packets) {
            missing += packet.missing;
            ++count;
        }
    }
    return count;
}

/// A file of media and header, the media first.
struct HintedFile {
    ByteBlock bytes = ByteBlock(8);

    void save(QT::QTTrack& track) {
        const std::unique_ptr<QT::QTFrame> chunk(track.saveChunk(bytes.size()));
        if (!chunk || !chunk->getData()) return;
        bytes.insert(bytes.end(), chunk->getData(), chunk->getData() + chunk->getDataLength());
    }
    void finish(QT::QTMovie& movie) {
        for (int i = 0; i < 4; ++i) {
            bytes[static_cast<std::size_t>(i)] = static_cast<unsigned char>(bytes.size() >> (24 - 8 * i));
        }
        constexpr unsigned char kType[] = {'m', 'd', 'a', 't'};
        std::copy(std::begin(kType), std::end(kType), bytes.begin() + 4);
        movie.updateAtomSizes();
        const std::unique_ptr<QT::QTFrame> header(movie.serializeRoot());
        bytes.insert(bytes.end(), header->getData(), header->getData() + header->getDataLength());
    }
};

void hintTrack(QT::QTTrack& media, QT::QTStream& source) {
    const std::unique_ptr<QT::QTMovie> hints(QT::QTMovie::beginMovie(QT::kMP4, true, false));
    HintTrackBuilder builder(media, *hints, {kLargestPayload, mostMediaBytes(source)});
    HintedFile file;
    const ChunkSink sink = [&file](QT::QTTrack& track) { file.save(track); };
    for (unsigned int i = 0; i < kSteps && builder.step(sink); ++i) {
    }
    builder.finish(sink);
    const unsigned int packets = builder.track().getRTPPacketNumber();
    file.finish(*hints);

    Memory written(file.bytes.data(), file.bytes.size());
    const std::unique_ptr<QT::QTMovie> again(
        QT::QTMovie::createNewQTMovieFromStream(&written.stream, QT::kMP4));
    if (!again || packets == 0 || packets >= kPackets) return;
    std::uint64_t missing = 0;
    const auto tracks = hintTracksOf(*again);
    if (tracks.size() != 1 || readBack(*again, *tracks.front(), missing) != packets || missing) std::abort();
}

} // namespace

void exerciseMovie(const unsigned char* bytes, std::size_t size) {
    Memory source(bytes, size);
    attempt([&] {
        MovieRewrite rewrite(source.stream);
        rewrite.flavour();
        rewrite.header().timeScale();
        rewrite.header().addTrack(rewrite.header().bytes());
        rewrite.header().setHintInformation(ByteBlock(8));
        rewrite.removeHints();
        rewrite.header().bytes();
    });
    std::unique_ptr<QT::QTMovie> movie;
    attempt([&] { movie.reset(QT::QTMovie::createNewQTMovieFromStream(&source.stream, QT::kMOV)); });
    if (!movie) return;
    std::vector<QT::QTTrack*> tracks = movie->getTracks();
    if (tracks.size() > kTracks) tracks.resize(kTracks);
    for (QT::QTTrack* track : tracks) {
        attempt([&] { hintTrack(*track, source.stream); });
        attempt([&] {
            std::uint64_t missing = 0;
            readBack(*movie, *track, missing);
        });
    }
}

} // namespace hinting
