// A movie written by calls in any order, out of arbitrary bytes, and what came of it read back. Calls in the
// order that writing asks for must give every frame back.
#include "hostile/Harness.h"

#include <base/CMemoryStream.h>
#include <qt/QTAtoms.h>
#include <qt/QTCMStream.h>
#include <qt/QTMovie.h>
#include <qt/QTTrack.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fuzzer/FuzzedDataProvider.h>
#include <memory>
#include <vector>

using namespace Ketra;
using namespace Ketra::QT;

namespace {

using Bytes = std::vector<unsigned char>;
using Provider = FuzzedDataProvider;

constexpr std::array kFlavours = {kMOV, kMP4, kM4V, kM4A, k3GP, k3G2, kAMC, kPSP};
constexpr std::array kMedia = {fourCC("vide"), fourCC("audi"), fourCC("soun"), fourCC("text"),
                               fourCC("tmcd"), fourCC("vihi"), fourCC("auhi"), fourCC("odsm"),
                               fourCC("sdsm"), fourCC("nope")};
constexpr std::array kFormats = {fourCC("h264"), fourCC("avc1"), fourCC("hvc1"), fourCC("mp4v"),
                                 fourCC("s263"), fourCC("apcn"), fourCC("AVdn"), fourCC("jpeg"),
                                 fourCC("SVQ3"), fourCC("mp4a"), fourCC("sowt"), fourCC("twos"),
                                 fourCC("in24"), fourCC("fl32"), fourCC("lpcm"), fourCC("samr"),
                                 fourCC("alac"), fourCC(".mp3"), fourCC("QDM2"), fourCC("text")};
constexpr unsigned int kMostCalls = 2000;
constexpr unsigned int kMostTracks = 8;
constexpr std::size_t kMostFrame = 300;

std::unique_ptr<QTFrame> frameOf(const Bytes& bytes, double time, double duration, unsigned int samples,
                                 double decode, bool alpha) {
    auto* block = static_cast<unsigned char*>(bytes.empty() ? nullptr : std::malloc(bytes.size()));
    if (block) std::memcpy(block, bytes.data(), bytes.size());
    return std::make_unique<QTFrame>(static_cast<unsigned int>(bytes.size()), block, time, duration, false,
                                     samples, time + duration, decode, alpha);
}

Bytes someBytes(Provider& in) {
    return in.ConsumeBytes<unsigned char>(in.ConsumeIntegralInRange<std::size_t>(0, kMostFrame));
}

void append(Bytes& file, QTFrame* frame) {
    const std::unique_ptr<QTFrame> owned(frame);
    if (!owned || !owned->getData()) return;
    file.insert(file.end(), owned->getData(), owned->getData() + owned->getDataLength());
}

/// Opens what was written and looks at every frame of it; null when it is no movie.
template <class Visit>
bool readBack(const Bytes& file, QTMovieConstructionFlags flavour, Visit visit) {
    Ferro::RStream source(new Ferro::CMemoryStream(file.data(), static_cast<std::int64_t>(file.size())));
    QTCMStream stream(&source);
    const std::unique_ptr<QTMovie> movie(QTMovie::createNewQTMovieFromStream(&stream, flavour));
    if (!movie) return false;
    for (QTTrack* track : movie->getTracks()) {
        visit(*track);
    }
    return true;
}

void walk(QTTrack& track) {
    hostile::attempt([&] {
        if (track.initWithSample(1) != 0) return;
        for (unsigned int i = 0; i < kMostCalls; ++i) {
            QTFrame* frame = track.getChunk() ? track.getChunk()->getNextFrame() : nullptr;
            if (!frame) break;
            hostile::consume(frame);
        }
    });
}

void set(QTTrack& track, Provider& in) {
    const auto number = in.ConsumeIntegral<unsigned int>();
    const double real = in.ConsumeFloatingPoint<double>();
    const auto small = static_cast<unsigned short>(number);
    const Bytes bytes = someBytes(in);
    const auto frame = [&] { return frameOf(bytes, 0, 0, 1, 0, false).release(); };
    const auto format = in.PickValueInArray(kFormats);
    auto* video = dynamic_cast<QTVideoTrack*>(&track);
    auto* audio = dynamic_cast<QTAudioTrack*>(&track);
    auto* text = dynamic_cast<QTTextTrack*>(&track);
    auto* code = dynamic_cast<QTTimeCodeTrack*>(&track);
    switch (in.ConsumeIntegralInRange(0, 23)) {
    case 0:
        track.setAtomMediaTimeScale(number);
        break;
    case 1:
        track.setChunkFullTime(real);
        break;
    case 2:
        track.setChunkFullMaxSize(number);
        break;
    case 3:
        track.setDataFormat(format);
        break;
    case 4:
        track.setDecoderSpecificInfo(bytes.empty() ? nullptr : frame());
        break;
    case 5:
        track.setCompressorName(static_cast<unsigned int>(bytes.size()),
                                const_cast<unsigned char*>(bytes.data()));
        break;
    case 6:
        track.setStartTime(real);
        break;
    case 7:
        track.setEndTime(real);
        break;
    case 8:
        track.setStartOffset(real);
        break;
    case 9:
        track.setDuration(real);
        break;
    case 10:
        track.addTrackReference(number % 2 ? fourCC("chap") : fourCC("tmcd"), number);
        break;
    case 11:
        track.setSwitchGroup(number);
        break;
    case 12:
        track.setSamplesPerPacket(number);
        break;
    case 13:
        track.addDBABitrate(number);
        break;
    case 14:
        if (video) video->setWidth(small), video->setHeight(number >> 16);
        break;
    case 15:
        if (video) video->setH264SeqParSet(frame());
        break;
    case 16:
        if (video) video->setH264PictParSet(frame());
        break;
    case 17:
        if (video) video->setH265DecoderSpecificInfo(frame());
        break;
    case 18:
        if (video)
            video->setFields(static_cast<unsigned char>(number)),
                video->set_clap_width(static_cast<int>(number));
        break;
    case 19:
        if (audio) audio->setSampleRate(real), audio->setChannels(small);
        break;
    case 20:
        if (audio) audio->setBitsPerSample(small), audio->setBytesPerSample(number >> 16);
        break;
    case 21:
        if (text)
            text->setTextName(static_cast<unsigned int>(bytes.size()),
                              const_cast<unsigned char*>(bytes.data()));
        break;
    case 22:
        if (code)
            code->setTimeScale(number), code->setFrameDuration(small), code->setNumberOfFrames(number >> 16);
        break;
    default:
        track.setFrameDuration(real);
        break;
    }
}

void add(QTTrack& track, Provider& in) {
    const bool sane = in.ConsumeBool();
    const auto real = [&] {
        return sane ? in.ConsumeFloatingPointInRange(-1.0, 100.0) : in.ConsumeFloatingPoint<double>();
    };
    const double time = real();
    const double duration = real();
    const double decode = real();
    const auto samples = sane ? in.ConsumeIntegralInRange(0U, 4U) : in.ConsumeIntegral<unsigned int>();
    const auto frame = frameOf(someBytes(in), time, duration, samples, decode, in.ConsumeBool());
    switch (in.ConsumeIntegralInRange(0, 4)) {
    case 0:
        track.addSample(frame.get());
        break;
    case 1:
        track.addSyncSample(frame.get());
        break;
    case 2:
        track.addPSample(frame.get());
        break;
    case 3:
        track.addPartialSyncSample(frame.get());
        break;
    default:
        track.addSample(nullptr);
        break;
    }
}

/// One call on the movie or one of its tracks.
void call(QTMovie& movie, Bytes& file, Provider& in) {
    const std::vector<QTTrack*> tracks = movie.getTracks();
    QTTrack* track =
        tracks.empty() ? nullptr : tracks[in.ConsumeIntegralInRange<std::size_t>(0, tracks.size() - 1)];
    switch (in.ConsumeIntegralInRange(0, 15)) {
    case 0:
        if (tracks.size() < kMostTracks)
            movie.beginTrack(in.PickValueInArray(kMedia), in.PickValueInArray(kFlavours));
        break;
    case 1:
    case 2:
        if (track) set(*track, in);
        break;
    case 3:
        if (track) track->beginChunk();
        break;
    case 4:
        if (track)
            append(file,
                   track->saveChunk(in.ConsumeBool() ? file.size() : in.ConsumeIntegral<std::uint64_t>()));
        break;
    case 5:
        movie.endTrack(track ? track->getID() : 0);
        break;
    case 6:
        movie.endMovie();
        break;
    case 7:
        movie.prepareForWriting();
        break;
    case 8:
        movie.updateAtomSizes();
        break;
    case 9:
        movie.addToAtomStcoOffsets(in.ConsumeIntegral<std::uint64_t>());
        break;
    case 10:
        append(file, movie.serializeRoot());
        break;
    case 11: {
        const Bytes text = someBytes(in);
        movie.addUserData(fourCC("mana"), static_cast<unsigned int>(text.size()),
                          reinterpret_cast<const char*>(text.data()));
        break;
    }
    case 12:
        movie.setTimeScale(in.ConsumeIntegral<unsigned int>());
        break;
    default:
        if (track) add(*track, in);
        break;
    }
}

void anyOrder(Provider& in) {
    const auto flavour = in.PickValueInArray(kFlavours);
    const std::unique_ptr<QTMovie> movie(QTMovie::beginMovie(flavour, in.ConsumeBool(), in.ConsumeBool()));
    if (!movie) return;
    Bytes file;
    for (unsigned int i = 0; i < kMostCalls && in.remaining_bytes(); ++i) {
        hostile::attempt([&] { call(*movie, file, in); });
    }
    hostile::attempt([&] { append(file, movie->serializeRoot()); });
    hostile::attempt([&] { readBack(file, flavour, walk); });
}

/// One video track as it should be written: every frame must come back.
void inOrder(Provider& in) {
    const auto flavour = in.PickValueInArray(kFlavours);
    if (flavour == kM4A) return; // sound alone
    const std::unique_ptr<QTMovie> movie(QTMovie::beginMovie(flavour, false, true));
    auto* track = movie ? dynamic_cast<QTVideoTrack*>(movie->beginTrack(fourCC("vide"), flavour)) : nullptr;
    if (!track) std::abort();
    track->setDataFormat(fourCC("mp4v"));
    track->setWidth(16);
    track->setHeight(16);
    track->setAtomMediaTimeScale(1000);
    track->setChunkFullTime(in.ConsumeFloatingPointInRange(0.0, 2.0));
    track->beginChunk();
    Bytes file;
    std::vector<Bytes> frames;
    while (in.remaining_bytes() && frames.size() < kMostCalls) {
        Bytes bytes = someBytes(in);
        bytes.push_back(1);
        const double time = static_cast<double>(frames.size()) / 25;
        const auto frame = frameOf(bytes, time, 0.04, 1, time, false);
        if (track->getChunkFull()) append(file, track->saveChunk(file.size()));
        if ((in.ConsumeBool() ? track->addSyncSample(frame.get()) : track->addSample(frame.get())) != 0)
            std::abort();
        frames.push_back(std::move(bytes));
    }
    if (frames.empty()) return;
    append(file, track->saveChunk(file.size()));
    const std::size_t media = file.size();
    if (movie->endTrack(track->getID()) != 0 || movie->endMovie() != 0 || movie->prepareForWriting() != 0)
        std::abort();
    movie->updateAtomSizes();
    // The media lies in front, inside an atom of its own: its 8 bytes of header move everything.
    movie->addToAtomStcoOffsets(8);
    Bytes whole(8);
    const auto size = static_cast<unsigned int>(media + 8);
    for (unsigned int i = 0; i < 4; ++i) {
        whole[i] = static_cast<unsigned char>(size >> (24 - 8 * i));
    }
    std::memcpy(whole.data() + 4, "mdat", 4);
    whole.insert(whole.end(), file.begin(), file.end());
    append(whole, movie->serializeRoot());
    std::size_t seen = 0;
    const bool opened = readBack(whole, flavour, [&](QTTrack& read) {
        if (read.getType() != fourCC("vide") || read.initWithSample(1) != 0) return;
        while (const std::unique_ptr<QTFrame> frame{read.getChunk()->getNextFrame()}) {
            const Bytes& wanted = frames.at(seen++);
            if (frame->getDataLength() != wanted.size() ||
                std::memcmp(frame->getData(), wanted.data(), wanted.size()) != 0)
                std::abort();
        }
    });
    if (!opened || seen != frames.size()) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    Provider in(data, size);
    if (in.ConsumeIntegralInRange(0, 3) == 0) {
        inOrder(in);
    } else {
        anyOrder(in);
    }
    return 0;
}
